"""From nothing to the agenda, a restart and a sign-out, with the real program, a real keyring and real HTTP."""

import json
import os
import pathlib
import re
import signal
import subprocess
import unittest

from kestrel_session import BIN, Kestrel, SampleGoogle, wait_until


def secrets_of(service):
    """What the keyring holds for a service, asked for by another client than ours."""
    answer = subprocess.run(
        ["gdbus", "call", "--session", "--dest", "org.freedesktop.secrets", "--object-path", "/org/freedesktop/secrets",
         "--method", "org.freedesktop.Secret.Service.SearchItems", f"{{'service': '{service}'}}"],
        capture_output=True, text=True, check=True, timeout=20).stdout
    return re.findall(r"'(/org/freedesktop/secrets/collection/[^']+)'", answer)


def bus_names():
    return subprocess.run(
        ["gdbus", "call", "--session", "--dest", "org.freedesktop.DBus", "--object-path", "/org/freedesktop/DBus",
         "--method", "org.freedesktop.DBus.ListNames"],
        capture_output=True, text=True, check=True, timeout=20).stdout


class SignedIn(unittest.TestCase):
    def setUp(self):
        self.google = SampleGoogle()
        self.addCleanup(self.google.stop)
        self.kestrel = Kestrel(self.google)
        self.addCleanup(self.kestrel.close)

    def service(self):
        return re.search(r"app\.kestrel\.Kestrel\.data_[0-9a-f]+", bus_names())[0]

    def kept_on_disk(self):
        """Every file of Kestrel's folder, and of the home but for the keyring's."""
        roots = [self.kestrel.data, *(pathlib.Path(os.environ[name]) for name in ("HOME", "XDG_RUNTIME_DIR"))]
        files = [file for root in roots for file in root.rglob("*")
                 if file.is_file() and "keyring" not in str(file.relative_to(root))]
        return b"\n".join(file.read_bytes() for file in files)

    def titles(self):
        return [meeting["title"] for meeting in self.kestrel.json("agenda")]

    def test_signs_in_shows_the_agenda_survives_a_restart_and_signs_out(self):
        kestrel = self.kestrel
        kestrel.start()
        service = self.service()
        self.assertIn("No account is connected", kestrel.done("agenda"))

        self.assertIn("Signed in: robin.sample@example.com", kestrel.done("accounts", "add"))
        kestrel.done("refresh")
        meetings = kestrel.json("agenda")
        self.assertEqual([m["start"] for m in meetings], sorted(m["start"] for m in meetings))
        platforms = {m["platform"] for m in meetings}
        self.assertLessEqual({"googleMeet", "zoom", "microsoftTeams", "webex", "gotoMeeting", "whereby", "inPerson"},
                             platforms)
        self.assertTrue(all(m["accountEmail"] == "robin.sample@example.com" for m in meetings))
        self.assertTrue(all(m["meetingURL"] is None or m["meetingURL"].startswith("https://") for m in meetings))
        self.assertTrue(all(not m["isCancelled"] and m["title"] for m in meetings))
        self.assertEqual(len(secrets_of(service)), 2, "one refresh token and one access token")
        kept = self.kept_on_disk()
        self.assertIn(b"robin.sample@example.com", kept)
        tokens = ["sample-access-", "1//sample-"]
        private = [m["title"] for m in meetings] + [m["meetingURL"] for m in meetings if m["meetingURL"]]
        for text in tokens + private:
            self.assertNotIn(text.encode(), kept)

        with self.subTest("a second start hands over and ends"):
            second = kestrel.verb()
            self.assertEqual((second.returncode, second.stderr), (0, ""))

        titles = self.titles()
        kestrel.stop()
        kestrel.start()
        wait_until(lambda: kestrel.json("status")["lastRefresh"] is not None, "the refresh at start-up")
        self.assertTrue(kestrel.json("status")["accounts"][0]["isSignedIn"])
        wait_until(lambda: self.titles() == titles, "the same agenda after a restart")

        kestrel.done("accounts", "remove", "robin.sample@example.com")
        self.assertEqual(secrets_of(service), [])
        self.assertEqual(kestrel.json("agenda"), [])
        self.assertIn("/revoke", [request["path"] for request in self.google.get("/requests")["requests"]])
        log = kestrel.log_text()
        self.assertNotRegex(log, "(?i)bearer|refresh_token|access_token|code=")
        for text in tokens + private:
            self.assertNotIn(text, log)

    def test_a_panel_follows_the_status_through_a_restart(self):
        kestrel = self.kestrel

        def follow(*form):
            panel = subprocess.Popen([BIN / "kestrel", "status", "--follow", *form], env=kestrel.environment,
                                     stdout=subprocess.PIPE, text=True)
            self.addCleanup(panel.stdout.close)
            self.addCleanup(panel.wait)
            self.addCleanup(panel.kill)
            return panel

        panel = follow("--waybar")

        def next_stage(*wanted):
            line = json.loads(panel.stdout.readline())
            while line["alt"] not in wanted:
                line = json.loads(panel.stdout.readline())
            self.assertEqual(line["class"], [line["alt"]])
            return line

        next_stage("stopped")
        kestrel.start()
        next_stage("signed-out")
        kestrel.done("accounts", "add")
        line = next_stage("later", "soon", "now")
        self.assertNotEqual(line["text"], "")
        self.assertGreater(len(line["tooltip"].splitlines()), 3)
        self.assertTrue(json.loads(follow("--json").stdout.readline())["accounts"][0]["isSignedIn"])
        self.assertIn(" · ", follow().stdout.readline())
        kestrel.stop()
        next_stage("stopped")

    def test_accounts_are_added_and_removed_without_a_running_kestrel(self):
        kestrel = self.kestrel
        kestrel.done("accounts", "add")
        self.assertEqual([a["email"] for a in kestrel.json("accounts", "list")], ["robin.sample@example.com"])
        self.assertEqual(kestrel.verb("agenda").returncode, 3)
        kestrel.start()
        wait_until(lambda: len(kestrel.json("agenda")) > 5, "the agenda of the account that was added before")
        kestrel.stop()
        kestrel.done("accounts", "remove", "robin.sample@example.com")
        self.assertEqual(kestrel.json("accounts", "list"), [])

    def test_a_cancelled_consent_leaves_nothing_behind(self):
        cancel = self.kestrel.data.parent / "cancel"
        cancel.write_text(f'#!/bin/sh\nexec "{os.environ["KESTREL_BIN"]}/kestrel-sample-google" press-consent "$1" --cancel\n')
        cancel.chmod(0o700)
        self.kestrel.environment["KESTREL_BROWSER"] = str(cancel)
        self.kestrel.start()

        result = self.kestrel.verb("accounts", "add")

        self.assertEqual(result.returncode, 1)
        self.assertIn("malformedRequest", result.stderr)
        self.assertEqual(self.kestrel.json("accounts", "list"), [])
        self.assertEqual(secrets_of(self.service()), [])

    def test_a_token_expires_and_a_grant_is_revoked(self):
        kestrel = self.kestrel
        kestrel.start()
        kestrel.done("accounts", "add")
        kestrel.done("refresh")
        known = self.titles()
        with self.subTest("an expired access token is renewed on the way"):
            self.google.post("/expire-tokens")
            kestrel.done("refresh")
            self.assertEqual(self.titles(), known)
        with self.subTest("a revoked grant signs the account out"):
            self.google.post("/expire-tokens")
            self.google.post("/revoke-all")
            kestrel.done("refresh")
            self.assertFalse(kestrel.json("status")["accounts"][0]["isSignedIn"])
            self.assertEqual(secrets_of(self.service()), [])

    def test_a_kill_loses_no_account(self):
        kestrel = self.kestrel
        kestrel.start()
        kestrel.done("accounts", "add")
        kestrel.stop(signal.SIGKILL)
        kestrel.start()
        wait_until(lambda: len(kestrel.json("agenda")) > 5, "the agenda after a kill")

    def test_the_doctor_tells_a_locked_keyring(self):  # the last one by its name, since it leaves it locked
        kestrel = self.kestrel
        absent = kestrel.verb("doctor")
        self.assertEqual(absent.returncode, 3)
        self.assertIn("✗ No alert will fire.\n\n  Kestrel  ✗ Kestrel is not running.", absent.stdout)
        kestrel.start()
        kestrel.done("accounts", "add")
        kestrel.done("refresh")

        def findings():
            report = json.loads(kestrel.verb("doctor", "--json").stdout)
            return {each["section"]: (each["state"], each["text"]) for each in report["findings"]}
        before = findings()
        self.assertEqual(before["Keyring"][0], "good", before)
        self.assertRegex(before["Keyring"][1], r"^open \(gnome-keyring-d\w*\)$")
        self.assertEqual(before["Accounts"][0], "good", before)
        self.assertEqual(before["Surface"][0], "bad", "there is no display here")
        subprocess.run(["gdbus", "call", "--session", "--dest", "org.freedesktop.secrets", "--object-path",
                        "/org/freedesktop/secrets", "--method", "org.freedesktop.Secret.Service.Lock",
                        "['/org/freedesktop/secrets/collection/login']"], check=True, timeout=20)
        self.assertRegex(str(findings()["Keyring"]), r"\('bad', 'locked \(gnome-keyring-d\w*\)'\)")


if __name__ == "__main__":
    unittest.main(verbosity=2)
