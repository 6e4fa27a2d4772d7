"""The relay between a browser that we play ourselves, over real pipes, and clients on its real socket."""

import json
import os
import pathlib
import select
import signal
import stat
import struct
import subprocess
import sys
import tempfile
import threading
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "e2e"))
from browser_session import EXTENSION_ID, RELAY, RelayClient
from kestrel_session import wait_until

LARGEST = 1_000_000


def frame(message):
    body = message if isinstance(message, bytes) else json.dumps(message, separators=(",", ":")).encode()
    return struct.pack("=I", len(body)) + body


def of_size(size, letter="x"):
    """A message of exactly so many bytes."""
    return json.dumps({"id": letter * (size - len('{"id": ""}'))}).encode()


class PlayedBrowser:
    """Starts the relay as a browser does, and answers its hello in the extension's place."""

    hello = b'{"hello":1,"revision":"7","userScripts":true}'

    def __init__(self, place, *arguments, **variables):
        self.sockets = place / "sockets"
        self.process = subprocess.Popen(
            [RELAY, *(arguments or [f"chrome-extension://{EXTENSION_ID}/"])],
            stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
            env={**os.environ, "KESTREL_BROWSER_SOCKETS": str(self.sockets),
                 "KESTREL_BROWSER_EXTENSION": str(place / "extension"), **variables})

    def say(self, *messages):
        self.process.stdin.write(b"".join(map(frame, messages)))
        self.process.stdin.flush()

    def hear(self):
        (length,) = struct.unpack("=I", self.process.stdout.read(4))
        return json.loads(self.process.stdout.read(length))

    def path(self):
        wait_until(lambda: any(self.sockets.glob("*.sock")) or self.process.poll() is not None, "the socket")
        return next(self.sockets.glob("*.sock"))

    def client(self):
        """One that was greeted."""
        client = RelayClient(self.path())
        self.hear()
        self.say(self.hello)
        assert client.greeting
        return client

    def end(self):
        """Exit code and what was complained of."""
        self.process.stdin.close()
        return self.process.wait(30), self.process.stderr.read().decode()


class RelayTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="kestrel-relay-")
        self.addCleanup(folder.cleanup)
        self.place = pathlib.Path(folder.name)

    def browser(self, *arguments, **variables):
        browser = PlayedBrowser(self.place, *arguments, **variables)
        self.addCleanup(browser.process.__exit__, None, None, None)
        self.addCleanup(browser.process.kill)
        return browser

    def greeted_browser(self):
        browser = self.browser()
        self.assertEqual(browser.hear(), {"hello": 1, "installed": ""})
        browser.say(browser.hello)
        return browser

    def assert_ended(self, client):
        with self.assertRaises((EOFError, ConnectionResetError)):
            client.receive()


