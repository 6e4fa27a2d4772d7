"""Faults of Google, of the network and of the keyring: nothing is lost, the log says when each began and ended, and the
first good refresh brings meetings and alerts back."""

import contextlib
import hashlib
import json
import os
import pathlib
import re
import signal
import socket
import subprocess
import threading
import unittest
import unittest.mock
import urllib.request

import dbus

from kestrel_session import BIN, Kestrel, SampleGoogle, wait_until
from screen import has_owner, windows, xdotool

ROBIN, CASEY = "robin.sample@example.com", "casey.sample@example.org"
EVENTS, TOKEN = "/calendar/v3/calendars/primary/events", "/token"
LIST = "/calendar/v3/users/me/calendarList"
SECRETS = "org.freedesktop.secrets"
STATUSES = [{"fault": "status", "status": status} for status in (401, 403, 410, 429, 500, 503)]
BROKEN = [{"fault": kind} for kind in ("half", "garbage", "html", "close", "huge")]


def secret_service(data):
    """The service attribute of the secrets of a data folder."""
    return "app.kestrel.Kestrel.data_" + hashlib.sha256(os.path.realpath(data).encode()).hexdigest()[:12]


class Line:
    """The way to a server, which can be down. Connections that stand when it goes down end."""

    def __init__(self, base):
        self.port = int(base.rsplit(":", 1)[1])
        self.server, self.ends = None, set()
        self.up(0)
        self.base = f"http://127.0.0.1:{self.server.getsockname()[1]}"

    def up(self, port=None):
        self.server = socket.create_server(("127.0.0.1", int(self.base.rsplit(":", 1)[1]) if port is None else port))
        threading.Thread(target=self.accept, args=[self.server], daemon=True).start()

    def down(self):
        server, self.server = self.server, None
        server.shutdown(socket.SHUT_RDWR)
        server.close()
        for end in list(self.ends):
            self.end(end)

    def accept(self, server):
        while self.server is server:
            try:
                near = server.accept()[0]
                far = socket.create_connection(("127.0.0.1", self.port))
            except OSError:
                return
            self.ends |= {near, far}
            for source, target in ((near, far), (far, near)):
                threading.Thread(target=self.pump, args=[source, target], daemon=True).start()

    def pump(self, source, target):
        try:
            while piece := source.recv(65536):
                target.sendall(piece)
        except OSError:
            pass
        self.end(source)
        self.end(target)
        source.close()

    def end(self, end):
        self.ends.discard(end)
        with contextlib.suppress(OSError):  # it is closed already
            end.shutdown(socket.SHUT_RDWR)


