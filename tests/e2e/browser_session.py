"""A real browser with our extension and its relay, in folders of its own, against the sample call."""

import functools
import json
import os
import pathlib
import shutil
import signal
import socket
import ssl
import struct
import subprocess
import tempfile
import time
import urllib.request

from kestrel_session import BIN, wait_until

EXTENSION = pathlib.Path(__file__).resolve().parents[2] / "src/helper/extension"
EXTENSION_ID = "gcoehfepgndjcehifahbpicecdkiomml"
RELAY = (BIN / "kestrel-browser-relay").resolve()


class SampleCall:
    def __init__(self):
        self.process = subprocess.Popen([BIN / "kestrel-sample-call", "--until-stdin-closes"],
                                        stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
        self.port = int(self.process.stdout.readline())

    def get(self, path):
        trusting = ssl._create_unverified_context()
        with urllib.request.urlopen(f"https://127.0.0.1:{self.port}{path}", context=trusting, timeout=20) as answer:
            return json.load(answer)

    def clicks(self):
        return self.get("/-/clicks")

    def times(self):
        """Of the clicks, in milliseconds since 1970."""
        return self.get("/-/clicks?times")

    def stop(self):
        self.process.stdin.close()
        self.process.wait(10)
        self.process.stdout.close()


class RelayClient:
    """One connection to a relay's socket."""

    def __init__(self, path, seconds=30):
        self.path = pathlib.Path(path)
        self.socket = socket.socket(socket.AF_UNIX)
        self.socket.settimeout(seconds)
        self.socket.connect(str(path))
        self.identifiers = (f"test-{os.getpid()}-{n}" for n in range(10**6))

    @functools.cached_property
    def greeting(self):
        return self.receive()

    def send(self, message):
        body = message if isinstance(message, bytes) else json.dumps(message).encode()
        self.socket.sendall(struct.pack("=I", len(body)) + body)

    def receive(self):
        (length,) = struct.unpack("=I", self.exactly(4))
        return json.loads(self.exactly(length))

    def exactly(self, count):
        received = b""
        while len(received) < count:
            part = self.socket.recv(count - len(received))
            if not part:
                raise EOFError(f"closed after {len(received)} of {count} bytes")
            received += part
        return received

    def ask(self, op, **arguments):
        """The answer without its identifier."""
        assert self.greeting["relay"] == 1
        identifier = next(self.identifiers)
        self.send({"id": identifier, "op": op, **arguments})
        while (answer := self.receive()).get("id") != identifier:
            pass
        del answer["id"]
        return answer

    def find(self, marker="meet.google.com/"):
        return self.ask("find", marker=marker)["tab"]

    def run(self, tab, source, activate=False, marker="meet.google.com/"):
        return self.ask("run", tab=tab, marker=marker, source=source, activate=activate)

    def close(self):
        self.socket.close()


class Browser:
    """Chromium with a data folder of its own; its profiles are made ready before it starts. A `data` folder that is given
    has been made ready for our relay by others."""

    def __init__(self, call, profiles=("Default",), user_scripts=True, extension=EXTENSION, data=None):
        self.folder = tempfile.TemporaryDirectory(prefix="kestrel-browser-")
        place = pathlib.Path(self.folder.name)
        self.data = data or place / "data"
        self.sockets = place / "sockets"
        self.extension = extension
        self.host = f"--host-resolver-rules=MAP meet.google.com 127.0.0.1:{call.port}"
        if data is None:
            hosts = self.data / "NativeMessagingHosts"
            hosts.mkdir(parents=True)
            (hosts / "app.kestrel.kestrel.json").write_text(json.dumps({
                "name": "app.kestrel.kestrel", "description": "Kestrel", "path": str(RELAY), "type": "stdio",
                "allowed_origins": [f"chrome-extension://{EXTENSION_ID}/"]}))
        for profile in profiles:
            (self.data / profile).mkdir()
            (self.data / profile / "Preferences").write_text(json.dumps({
                "extensions": {"settings": {EXTENSION_ID: {"user_scripts_enabled": user_scripts}},
                               "ui": {"developer_mode": True}}}))
        self.process = None
        self.log = open(place / "log", "w+")

    def plain_command(self):
        """Without our extension, and with the person's own folder of profiles."""
        return ["chromium", *([] if os.getuid() else ["--no-sandbox"]), "--test-type", self.host, "--ignore-certificate-errors",
                "--disable-background-networking", "--no-first-run", "--disable-component-update", "--disable-sync",
                "--disable-quic", "--password-store=basic", "--no-default-browser-check"]

    def command(self, *arguments):
        return [*self.plain_command(), f"--user-data-dir={self.data}", f"--load-extension={self.extension}",
                f"--disable-extensions-except={self.extension}", "--disable-features=DisableLoadExtensionCommandLineSwitch",
                *arguments]

    def environment(self):
        return dict(os.environ, KESTREL_BROWSER_SOCKETS=str(self.sockets),
                    KESTREL_BROWSER_EXTENSION=str(self.extension))

    def start(self, *arguments):
        """With addresses of pages, or options. A second call opens more in the running browser."""
        process = subprocess.Popen(self.command(*arguments), env=self.environment(), stdin=subprocess.DEVNULL,
                                   stdout=self.log, stderr=self.log)
        if self.process is None:
            self.process = process
        else:
            process.wait(30)

    def socket_paths(self):
        return sorted(self.sockets.glob("*.sock")) if self.sockets.exists() else []

    def relays(self, count=1):
        """A client of each relay, the eldest first."""
        wait_until(lambda: len(self.socket_paths()) >= count, f"{count} relays")
        return [RelayClient(path) for path in self.socket_paths()]

    def kill(self, how=signal.SIGKILL):
        self.process.send_signal(how)
        self.process.wait(30)

    def stop(self):
        if self.process is not None and self.process.poll() is None:
            self.process.terminate()
            try:
                self.process.wait(20)
            except subprocess.TimeoutExpired:
                self.process.kill()
                self.process.wait(20)
        self.log.close()
        # helpers of the browser may still write for a moment
        wait_until(lambda: shutil.rmtree(self.folder.name, ignore_errors=True) or not os.path.exists(self.folder.name),
                   "the browser's folder is gone")