class AsNativeHost(RelayTest):
    def test_greets_each_client_with_what_the_extension_says_then(self):
        browser = self.greeted_browser()
        first = browser.client()
        self.assertEqual({**first.greeting, "browser": "", "userDataDir": ""}, {
            "relay": 1, "route": "extension", "browser": "", "browserPid": os.getpid(), "userDataDir": "",
            "revision": "7", "userScripts": True})
        self.assertTrue(os.path.samefile(first.greeting["browser"], sys.executable))

        (self.place / "extension").mkdir()
        (self.place / "extension" / "revision").write_text('8 "ocho"\n')
        second = RelayClient(browser.path())
        self.assertEqual(browser.hear(), {"hello": 1, "installed": '8 "ocho"'})
        browser.say(b'{"hello":1,"revision":"7","userScripts":false}')
        self.assertFalse(second.greeting["userScripts"])
        self.assertFalse(first.receive()["userScripts"], "news for a client that was greeted before")

        with self.subTest("an extension that says nothing"):
            silent = RelayClient(browser.path())
            self.assertNotIn("revision", silent.greeting)

    def test_sizes(self):
        browser = self.greeted_browser()
        client, other = browser.client(), browser.client()
        largest = of_size(LARGEST)
        browser.say(largest)
        self.assertEqual(client.receive(), json.loads(largest))
        client.send(largest)
        self.assertEqual(browser.hear(), json.loads(largest))

        browser.say(of_size(LARGEST + 1), b"", of_size(10_000_000), {"id": "next"})
        self.assertEqual(client.receive(), {"id": "next"})

        other.receive(), other.receive()
        for name, refused in {"empty": b"", "with a zero byte": b'{"id":1}\0{"id":2}', "too long": of_size(LARGEST + 1),
                              "ten megabytes": of_size(10_000_000)}.items():
            with self.subTest(name):
                sinner = browser.client()
                try:
                    sinner.send(refused)
                except OSError:
                    pass
                self.assert_ended(sinner)
        client.send({"id": "after them"})
        self.assertEqual(browser.hear(), {"id": "after them"})

    def test_a_client_that_does_not_read_is_dropped_and_the_others_lose_nothing(self):
        browser = self.greeted_browser()
        stuck, client = browser.client(), browser.client()
        sent = [of_size(900_000, letter) for letter in "abcdef"]
        for message in sent:
            browser.say(message)
            self.assertEqual(client.receive(), json.loads(message))
        with self.assertRaises((EOFError, ConnectionResetError)):
            for _ in sent:
                stuck.receive()

    def test_a_browser_that_does_not_read_makes_clients_wait(self):
        browser = self.greeted_browser()
        client = browser.client()
        client.socket.setblocking(False)
        stream = b"".join(frame(of_size(900_000, letter)) for letter in "abcdefghij")
        sent = 0
        # stops once the relay holds what it will hold, and the socket's own buffer is full
        while select_writable(client.socket):
            sent += client.socket.send(stream[sent:sent + 65536])
        self.assertLess(sent, 7_000_000)
        client.socket.setblocking(True)
        heard = []
        reader = threading.Thread(target=lambda: heard.extend(browser.hear() for _ in range(10)))
        reader.start()
        client.socket.sendall(stream[sent:])
        reader.join(30)
        self.assertEqual([message["id"][0] for message in heard], list("abcdefghij"))

    def test_the_ninth_client_is_turned_away(self):
        browser = self.greeted_browser()
        clients = [browser.client() for _ in range(8)]
        self.assert_ended(RelayClient(browser.path()))
        clients[3].close()
        browser.client()

    @unittest.skipIf(os.geteuid() != 0, "only root can be somebody else")
    def test_another_user_is_turned_away(self):
        browser = self.greeted_browser()
        path = browser.path()
        # as if the folder's permissions had not kept them out
        for opened in (self.place, browser.sockets, path):
            opened.chmod(0o777)
        script = "import os, socket, sys; os.setuid(65534); s = socket.socket(socket.AF_UNIX); " \
                 "s.connect(sys.argv[1]); s.settimeout(20); sys.exit(len(s.recv(1)))"
        self.assertEqual(subprocess.run([sys.executable, "-c", script, path], cwd="/").returncode, 0)

    def test_ends_with_the_browser_and_removes_its_socket(self):
        for name, end in {"pipe closed": lambda p: p.stdin.close(), "terminated": subprocess.Popen.terminate}.items():
            with self.subTest(name):
                browser = self.greeted_browser()
                client = browser.client()
                browser.process.stdin.write(frame({"id": "half"})[:6])
                browser.process.stdin.flush()
                end(browser.process)
                self.assert_ended(client)
                self.assertEqual(browser.process.wait(30), 0)
                self.assertEqual(list(browser.sockets.iterdir()), [])

    def test_what_a_killed_one_left_goes_with_the_next_and_living_ones_stay(self):
        killed, living = self.greeted_browser(), self.greeted_browser()
        wait_until(lambda: len(list(killed.sockets.iterdir())) == 2, "two sockets")
        killed.process.kill()
        killed.process.wait(30)
        self.assertEqual(len(list(killed.sockets.iterdir())), 2)
        self.greeted_browser()
        pids = sorted(int(path.stem.split("-")[1]) for path in living.sockets.iterdir())
        self.assertEqual(len(pids), 2)
        self.assertIn(living.process.pid, pids)

    def test_refuses_to_start(self):
        def mode(folder):
            folder.mkdir()
            folder.chmod(0o755)

        wrong_places = {"a folder for all": mode, "a file": pathlib.Path.touch,
                        "a link": lambda folder: folder.symlink_to(self.place)}
        for number, (name, prepare) in enumerate(wrong_places.items()):
            with self.subTest(name):
                folder = self.place / str(number)
                prepare(folder)
                code, complaint = self.browser(KESTREL_BROWSER_SOCKETS=str(folder)).end()
                self.assertEqual(code, 1)
                self.assertIn(str(folder), complaint)
        for arguments in (["chrome-extension://abcdefghijklmnopabcdefghijklmnop/"], ["--devtools"], ["--devtools", "--"]):
            with self.subTest(arguments):
                code, complaint = self.browser(*arguments).end()
                self.assertEqual(code, 2)
                self.assertIn("kestrel-browser-relay", complaint)

    def test_makes_folders_that_only_the_person_may_enter(self):
        browser = self.greeted_browser()
        self.assertEqual(stat.S_IMODE(browser.path().parent.stat().st_mode), 0o700)


