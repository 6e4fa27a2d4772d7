"""What a desktop does to a program that runs for weeks. After each fault nothing has crashed, no setting and no account is
lost, the log says it once, and the next alert comes at its second."""

import contextlib
import datetime
import itertools
import json
import os
import pathlib
import random
import re
import signal
import socket
import struct
import subprocess
import tempfile
import threading
import time
import unittest
import zoneinfo

from kestrel_session import BIN, Kestrel, SampleGoogle, wait_until
from screen import has_owner, item_property, start_panel, windows

LEAD = 5 * 60
CALL = json.dumps({"mic": False, "cam": True, "hand": False, "share": False, "found": True})


def instant(text):
    return datetime.datetime.fromisoformat(text).timestamp()


class PlayedBrowser:
    """The relay of a browser with one Meet tab. `instead` is what happens, once, in the place of an operation's answer."""

    numbers = itertools.count(1)

    def __init__(self, folder, data):
        folder.mkdir(mode=0o700, parents=True, exist_ok=True)
        self.data = data
        self.instead = {}
        self.clients = []
        self.server = socket.socket(socket.AF_UNIX)
        path = folder / f"{next(self.numbers):016x}-{os.getpid()}.sock"
        self.server.bind(f"{path}.new")
        self.server.listen()
        os.rename(f"{path}.new", path)  # what has its name listens
        threading.Thread(target=self.accept, daemon=True).start()

    def accept(self):
        with contextlib.suppress(OSError), self.server:
            while True:
                self.clients.append(self.server.accept()[0])
                threading.Thread(target=self.serve, args=self.clients[-1:], daemon=True).start()

    def serve(self, client):
        answers = {"find": {"tab": 7}, "run": {"result": CALL}, "close": {"closed": True}, "open": {"opened": True}}

        def send(message):
            body = json.dumps(message).encode()
            client.sendall(struct.pack("=I", len(body)) + body)
        with contextlib.suppress(OSError), client:  # which may be killed
            send({"relay": 1, "route": "extension", "userDataDir": str(self.data)})
            while head := client.recv(4, socket.MSG_WAITALL):
                request = json.loads(client.recv(struct.unpack("=I", head)[0], socket.MSG_WAITALL))
                if happens := self.instead.pop(request["op"], None):
                    happens()
                else:
                    send({"id": request["id"], **answers[request["op"]]})

    def crash(self):
        for end in (self.server, *self.clients):
            with contextlib.suppress(OSError):
                end.shutdown(socket.SHUT_RDWR)


