"""Bad input and trouble, as the person meets it: the real program says what is wrong, loses nothing and never crashes."""

import hashlib
import os
import pathlib
import re
import signal
import subprocess
import tempfile
import unittest

from kestrel_session import BIN, Kestrel, SampleGoogle, wait_until
from screen import windows

ROBIN = "robin.sample@example.com"
INTEGERS = ["leadTimeMinutes", "autoDismissSeconds", "highlightToleranceSeconds", "popupWindowWidth", "popupWindowHeight"]
BOOLEANS = ["launchAtLogin", "stackSimultaneousAlerts", "reduceTransparency", "playSoundOnAlert",
            "secondaryAlertOneMinute", "clickOutsideToDismiss", "enableJoinShortcut", "enableMeetControls",
            "showMeetMicInMenuBar", "enableStreamDeckBridge", "popover.hasShownInitialAutoOpen.v1"]
TEXTS = ["screenPositionRaw", "selectedCalendarIDsByAccountRaw", "alertSoundRaw", "languageOverrideRaw", "hotkey.join",
         "hotkey.meet.mute", "secretStore", "browserProfile"]
# even root is refused what the permissions refuse
UNPRIVILEGED = [] if os.geteuid() else ["setpriv", "--bounding-set=-dac_override,-dac_read_search",
                                        "--inh-caps=-dac_override,-dac_read_search"]
STRANGER = """
import sys, time, dbus, dbus.service, dbus.mainloop.glib
from gi.repository import GLib
name, kind = sys.argv[1:]
bus = dbus.SessionBus(mainloop=dbus.mainloop.glib.DBusGMainLoop())
bus.request_name(name)
class Other(dbus.service.Object):
    @dbus.service.method("app.kestrel.Kestrel1", in_signature="as", out_signature="s")
    def Run(self, words):
        return "hello"
if kind == "answers otherwise":
    Other(bus, "/app/kestrel/Kestrel")
print("ready", flush=True)
time.sleep(1000) if kind == "never answers" else GLib.MainLoop().run()
"""


def written(keys, value):
    return "".join(f"{key}={value}\n" for key in keys).encode()


