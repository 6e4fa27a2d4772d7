"""One person's Kestrel, from the package to its removal: nothing but the keyboard, real windows and a real browser."""

import os
import pathlib
import shlex
import shutil
import subprocess
import tempfile
import time
import unittest

from browser_session import Browser, SampleCall
from kestrel_session import Kestrel, SampleGoogle, wait_until
from screen import item_property, start_panel, windows, xdotool

LEAD_MINUTES = 5


def secrets_in_keyring():
    answer = subprocess.run(
        ["gdbus", "call", "--session", "--dest", "org.freedesktop.secrets", "--object-path",
         "/org/freedesktop/secrets/collection/login", "--method", "org.freedesktop.DBus.Properties.Get",
         "org.freedesktop.Secret.Collection", "Items"], capture_output=True, text=True, check=True, timeout=20)
    return answer.stdout.count("/org/freedesktop/secrets/collection/login/")


def window_titles():
    found = subprocess.run(["xdotool", "search", "--onlyvisible", "--name", "."], capture_output=True, text=True, timeout=20)
    return [subprocess.run(["xdotool", "getwindowname", window], capture_output=True, text=True, timeout=20).stdout.strip()
            for window in found.stdout.split()]


def press(*keys):
    for key in keys:
        time.sleep(0.3)
        xdotool("key", key)


class Story(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory(prefix="kestrel-story-")))
        start_panel(self)
        self.google = SampleGoogle()
        self.addCleanup(self.google.stop)
        call = SampleCall()
        self.addCleanup(call.stop)
        self.browser = Browser(call)
        self.addCleanup(self.browser.stop)
        self.browser.start("about:blank")
        opener = self.folder / "browser"
        opener.write_text(f'#!/bin/sh\nexec {shlex.join(map(str, self.browser.command()))} "$@"\n')
        opener.chmod(0o755)
        self.prefix = self.folder / "unpacked"
        subprocess.run(["cmake", "--install", os.environ["KESTREL_BUILD"], "--prefix", self.prefix, "--component", "kestrel"],
                       check=True, capture_output=True, timeout=60)
        self.kestrel = Kestrel(self.google, browser=str(opener), program=self.prefix / "bin/kestrel")
        self.addCleanup(self.kestrel.close)

    def wait_for_call(self, what):
        wait_until(lambda: any("Sample call" in title for title in window_titles()), what)
        press("ctrl+w")
        wait_until(lambda: not any("Sample call" in title for title in window_titles()), "its tab closed")

    def test_from_the_package_to_its_removal(self):
        kestrel, google = self.kestrel, self.google
        google.remove_sample_events()
        before = set(pathlib.Path.home().rglob("*estrel*"))

        with self.subTest("the first start shows what Kestrel is, and Connect opens the sign-in"):
            kestrel.start()
            wait_until(lambda: windows("Kestrel"), "the agenda of the first start")
            press("Tab", "Return")
            wait_until(lambda: any("sign in" in title for title in window_titles()), "the sign-in page")

        with self.subTest("Allow signs in"):
            time.sleep(1)
            press("Tab", "Tab", "Tab", "Return")
            wait_until(lambda: kestrel.json("accounts", "list"), "the account")
            wait_until(lambda: secrets_in_keyring() == 2, "its tokens in the keyring")

        # a tab, whatever browsers this machine has installed
        preferences = kestrel.data / "kestrel.ini"
        preferences.write_text(preferences.read_text().replace('Mode\\":\\"popup', 'Mode\\":\\"tab'))

        with self.subTest("the panel counts down"):
            google.add_event(id="later", title="Later", startsInMinutes=42)
            kestrel.done("refresh")
            wait_until(lambda: item_property("XAyatanaLabel") in ("in 42 min", "in 41 min"), "the countdown")

        with self.subTest("a card comes in time, and joining opens the call in the browser"):
            google.add_event(id="soon", title="Review", startsInMinutes=LEAD_MINUTES + 0.1, meetCode="kes-demo-one")
            kestrel.done("refresh")
            self.assertFalse(windows("Review"))
            wait_until(lambda: windows("Review"), "the card")
            kestrel.done("join")
            self.wait_for_call("the call")
            kestrel.done("dismiss")
            wait_until(lambda: not windows("Review"), "the card closed")

        with self.subTest("settings hold from the moment that they are chosen: lead time, and a global key"):
            google.remove_event("soon")
            google.add_event(id="ten", title="Planning", startsInMinutes=2 * LEAD_MINUTES + 0.5, meetCode="kes-demo-two")
            kestrel.done("refresh")
            kestrel.done("settings")
            wait_until(lambda: windows("Kestrel Settings"), "the settings")
            xdotool("windowactivate", "--sync", windows("Kestrel Settings")[0])
            press("Tab", "Tab", "Right")  # past the tabs to the first choice
            wait_until(lambda: "leadTimeMinutes=10" in preferences.read_text(), "the lead time stored")
            press("shift+Tab", "Right", "Right", "Right", "Tab", "space")
            wait_until(lambda: "enableJoinShortcut=true" in preferences.read_text(), "the key stored")
            press("Escape")
            wait_until(lambda: not windows("Kestrel Settings"), "the settings closed")
            wait_until(lambda: windows("Planning"), "the card, ten minutes ahead", 45)
            press("super+shift+j")
            self.wait_for_call("the call that the key joined")

        with self.subTest("everything is still there after a restart"):
            kestrel.stop()
            kestrel.start()
            wait_until(lambda: len(kestrel.json("agenda")) == 2, "the meetings")
            self.assertTrue(kestrel.json("status")["accounts"][0]["isSignedIn"])
            self.assertIn("leadTimeMinutes=10", preferences.read_text())
            wait_until(lambda: item_property("XAyatanaLabel"), "the countdown")

        with self.subTest("nothing is left after the removal but what the person's folder holds"):
            kestrel.done("accounts", "remove", "robin.sample@example.com")
            wait_until(lambda: secrets_in_keyring() == 0, "the keyring without tokens")
            self.assertIn("/revoke", [request["path"] for request in google.get("/requests")["requests"]])
            kestrel.stop()
            shutil.rmtree(self.prefix)
            wait_until(lambda: not any(str(program).startswith(str(self.prefix)) for program in running_programs()),
                       "no program of the package runs")
            self.assertEqual(set(pathlib.Path.home().rglob("*estrel*")), before)


def running_programs():
    for process in pathlib.Path("/proc").glob("[0-9]*"):
        try:
            yield (process / "exe").readlink()
        except OSError:
            pass


unittest.main()