class Keyring:
    """The real one of this session, whose password is "pw"."""

    def __init__(self):
        self.bus = dbus.SessionBus(private=True)
        self.process = None

    def service(self, interface="org.freedesktop.Secret.Service"):
        return dbus.Interface(self.bus.get_object(SECRETS, "/org/freedesktop/secrets"), interface)

    def lock(self):
        self.service().Lock(["/org/freedesktop/secrets/collection/login"])

    def secret(self, service, account):
        session = self.service().OpenSession("plain", "")[1]
        item = self.service().SearchItems({"service": service, "account": account})[0][0]
        return bytes(self.service().GetSecrets([item], session)[item][2]).decode()

    def unlock(self):
        session = self.service().OpenSession("plain", "")[1]
        self.service("org.gnome.keyring.InternalUnsupportedGuiltRiddenInterface").UnlockWithMasterPassword(
            "/org/freedesktop/secrets/collection/login", (session, b"", b"pw", "text/plain"))

    def kill(self):
        os.kill(self.bus.get_object("org.freedesktop.DBus", "/").GetConnectionUnixProcessID(SECRETS), signal.SIGKILL)
        wait_until(lambda: not has_owner(SECRETS), "the keyring is gone")
        if self.process:
            self.process.wait(20)

    def start(self):
        self.process = subprocess.Popen(["gnome-keyring-daemon", "--foreground", "--unlock", "--components=secrets"],
                                        stdin=subprocess.PIPE, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.process.stdin.write(b"pw")
        self.process.stdin.close()
        wait_until(lambda: has_owner(SECRETS), "the keyring is back")

    def stop(self):
        if self.process:
            self.process.kill()
            self.process.wait(20)


class Faults(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.keyring = Keyring()
        cls.addClassCleanup(cls.keyring.stop)
        # up to a minute before its own refresh: the other tests go on meanwhile
        cls.early = cls()
        cls.addClassCleanup(cls.early.doCleanups)
        cls.early.setUp()
        cls.early.lose_the_line()

    def setUp(self):
        self.google = SampleGoogle()
        self.addCleanup(self.google.stop)
        self.line = Line(self.google.base)
        self.addCleanup(lambda: self.line.server and self.line.down())
        self.kestrel = Kestrel(self.line)
        self.addCleanup(self.kestrel.close)
        self.kestrel.data.mkdir()
        (self.kestrel.data / "made-for-a-sample-google").touch()
        (self.kestrel.data / "kestrel.ini").write_text(
            "popover.hasShownInitialAutoOpen.v1=true\nstatusItem.saidTrayIsMissing.v1=true\n")
        self.google.remove_sample_events()
        self.google.add_event(id="known", title="Known", startsInMinutes=30, meetCode="kes-demo-a1")
        self.read = 0  # how far into the log

    def start_process(self, *command, **options):
        process = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, text=True, **options)

        def end():
            process.kill()
            process.wait(20)
            process.stdout.close()
        self.addCleanup(end)
        return process

    def start_mock(self, bus, template, name, log=os.devnull):
        self.start_process("/usr/bin/python3", "-m", "dbusmock", bus, "--template", template, "-l", log)
        subprocess.run(["gdbus", "wait", bus, "--timeout", "30", name], check=True)

    def start_signed_in(self):
        self.kestrel.start()
        self.kestrel.done("accounts", "add")
        self.kestrel.done("refresh")
        self.assertEqual(self.titles(), ["Known"])
        self.settings = (self.kestrel.data / "kestrel.ini").read_text()
        self.log()

    def titles(self):
        return [meeting["title"] for meeting in self.kestrel.json("agenda")]

    def log(self):
        """What the log tells of faults since it was read last."""
        text = self.kestrel.log_text()
        new, self.read = text[self.read:], len(text)
        return [line for line in new.splitlines()
                if line.startswith(("auth: ", "calendar: ")) and not re.search(": (fetchUpcoming|Signed into)", line)]

    def refresh(self, times=1):
        for _ in range(times):
            self.kestrel.done("refresh")

    def assert_nothing_lost(self):
        self.assertTrue(all(account["isSignedIn"] for account in self.kestrel.json("status")["accounts"]))
        self.assertEqual((self.kestrel.data / "kestrel.ini").read_text(), self.settings)

    def clear_faults(self):
        urllib.request.urlopen(urllib.request.Request(self.google.base + "/faults", method="DELETE"))

    def test_google_answers_otherwise_than_it_should(self):
        self.start_signed_in()
        for path, faults in ((EVENTS, STATUSES + BROKEN), (TOKEN, STATUSES[1:] + BROKEN)):
            for fault in faults:
                with self.subTest(path=path, **fault):
                    self.google.post("/faults", {"path": path, **fault})
                    self.google.post("/expire-tokens")
                    self.refresh(2)
                    self.assertEqual(self.titles(), [])
                    said = self.log()
                    self.assertEqual(len(said), 1, said)
                    status = str(fault.get("status", ""))
                    self.assertRegex(said[0], r"^calendar: Failed fetching <private> for account \S+: .*" + status)
                    self.clear_faults()
                    self.refresh()
                    self.assertEqual(self.titles(), ["Known"])
                    said = self.log()
                    self.assertEqual(len(said), 1, said)
                    self.assertRegex(said[0], "^calendar: Fetching <private> for account .* works again$")
                    self.assert_nothing_lost()
            with self.subTest(path=path, fault="slow"):
                self.google.post("/faults", {"path": path, "fault": "slow", "milliseconds": 1500, "times": 1})
                self.google.post("/expire-tokens")
                self.refresh()
                self.assertEqual((self.titles(), self.log()), (["Known"], []))

    def test_the_list_of_calendars_fails(self):
        self.start_signed_in()
        self.kestrel.done("settings")
        wait_until(lambda: windows("Kestrel Settings"), "the settings")
        xdotool("key", "ctrl+Next")  # beside the accounts

        def asked():
            return [request["path"] for request in self.google.get("/requests")["requests"]].count(LIST)

        for fault in STATUSES + BROKEN + [None]:
            with self.subTest(fault=fault):
                if fault:
                    self.google.post("/faults", {"path": LIST, **fault})
                before = asked()
                xdotool("key", "ctrl+Next")  # to the accounts, which lists their calendars
                wait_until(lambda: asked() > before, "the list is asked for")
                self.refresh()
                if fault:
                    wait_until(lambda: "Failed listing" in self.kestrel.log_text()[self.read:], "the line")
                    self.clear_faults()
                self.assertEqual(len(self.log()), 1 if fault else 0)
                self.assertEqual(self.titles(), ["Known"])
                self.assert_nothing_lost()
                xdotool("key", "ctrl+Prior")

    def test_alerts_come_with_the_first_good_refresh_and_once(self):
        self.start_signed_in()
        kestrel = self.kestrel
        self.google.post("/faults", {"path": EVENTS, "fault": "status", "status": 503})
        self.google.add_event(id="due", title="Due", startsInMinutes=4.5, meetCode="kes-demo-a2")
        self.refresh()
        self.assertEqual(windows("Due"), [])
        self.clear_faults()
        self.refresh()
        wait_until(lambda: windows("Due"), "the card")

        self.line.down()
        self.refresh()
        self.assertEqual(self.titles(), [])
        self.assertEqual(len(windows("Due")), 1, "who was told is not untold")
        kestrel.done("dismiss")
        self.line.up()
        plans = kestrel.log_text().count("rearm")
        self.refresh()
        self.assertEqual(self.titles(), ["Due", "Known"])
        wait_until(lambda: kestrel.log_text().count("rearm") > plans, "the alerts are planned anew")
        self.assertEqual(kestrel.log_text().count("Presented alert"), 1)

    def lose_the_line(self):
        self.start_signed_in()
        self.google.post("/expire-tokens")
        self.line.down()
        self.refresh(10)
        said = self.log()
        self.assertEqual(len(said), 1, said)
        self.assertRegex(said[0], "Failed fetching <private> for account .*: .*[Rr]efused")
        self.assert_nothing_lost()
        self.line.up()

    def test_the_line_is_down_and_comes_back(self):
        wait_until(lambda: self.early.titles() == ["Known"], "its own refresh", 90)
        self.assertRegex("\n".join(self.early.log()), "^calendar: Fetching .* works again$")
        self.early.assert_nothing_lost()

    def test_the_desktop_says_that_there_is_no_network(self):
        bus = self.start_process("dbus-daemon", "--nofork", "--print-address",
                                 f"--config-file={pathlib.Path(__file__).parent.parent}/support/empty-bus.conf")
        self.enterContext(unittest.mock.patch.dict(os.environ, DBUS_SYSTEM_BUS_ADDRESS=bus.stdout.readline().strip()))
        self.start_mock("--system", "networkmanager", "org.freedesktop.NetworkManager")
        self.kestrel.environment.update(os.environ)
        self.start_signed_in()

        def say(state):
            subprocess.run(["gdbus", "call", "--system", "--dest", "org.freedesktop.NetworkManager", "--object-path",
                            "/org/freedesktop", "--method", "org.freedesktop.DBus.Mock.SetGlobalConnectionState",
                            state],
                           check=True, stdout=subprocess.DEVNULL)

        def refreshing():
            findings = json.loads(self.kestrel.verb("doctor", "--json").stdout)["findings"]
            return next(finding["text"] for finding in findings if finding["section"] == "Refresh")
        self.assertNotIn("there is no network", refreshing())
        for state, is_offline in (("20", True), ("60", False), ("20", True), ("70", False)):
            say(state)
            wait_until(lambda: ("there is no network" in refreshing()) == is_offline, f"what {state} means")
        self.refresh()
        self.assertEqual((self.titles(), self.log()), (["Known"], []))
        self.assert_nothing_lost()

    def test_one_account_is_revoked_and_another_signs_in_anew(self):
        kestrel = self.kestrel
        chosen = pathlib.Path(kestrel.folder.name) / "chosen"
        browser = chosen.with_name("browser")
        browser.write_text(f'#!/bin/sh\nKESTREL_SAMPLE_ACCOUNT=$(cat {chosen}) exec {BIN}/kestrel-sample-consent "$1"\n')
        browser.chmod(0o700)
        kestrel.environment["KESTREL_BROWSER"] = str(browser)
        chosen.write_text(ROBIN)
        self.start_signed_in()
        chosen.write_text(CASEY)
        kestrel.done("accounts", "add")
        self.refresh()

        def titles_of(email):
            return {meeting["title"] for meeting in kestrel.json("agenda") if meeting["accountEmail"] == email}

        def signed_in():
            return [account["isSignedIn"] for account in kestrel.json("status")["accounts"]]
        caseys = titles_of(CASEY)
        self.assertTrue(caseys)
        self.log()

        account = kestrel.json("accounts", "list")[0]["id"]
        token = self.keyring.secret(secret_service(kestrel.data), f"google.{account}.refresh_token")
        self.google.post("/revoke?token=" + token)
        self.google.post("/calendar-events", {"account": CASEY, "calendar": "primary", "event": {
            "id": "due", "title": "Due", "startsInMinutes": 4.5, "meetCode": "kes-demo-a2"}})
        self.refresh(3)
        said = self.log()
        self.assertEqual(len(said), 1, said)
        self.assertRegex(said[0], f"Failed fetching <private> for account {account}: Refresh failed")
        self.assertEqual((titles_of(ROBIN), titles_of(CASEY)), (set(), caseys | {"Due"}))
        self.assertEqual(signed_in(), [False, True])
        wait_until(lambda: windows("Due"), "the other account's card")

        with self.subTest("another account than the one that is signed in anew"):
            chosen.write_text(ROBIN)
            self.assertIn("another account", kestrel.verb("accounts", "sign-in", CASEY).stderr)
            self.google.post("/expire-tokens")
            self.refresh()
            self.assertEqual((signed_in(), titles_of(CASEY)), ([False, True], caseys | {"Due"}))
        for email in (CASEY, ROBIN):
            with self.subTest("signed in anew", email=email):
                chosen.write_text(email)
                kestrel.done("accounts", "sign-in", email)
                self.google.post("/expire-tokens")
                self.refresh()
                self.assertEqual(titles_of(CASEY), caseys | {"Due"})
        self.assertEqual((signed_in(), titles_of(ROBIN)), ([True, True], {"Known"}))

    def test_without_a_keyring(self):
        keyring = self.keyring
        notices = pathlib.Path(self.kestrel.folder.name) / "notices"
        self.start_mock("--session", "notification_daemon", "org.freedesktop.Notifications", notices)
        self.start_signed_in()
        accounts = self.kestrel.json("accounts", "list")
        with self.subTest("locked"):
            keyring.lock()
            self.refresh(3)
            said = self.log()
            self.assertEqual(sum("The keyring is locked" in line for line in said), 1, said)
            self.assertEqual(len(said), 2, said)
            self.assert_nothing_lost()
            keyring.unlock()
            wait_until(lambda: self.titles() == ["Known"], "the meetings, as soon as it is open")
            self.assertIn("auth: The keyring is open", self.log())
        with self.subTest("dead"):
            keyring.kill()
            self.refresh(3)
            said = self.log()
            self.assertEqual(sum("password store, but none answers" in line for line in said), 1, said)
            self.assertEqual(len(said), 2, said)
            self.assert_nothing_lost()
            keyring.start()
            wait_until(lambda: self.titles() == ["Known"], "the meetings, as soon as it is back")
            self.assertIn("auth: The password store answers again", self.log())
        with self.subTest("missing from the start"):
            self.kestrel.stop()
            keyring.kill()
            self.kestrel.start()
            self.refresh(3)
            said = self.log()
            self.assertEqual(sum("password store, but none answers" in line for line in said), 1, said)
            self.assertEqual(len(said), 2, said)
            self.assertEqual(self.kestrel.json("accounts", "list"), accounts)
            wait_until(lambda: "Kestrel cannot read your sign-in" in notices.read_text(), "the person is told", 60)
            keyring.start()
            wait_until(lambda: self.titles() == ["Known"], "the meetings, as soon as it is there")
            wait_until(lambda: "CloseNotification" in notices.read_text(), "the notice is taken back")
            self.assert_nothing_lost()
        self.assertEqual(notices.read_text().count(" Notify "), 1, notices.read_text())


unittest.main(verbosity=2)