class Trouble(unittest.TestCase):
    def setUp(self):
        self.google = SampleGoogle()
        self.addCleanup(self.google.stop)
        self.notices = self.start_notices()
        self.kestrel = self.make_kestrel()

    def make_kestrel(self):
        kestrel = Kestrel(self.google, "--secret-store", "file")
        self.addCleanup(kestrel.close)
        kestrel.data.mkdir()
        (kestrel.data / "made-for-a-sample-google").touch()
        self.preferences = kestrel.data / "kestrel.ini"
        return kestrel

    def start(self, command, **options):
        process = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, text=True, **options)

        def end():
            process.kill()
            process.wait(20)
            process.stdout.close()
        self.addCleanup(end)
        return process

    def start_notices(self):
        """The log of a notification service."""
        log = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory())) / "notices"
        self.start(["/usr/bin/python3", "-m", "dbusmock", "--session", "--template", "notification_daemon", "-l", log])
        subprocess.run(["gdbus", "wait", "--session", "--timeout", "30", "org.freedesktop.Notifications"], check=True)
        return log

    def said(self, text):
        return self.notices.read_text().count(text)

    def sign_in(self, *meetings):
        """With these meetings alone, in minutes from now."""
        self.kestrel.done("accounts", "add")
        for number, minutes in enumerate(meetings):
            self.google.add_event(id=f"trouble{number}", title=f"Meeting {number}", startsInMinutes=minutes,
                                  meetCode=f"kes-demo-a{number}")
        self.kestrel.done("refresh")

    def test_a_preference_file_of_any_kind(self):
        another_type = written(INTEGERS, '"soon"') + written(BOOLEANS, "maybe") + written(TEXTS, "1, 2")
        rows = {
            "of another type": another_type,
            "too large": written(INTEGERS, 2**63 - 1) + written(BOOLEANS, 2) + written(TEXTS, "x" * 5000),
            "too small": written(INTEGERS, -2**63) + written(BOOLEANS, -1) + written(TEXTS, '""'),
            "no number at all": written(INTEGERS, 10**40) + written(BOOLEANS, '""') + written(TEXTS, "@Invalid()"),
            "bytes": b"[General\n\xff\xfe\x00=\x01\n" + os.urandom(300) + b'\nregisteredAccounts.v1="@ByteArray([{]'
                     b')"\n' + another_type,
        }
        for name, content in rows.items():
            with self.subTest(name):
                self.kestrel = kestrel = self.make_kestrel()
                self.preferences.write_bytes(b"; mine\n[General]\n" + content + b"unknown=kept\n")
                kestrel.start()
                self.sign_in(4.5)
                kestrel.done("settings")
                kestrel.done("show")
                if name in ("of another type", "bytes"):
                    wait_until(lambda: windows("Meeting 0"), "the card of the default lead time")
                kestrel.stop()
                self.assertNotIn("ERROR: ", kestrel.log_text())
                text = self.preferences.read_text()
                self.assertTrue(text.startswith("; mine\n[General]\n"), text)
                self.assertIn("\nunknown=kept\n", text)
                self.assertEqual(kestrel.log_text().count("is damaged"), 1 if name == "bytes" else 0)
                if name == "bytes":
                    self.assertIn(content, (kestrel.data / "kestrel.ini.broken").read_bytes())

    def test_two_starts_in_the_same_moment(self):
        starts = [subprocess.Popen([BIN / "kestrel", *self.kestrel.options], env=self.kestrel.environment,
                                   stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
                  for _ in range(5)]
        verbs = [self.kestrel.verb("status") for _ in range(3)]
        wait_until(lambda: sum(start.poll() is None for start in starts) == 1, "one of them to be left")
        ended = [start for start in starts if start.poll() is not None]
        self.assertEqual({(start.returncode, start.stderr.read()) for start in ended}, {(0, "")})
        for start in ended:
            self.assertRegex(start.stdout.read(), "^Kestrel is (running|starting) already")
        for verb in verbs:
            self.assertTrue(verb.returncode == 0 or (verb.returncode == 3 and verb.stderr.startswith("Kestrel is ")), verb)
        self.kestrel.done("status")
        for start in starts:
            if start.poll() is None:
                start.terminate()
                self.assertEqual(start.wait(30), 0)
            start.stdout.close()
            start.stderr.close()

    def test_a_stranger_has_the_name(self):
        data = hashlib.sha256(os.path.realpath(self.kestrel.data).encode()).hexdigest()[:12]
        name = f"app.kestrel.Kestrel.data_{data}"
        for kind in ("knows no verbs", "answers otherwise", "never answers"):
            with self.subTest(kind):
                stranger = self.start(["/usr/bin/python3", "-c", STRANGER, name, kind])
                self.assertEqual(stranger.stdout.readline(), "ready\n")
                for words in ((), ("status",)):
                    result = self.kestrel.verb(*words)
                    self.assertEqual((result.returncode, result.stdout), (3, ""), result)
                    self.assertIn(f'"python3" (process {stranger.pid})', result.stderr)
                    self.assertIn("does not answer" if kind == "never answers" else "is not this Kestrel", result.stderr)
                stranger.kill()
                stranger.wait(20)
        self.kestrel.start()

    def test_a_home_that_cannot_be_written_to(self):
        kestrel = self.kestrel
        kestrel.start()
        self.sign_in(4.5)
        kestrel.stop()
        self.preferences.write_text("hasNoFirstRun=1\n" + re.sub(r"popover\..*\n", "", self.preferences.read_text()))
        before = self.preferences.read_text()
        os.chmod(kestrel.data, 0o500)
        kestrel.start(UNPRIVILEGED)
        wait_until(lambda: windows("Meeting 0"), "the card")
        wait_until(lambda: windows("Kestrel"), "the agenda of the first run")
        wait_until(lambda: self.said("Kestrel cannot save its settings"), "the person is told")
        kestrel.stop()
        self.assertEqual(self.said("Kestrel cannot save its settings"), 1)
        os.chmod(self.preferences, 0)
        kestrel.start(UNPRIVILEGED)
        kestrel.stop()
        self.assertEqual(kestrel.log_text().count("cannot be read"), 1, kestrel.log_text())
        os.chmod(kestrel.data, 0o700)
        os.chmod(self.preferences, 0o600)
        self.assertEqual(self.preferences.read_text(), before)

    def test_a_disk_that_is_full_while_preferences_are_written(self):
        kestrel = self.kestrel
        before = "[General]\npopover.hasShownInitialAutoOpen.v1=true\nlong=" + "x" * 5000 + "\n"
        self.preferences.write_text(before)
        kestrel.start(["env", "--ignore-signal=XFSZ"])

        def room(size):
            subprocess.run(["prlimit", "--pid", str(kestrel.process.pid), f"--fsize={size}"], check=True)
        room("4096:unlimited")
        added = kestrel.verb("accounts", "add")
        self.assertEqual(added.returncode, 1)
        self.assertIn("could not be saved", added.stderr)
        wait_until(lambda: self.said("Kestrel cannot save its settings"), "the person is told")
        self.assertEqual(kestrel.verb("accounts", "add").returncode, 1)
        self.assertEqual(self.said("Kestrel cannot save its settings"), 1)
        self.assertEqual(self.preferences.read_text(), before)
        room("unlimited")
        kestrel.done("accounts", "add")
        wait_until(lambda: self.said("CloseNotification"), "the notice is taken back")
        self.assertTrue(self.preferences.read_text().startswith(before))
        self.assertEqual(len(kestrel.json("accounts", "list")), 3)

    def test_a_missing_helper_leaves_the_default_browser(self):
        folder = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory(dir=BIN))) / "without" / "bin"
        folder.mkdir(parents=True)
        for program in BIN.glob("kestrel*"):
            if program.is_file() and "helper" not in program.name:
                os.link(program, folder / program.name)
        applications = folder / "share/applications"
        applications.mkdir(parents=True)
        (applications / "google-chrome.desktop").write_text(
            "[Desktop Entry]\nType=Application\nName=Chrome\nExec=/bin/false %U\n")
        browser = folder / "browser"
        browser.write_text(f'#!/bin/sh\ncase "$1" in http://127*) exec {BIN}/kestrel-sample-consent "$1";; esac\n'
                           f'echo "$1" >>{folder}/opened\n')
        browser.chmod(0o755)
        kestrel = self.kestrel
        kestrel.environment.update(KESTREL_BROWSER=str(browser), XDG_DATA_HOME=str(folder / "share"))
        self.preferences.write_text("enableMeetControls=true\n")
        kestrel.program = folder / "kestrel"
        kestrel.start()
        self.sign_in(4.5)
        kestrel.done("join")
        wait_until((folder / "opened").exists, "the default browser")
        self.assertIn("https://meet.google.com/kes-demo-", (folder / "opened").read_text())
        kestrel.done("action", "meetMute")
        self.assertEqual(kestrel.log_text().count("ChromeLauncher XPC error: the browser helper is missing"), 1)
        self.assertLessEqual(kestrel.log_text().count("Meet XPC connection failed: the browser helper is missing"), 1)

    def test_a_sign_in_that_has_ended(self):
        kestrel = self.kestrel
        kestrel.start()
        self.sign_in(30)
        account = kestrel.json("status")["accounts"][0]["id"]
        choice = f'selectedCalendarIDsByAccountRaw="{{\\"{account}\\":[\\"primary\\"]}}"\n'
        with self.preferences.open("a") as file:
            file.write(choice)
        wait_until(lambda: not kestrel.json("status")["isRefreshing"], "the refresh to end")

        self.google.post("/expire-tokens")
        self.google.post("/revoke-all")
        kestrel.done("refresh")
        for again in ("while it runs", "at the next start"):
            with self.subTest(again):
                wait_until(lambda: self.said(f"{ROBIN} is not signed in"), "the person is told")
                wait_until(lambda: "sign in again" in kestrel.done("agenda").lower(), "the agenda says so")
                self.assertIn("not signed in", kestrel.done("status"))
                self.assertFalse(kestrel.json("status")["accounts"][0]["isSignedIn"])
                if again == "while it runs":
                    self.notices.write_text("")
                    kestrel.stop()
                    kestrel.start()

        kestrel.environment["KESTREL_SAMPLE_ACCOUNT"] = "casey.sample@example.org"
        kestrel.stop()
        kestrel.start()
        other = kestrel.verb("accounts", "sign-in", ROBIN)
        self.assertEqual(other.returncode, 1)
        self.assertIn("another account", other.stderr)
        self.assertFalse(kestrel.json("status")["accounts"][0]["isSignedIn"])

        del kestrel.environment["KESTREL_SAMPLE_ACCOUNT"]
        kestrel.stop()
        kestrel.start()
        kestrel.done("accounts", "sign-in", ROBIN)
        wait_until(lambda: any(m["title"] == "Meeting 0" for m in kestrel.json("agenda")), "its meetings")
        self.assertEqual([a["id"] for a in kestrel.json("status")["accounts"]], [account])
        self.assertIn(choice, self.preferences.read_text())
        wait_until(lambda: self.said("CloseNotification"), "the notice is taken back")

    def test_the_end_of_the_session(self):
        kestrel = self.kestrel
        self.preferences.write_text("popover.hasShownInitialAutoOpen.v1=true\nstatusItem.saidTrayIsMissing.v1=true\n"
                                    "enableMeetControls=true\n")
        services = pathlib.Path(os.environ["XDG_RUNTIME_DIR"]) / "dbus-1/services"
        kestrel.start()
        self.sign_in(4.5)
        kestrel.stop()
        kept = self.preferences.read_text()
        for end in (signal.SIGTERM, signal.SIGINT, signal.SIGHUP, "bus", "display"):
            with self.subTest(end=end):
                bus = self.start(["dbus-daemon", "--session", "--nofork", "--print-address"])
                kestrel.environment["DBUS_SESSION_BUS_ADDRESS"] = bus.stdout.readline().strip()
                display = self.start(["Xvfb", "-displayfd", "1", "-nolisten", "tcp", "-noreset"],
                                     stderr=subprocess.DEVNULL)
                kestrel.environment["DISPLAY"] = ":" + display.stdout.readline().strip()
                shown = dict(os.environ, DISPLAY=kestrel.environment["DISPLAY"])

                def card():
                    return subprocess.run(["xdotool", "search", "--onlyvisible", "--name", "^Meeting 0$"], env=shown,
                                          capture_output=True).stdout
                if end == "display":  # Qt ends the process where it stands
                    kestrel.environment["ASAN_OPTIONS"] = "detect_leaks=0"
                kestrel.start()
                wait_until(card, "the card")
                wait_until(lambda: list(services.glob("*")), "the helper made known to the bus")
                process, kestrel.process = kestrel.process, None
                {"bus": bus.kill, "display": display.kill}.get(end, lambda: process.send_signal(end))()
                self.assertEqual(process.wait(30), 0 if isinstance(end, signal.Signals) else 1, kestrel.log_text())
                if end != "display":
                    self.assertEqual(card(), b"")
                self.assertNotIn("Sanitizer", kestrel.log_text())
                self.assertEqual(self.preferences.read_text(), kept)
                self.assertEqual(list(services.glob("*")), [])


unittest.main(verbosity=2)