class WithDevTools(RelayTest):
    def program(self, text, name="browser"):
        program = self.place / name
        program.parent.mkdir(parents=True, exist_ok=True)
        program.write_text(f"#!/bin/sh\n{text}\n")
        program.chmod(0o755)
        return str(program)

    def started(self, *command, **variables):
        browser = self.browser("--devtools", "--", *command, **variables)
        path = browser.process.stdout.readline().decode().rstrip("\n")
        return browser, RelayClient(path)

    def test_messages_pass_both_ways_and_all_ends_with_the_browser(self):
        program = self.program("exec cat <&3 >&4")
        browser, client = self.started(program, "--user-data-dir=own")
        self.assertEqual(
            {**client.greeting, "browserPid": 0},
            {"relay": 1, "route": "devtools", "browser": program, "browserPid": 0, "userDataDir": f"{os.getcwd()}/own"})
        for size in (20, LARGEST):
            client.send(of_size(size))
            self.assertEqual(client.receive(), json.loads(of_size(size)))
        os.kill(client.greeting["browserPid"], signal.SIGKILL)
        self.assert_ended(client)
        self.assertEqual(browser.process.wait(30), 0)
        self.assertEqual(list(browser.sockets.iterdir()), [])

    def test_skips_what_is_too_long_from_the_browser(self):
        _, client = self.started(self.program(
            "head -c 10000000 /dev/zero | tr '\\0' x >&4; printf '\\0\\0{\"id\":1}\\0' >&4; exec cat <&3 >&4"))
        self.assertEqual(client.greeting["route"], "devtools")
        self.assertEqual(client.receive(), {"id": 1})

    def test_the_browser_sees_its_pipe_close_when_the_relay_is_killed(self):
        ended = self.place / "ended"
        browser, client = self.started(self.program(f"cat <&3 >&4; touch {ended}"))
        self.assertTrue(client.greeting)
        browser.process.kill()
        wait_until(ended.exists, "the browser ended")

    def test_a_program_that_is_missing(self):
        browser = self.browser("--devtools", "--", str(self.place / "none"))
        code, complaint = browser.end()
        self.assertEqual(code, 1)
        self.assertIn(str(self.place / "none"), complaint)

    def test_knows_the_usual_data_folders(self):
        for program, folder in {
            "opt/google/chrome/chrome": "/c/google-chrome", "opt/google/chrome-beta/chrome": "/c/google-chrome-beta",
            "opt/google/chrome-unstable/chrome": "/c/google-chrome-unstable", "usr/lib/chromium/chromium": "/c/chromium",
            "opt/brave.com/brave/brave": "/c/BraveSoftware/Brave-Browser", "opt/microsoft/msedge/msedge": "/c/microsoft-edge",
            "opt/other/browser": "",
        }.items():
            with self.subTest(program):
                _, client = self.started(self.program("exec cat <&3 >&4", program), XDG_CONFIG_HOME="/c")
                self.assertEqual(client.greeting["userDataDir"], folder)


def select_writable(connection):
    return bool(select.select([], [connection], [], 1)[1])


if __name__ == "__main__":
    unittest.main(warnings="ignore")
