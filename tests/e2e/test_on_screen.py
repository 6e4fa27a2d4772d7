"""What a person sees and does on an X11 desktop: a panel with the countdown, the agenda, an alert card, joining."""

import os
import pathlib
import re
import signal
import subprocess
import tempfile
import time
import unittest

from kestrel_session import Kestrel, SampleGoogle, wait_until
from screen import geometry, has_owner, item_property, start_panel, windows, xdotool

WIDTH = 1600
PANEL_HEIGHT = 27
JOIN_GREEN = (26, 184, 115)
CARD_WIDTH, SHADOW_SIDE, SHADOW_TOP, MARGIN = 360, 28, 18, 16


def pixels(x, y, width, height):
    """Rows of (red, green, blue)."""
    raw = subprocess.run(["import", "-silent", "-window", "root", "-crop", f"{width}x{height}+{x}+{y}", "-depth", "8",
                          "rgb:-"], capture_output=True, check=True, timeout=20).stdout
    return [[tuple(raw[3 * (row * width + column):][:3]) for column in range(width)] for row in range(height)]


def differing_columns(before, after):
    return [column for column in range(len(before[0]))
            if any(before[row][column] != after[row][column] for row in range(len(before)))]


class OnScreen(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory()))
        self.end_panel = start_panel(self)
        self.google = SampleGoogle()
        self.addCleanup(self.google.stop)
        self.opened = self.folder / "opened"
        browser = self.folder / "browser"
        browser.write_text(f'#!/bin/sh\ncase "$1" in\nhttp://127.0.0.1*) exec {os.environ["KESTREL_BIN"]}'
                           f'/kestrel-sample-consent "$1" ;;\n*) echo "$1" >>{self.opened} ;;\nesac\n')
        browser.chmod(0o755)
        self.kestrel = Kestrel(self.google, "--secret-store", "file", browser=str(browser))
        self.addCleanup(self.kestrel.close)

    def start(self, command):
        process = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                   stderr=subprocess.DEVNULL)

        def end():
            process.terminate()
            process.wait(20)
        self.addCleanup(end)

    def panel(self):
        return pixels(WIDTH - 400, 0, 400 - 130, PANEL_HEIGHT)  # without the clock, which moves on by itself

    def test_countdown_agenda_card_and_join(self):
        kestrel = self.kestrel
        empty_panel = self.panel()
        kestrel.start()
        wait_until(lambda: item_property("IconName"), "the status item")
        wait_until(lambda: differing_columns(empty_panel, self.panel()), "the icon on the panel")

        with self.subTest("the first start shows the agenda by itself, and a press elsewhere closes it"):
            wait_until(lambda: windows("Kestrel"), "the agenda of the first start")
            xdotool("mousemove", 300, 500, "click", 1)
            wait_until(lambda: not windows("Kestrel"), "the agenda closed")

        self.google.remove_sample_events()
        self.google.add_event(id="later", title="Later", startsInMinutes=42, meetCode="kes-demo-aaa")
        icon_alone = self.panel()
        kestrel.done("accounts", "add")
        # meetings in a tab, not in a window that a browser of this machine would open
        preferences = kestrel.data / "kestrel.ini"
        preferences.write_text(preferences.read_text().replace('Mode\\":\\"popup', 'Mode\\":\\"tab'))
        kestrel.done("refresh")

        with self.subTest("the countdown is on the panel"):
            wait_until(lambda: item_property("XAyatanaLabel") in ("in 42 min", "in 41 min"), "the countdown's text")
            wait_until(lambda: len(differing_columns(icon_alone, self.panel())) > 20, "the countdown drawn by the panel")

        with self.subTest("the doctor finds nothing wrong, and its test alert stands where it says"):
            report = kestrel.done("doctor", "--test-alert")
            self.assertRegex(report, r"^✓ Your next alert fires at \d\d:\d\d:\d\d \(in 3[67] min\)\.\n")
            self.assertRegex(report, f"✓ cards at the top right of {WIDTH}×\\d+ at 0,{PANEL_HEIGHT} \\(X11, Openbox, no")
            self.assertIn(" shows the countdown as text\n", report)
            self.assertRegex(report, r"✓ account 1: signed in, \d+ calendars? read \d+ s ago")
            self.assertNotRegex(report, f"@|Later|robin|{kestrel.data}|{os.environ['HOME']}")
            place = re.search(r"✓ shown as a card, (\d+)×(\d+) at (\d+),(\d+)", report)
            x, y, width, _ = geometry(windows("Kestrel test alert")[0])
            self.assertEqual([x + SHADOW_SIDE, y + SHADOW_TOP, width - 2 * SHADOW_SIDE],
                             [int(place[n]) for n in (3, 4, 1)])
            kestrel.done("dismiss")
            wait_until(lambda: not windows("Kestrel test alert"), "the test alert closed")

        with self.subTest("a Kestrel that hangs is told by the doctor"):
            kestrel.process.send_signal(signal.SIGSTOP)
            try:
                report = kestrel.verb("doctor")
            finally:
                kestrel.process.send_signal(signal.SIGCONT)
            self.assertEqual(report.returncode, 1)
            self.assertTrue(report.stdout.startswith("✗ No alert will fire.\n"), report.stdout)
            self.assertIn(f"(process {kestrel.process.pid})", report.stdout)

        with self.subTest("a click on it opens the agenda below the panel, Escape closes it"):
            time.sleep(1)
            columns = differing_columns(icon_alone, self.panel())
            xdotool("mousemove", WIDTH - 400 + (columns[0] + columns[-1]) // 2, PANEL_HEIGHT // 2, "click", 1)
            wait_until(lambda: windows("Kestrel"), "the agenda")
            x, y, width, height = geometry(windows("Kestrel")[0])
            self.assertEqual(width, 360)
            self.assertGreaterEqual(y, PANEL_HEIGHT)
            self.assertLess(y, PANEL_HEIGHT + 20)
            self.assertLessEqual(x + width, WIDTH)
            self.assertGreater(height, 150)
            xdotool("key", "Escape")
            wait_until(lambda: not windows("Kestrel"), "the agenda closed")

        with self.subTest("a card comes in time and at its place, and typed text goes on to where it went"):
            typed = self.folder / "typed"
            self.start(["xterm", "-geometry", "60x10+100+300", "-e", f"cat >{typed}"])
            wait_until(lambda: subprocess.run(["xdotool", "search", "--onlyvisible", "--class", "xterm"],
                                              capture_output=True).stdout, "the terminal")
            time.sleep(1)
            lead, ahead = 5 * 60, 6
            before = time.time()
            self.google.add_event(id="soon", title="Card in time", startsInMinutes=(lead + ahead) / 60, meetCode="kes-demo-bbb")
            kestrel.done("refresh")
            start = next(m["start"] for m in kestrel.json("agenda") if m["title"] == "Card in time")
            due = time.mktime(time.strptime(start[:19] + " UTC", "%Y-%m-%dT%H:%M:%S %Z")) - time.timezone
            due = due + float("0" + start[19:23]) - lead
            self.assertGreater(due, before)
            text = "the quick brown fox jumps over the lazy dog " * 3
            typing = subprocess.Popen(["xdotool", "type", "--delay", "90", text])
            seen = None
            while time.time() < due + 10 and seen is None:
                if windows("Card in time"):
                    seen = time.time()
                time.sleep(0.02)
            self.assertIsNotNone(seen, kestrel.log_text())
            self.assertGreaterEqual(seen, due - 0.05)
            typing.wait(60)
            xdotool("key", "Return", "ctrl+d")
            wait_until(lambda: typed.read_text() == text + "\n", "all of the text in the terminal")
            x, y, width, height = geometry(windows("Card in time")[0])
            self.assertEqual((x, width), (WIDTH - MARGIN - width, CARD_WIDTH + 2 * SHADOW_SIDE))
            self.assertEqual(y, PANEL_HEIGHT + MARGIN)

        with self.subTest("Join opens the link with the right account and closes the card"):
            body = pixels(x + SHADOW_SIDE, y + SHADOW_TOP, CARD_WIDTH, height - SHADOW_TOP - 38)
            green = [(column, row) for row, line in enumerate(body) for column, colour in enumerate(line)
                     if all(abs(a - b) < 6 for a, b in zip(colour, JOIN_GREEN))]
            self.assertGreater(len(green), 500)
            middle = green[len(green) // 2]
            xdotool("mousemove", x + SHADOW_SIDE + middle[0], y + SHADOW_TOP + middle[1], "click", 1)
            wait_until(self.opened.exists, "the browser")
            wait_until(lambda: not windows("Card in time"), "the card closed")
            self.assertEqual(self.opened.read_text(),
                             "https://meet.google.com/kes-demo-bbb?authuser=robin.sample@example.com\n")

        with self.subTest("a panel that dies and comes back shows the item again"):
            self.end_panel()
            wait_until(lambda: not has_owner("org.kde.StatusNotifierWatcher"), "the panel's tray gone")
            start_panel(self)
            wait_until(lambda: item_property("XAyatanaLabel"), "the status item again")

    def test_the_language_that_somebody_writes_into_the_file(self):
        kestrel = self.kestrel
        kestrel.start()
        file = kestrel.data / "kestrel.ini"
        wait_until(lambda: file.exists() and "hasShownInitialAutoOpen" in file.read_text(), "all that the first start writes")
        file.write_text(file.read_text() + "languageOverrideRaw=es\n")
        kestrel.done("settings")
        wait_until(lambda: windows("Ajustes de Kestrel"), f"Spanish while it runs: {file.read_text()}")
        kestrel.stop()
        file.write_text(file.read_text().replace("languageOverrideRaw=es", "languageOverrideRaw=en"))
        kestrel.start()
        kestrel.done("settings")
        wait_until(lambda: windows("Kestrel Settings"), f"English at the first start: {file.read_text()}")


unittest.main()