class FaultsOfTheDesktop(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory(prefix="kestrel-e2e-")))
        self.google = SampleGoogle()
        self.addCleanup(self.google.stop)
        self.google.remove_sample_events()
        self.opened = self.folder / "opened"
        browser = self.folder / "browser"
        browser.write_text(f'#!/bin/sh\ncase "$1" in http://127*) exec {BIN}/kestrel-sample-consent "$1";; esac\n'
                           f'echo "$1" >>{self.opened}\n')
        browser.chmod(0o755)
        self.kestrel = Kestrel(self.google, "--secret-store", "file", browser=str(browser))
        self.addCleanup(self.kestrel.close)
        self.kestrel.environment["KESTREL_BROWSER_SOCKETS"] = str(self.folder / "sockets")
        self.kestrel.data.mkdir()
        (self.kestrel.data / "made-for-a-sample-google").touch()
        self.preferences = self.kestrel.data / "kestrel.ini"

    def start(self, wrapper=(), **preferences):
        preferences = {"popover.hasShownInitialAutoOpen.v1": "true", "statusItem.saidTrayIsMissing.v1": "true", **preferences}
        self.preferences.write_text("; mine\n[General]\n" + "".join(f"{k}={v}\n" for k, v in preferences.items()))
        self.kestrel.start(wrapper)
        self.kestrel.done("accounts", "add")
        self.kept = self.preferences.read_text()
        self.accounts = self.account_ids()
        self.files = set(os.listdir(self.kestrel.data))
        self.meetings = 0

    def account_ids(self):
        return [account["id"] for account in self.kestrel.json("accounts", "list")]

    def strays(self):
        return [path.name for path in self.kestrel.data.iterdir()
                if path.is_file() and path.name not in self.files and path.suffix != ".lock"]

    def add_meeting(self, ahead):
        """Whose alert is due in so many seconds; its title and that instant."""
        self.meetings += 1
        title = f"Meeting {self.meetings}"
        self.google.add_event(id=f"m{self.meetings}", title=title, startsInMinutes=(LEAD + ahead) / 60,
                              meetCode=f"kes-demo-{self.meetings}")
        self.kestrel.done("refresh")
        start = next(meeting["start"] for meeting in self.kestrel.json("agenda") if meeting["title"] == title)
        return title, instant(start) - LEAD

    def comes_in_time(self, title, due):
        self.assertFalse(windows(title) and time.time() < due)
        wait_until(lambda: windows(title), f"the card of {title}; {self.kestrel.log_text()}")
        self.assertGreaterEqual(time.time(), due)

    def is_sound(self):
        """And says so by an alert in time; what was stored before is there."""
        self.comes_in_time(*self.add_meeting(4))
        self.assertEqual(self.preferences.read_text(), self.kept)
        self.assertEqual(self.account_ids(), self.accounts)
        self.assertEqual(self.strays(), [])
        self.kestrel.stop()
        self.assertNotIn("Sanitizer", self.kestrel.log_text())

    def said(self, pattern):
        return re.findall(pattern, self.kestrel.log_text())

    def test_the_panel_is_killed_and_comes_back(self):
        end_panel = start_panel(self)
        self.start()
        self.add_meeting(60)
        wait_until(lambda: item_property("XAyatanaLabel") == "in 6 min", "the countdown")
        end_panel(signal.SIGKILL)
        wait_until(lambda: not has_owner("org.kde.StatusNotifierWatcher"), "the panel's tray gone")
        self.comes_in_time(*self.add_meeting(3))
        start_panel(self)
        wait_until(lambda: item_property("XAyatanaLabel") in ("in 6 min", "in 5 min"), "the status item again")
        self.assertEqual(self.said("menubar: .*"), [])
        self.is_sound()

    def helper(self):
        found = subprocess.run(["pgrep", "-f", f"kestrel-browser-helper .*{self.kestrel.data}"], capture_output=True, text=True)
        return int(found.stdout or 0)

    def start_browser(self):
        browser = PlayedBrowser(self.folder / "sockets", self.folder / "profile")
        self.addCleanup(browser.crash)
        return browser

    def test_the_helper_and_the_browser_are_killed_in_the_middle(self):
        applications = pathlib.Path(os.environ["XDG_DATA_HOME"]) / "applications"
        applications.mkdir(parents=True, exist_ok=True)
        (applications / "chromium.desktop").write_text("[Desktop Entry]\nType=Application\nName=Chromium\n"
                                                       f"Exec=/bin/false --user-data-dir={self.folder}/profile %U\n")
        browser = self.start_browser()
        self.start(enableMeetControls="true")

        def in_call():
            return "in-call" in json.loads(self.kestrel.done("status", "--waybar"))["class"]
        wait_until(in_call, "the call")
        self.add_meeting(120 - LEAD)
        poll = "Meet XPC connection failed: "
        for operation, verb, line in (("find", None, poll), ("run", None, poll),
                                      ("open", ["join"], "ChromeLauncher XPC error: "),
                                      ("close", ["action", "meetLeave"], "close tab XPC error: ")):
            with self.subTest(operation):
                line += "the browser helper ended before it answered"
                before = len(self.said(line))
                killed = self.helper()
                browser.instead[operation] = lambda: os.kill(killed, signal.SIGKILL)
                if verb:
                    self.kestrel.done(*verb)
                wait_until(lambda: len(self.said(line)) > before, line)
                wait_until(lambda: self.helper() not in (0, killed), "another helper")
                wait_until(in_call, "the call again")
                self.assertEqual(len(self.said(line)), before + 1)
        self.assertIn("https://meet.google.com/kes-demo-1", self.opened.read_text())

        with self.subTest("the browser"):
            browser.instead["run"] = browser.crash
            line = "poll failed: The browser went before it answered"
            wait_until(lambda: self.said(line), line)
            wait_until(lambda: not in_call(), "the call over")
            self.start_browser()
            wait_until(in_call, "the browser that was started anew")
            self.assertEqual(len(self.said(line)), 1)
        self.is_sound()

    def test_the_port_of_the_bridge_is_taken(self):
        other = socket.socket()
        self.addCleanup(other.close)
        other.bind(("127.0.0.1", 0))
        other.listen()
        port = other.getsockname()[1]
        self.kestrel.environment["KESTREL_BRIDGE_PORT"] = str(port)
        self.start(enableStreamDeckBridge="true")
        self.assertIn("does not listen", self.kestrel.verb("doctor").stdout)
        other.close()
        wait_until(lambda: self.said("listening on"), "the bridge")
        with socket.create_connection(("127.0.0.1", port), timeout=20):
            pass
        self.assertEqual(self.said("bridge: listen.*"), ["bridge: listen failed: The bound address is already in use",
                                                         f"bridge: listening on 127.0.0.1:{port}",
                                                         "bridge: listener: ready"])
        self.is_sound()

    def test_the_disk_is_full(self):
        self.start(["env", "--ignore-signal=XFSZ"], long="x" * 99000)

        def room(size):
            subprocess.run(["prlimit", "--pid", str(self.kestrel.process.pid), f"--fsize={size}"], check=True)
        room("90000:unlimited")
        self.assertIn("could not be saved", self.kestrel.verb("accounts", "add").stderr)
        self.comes_in_time(*self.add_meeting(4))
        self.assertEqual(self.preferences.read_text(), self.kept)
        room("unlimited")
        self.kestrel.done("accounts", "add")
        self.assertEqual(self.account_ids()[:1], self.accounts)
        self.accounts, self.kept = self.account_ids(), self.preferences.read_text()
        self.is_sound()

    def test_asleep_and_awake(self):
        bus = subprocess.Popen(["dbus-daemon", "--session", "--nofork", "--print-address"], stdin=subprocess.DEVNULL,
                               stdout=subprocess.PIPE, text=True)
        self.addCleanup(lambda: (bus.kill(), bus.wait(20), bus.stdout.close()))
        system = {"DBUS_SYSTEM_BUS_ADDRESS": bus.stdout.readline().strip()}
        self.kestrel.environment.update(system)
        logind = subprocess.Popen(["/usr/bin/python3", "-m", "dbusmock", "--system", "--template", "logind"],
                                  env={**os.environ, **system}, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL)
        self.addCleanup(lambda: (logind.kill(), logind.wait(20)))
        on_bus = ["--address", system["DBUS_SYSTEM_BUS_ADDRESS"]]
        subprocess.run(["gdbus", "wait", *on_bus, "--timeout", "30", "org.freedesktop.login1"], check=True)
        self.start()
        alert = self.add_meeting(14)

        def prepare_for_sleep(goes):
            subprocess.run(["gdbus", "call", *on_bus, "--dest", "org.freedesktop.login1", "--object-path",
                            "/org/freedesktop/login1", "--method", "org.freedesktop.DBus.Mock.EmitSignal",
                            "org.freedesktop.login1.Manager", "PrepareForSleep", "b", f"[<{goes}>]"], check=True,
                           stdout=subprocess.DEVNULL)
        prepare_for_sleep("true")
        plans = len(self.said("rearm: next fire"))
        prepare_for_sleep("false")
        wait_until(lambda: len(self.said("rearm: next fire")) > plans, "planned anew on waking up")
        self.comes_in_time(*alert)
        self.is_sound()

    def test_a_journey_to_another_time_zone(self):
        local = self.folder / "localtime"
        local.touch()
        elsewhere = ["unshare", "--map-current-user", "--keep-caps", "--mount", "sh", "-c",
                     f'mount --bind {local} /etc/localtime && exec "$0" "$@"']
        if subprocess.run([*elsewhere, "true"], capture_output=True).returncode != 0:
            self.skipTest("this machine lets nobody have a zone of his own")
        self.kestrel.environment.pop("TZ", None)
        self.start(elsewhere)
        _, due = self.add_meeting(60)
        for written, zone in enumerate(("Europe/Berlin", "America/St_Johns", "Australia/Lord_Howe")):
            local.write_bytes(pathlib.Path("/usr/share/zoneinfo", zone).read_bytes())
            os.utime(local, (written, written))
            start = datetime.datetime.fromtimestamp(due + LEAD, zoneinfo.ZoneInfo(zone))
            self.assertRegex(json.loads(self.kestrel.done("status", "--waybar"))["tooltip"],
                             f"^({start:%H:%M}|{start:%-I:%M %p}) – ")
        self.is_sound()

    def test_killed_at_any_moment_while_accounts_are_stored(self):
        self.start()
        seed = random.randrange(2**32)
        moments = random.Random(seed)
        for kill in range(5):
            before = self.account_ids()
            adding = subprocess.Popen([BIN / "kestrel", *self.kestrel.options, "accounts", "add"],
                                      env=self.kestrel.environment, stdin=subprocess.DEVNULL,
                                      stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            time.sleep(moments.uniform(0, 0.5))
            self.kestrel.stop(signal.SIGKILL)
            adding.wait(60)
            self.kestrel.start()
            after = self.account_ids()
            told = f"kill {kill} of seed {seed}"
            self.assertEqual(after[:len(before)], before, told)
            self.assertLessEqual(len(after), len(before) + 1, told)
            self.assertTrue(self.preferences.read_text().startswith(self.kept.split("registeredAccounts")[0]), told)
            self.assertEqual(self.said("damaged"), [], told)
            self.assertEqual(self.strays(), [], told)
        self.accounts, self.kept = after, self.preferences.read_text()
        self.is_sound()


unittest.main(verbosity=2)
