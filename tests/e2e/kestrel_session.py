"""The real program against the sample Google, in folders of its own. KESTREL_BIN names the build's bin folder."""

import contextlib
import json
import os
import pathlib
import shutil
import signal
import subprocess
import tempfile
import time
import urllib.error
import urllib.request

BIN = pathlib.Path(os.environ["KESTREL_BIN"])


def wait_until(condition, what, seconds=30):
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        if condition():
            return
        time.sleep(0.05)
    raise AssertionError(f"not within {seconds} s: {what}")


class SampleGoogle:
    def __init__(self, *options):
        self.process = subprocess.Popen(
            [BIN / "kestrel-sample-google", "--until-stdin-closes", *options],
            stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
        self.base = self.process.stdout.readline().strip()
        assert self.base.startswith("http://127.0.0.1:"), self.base

    def get(self, path):
        return json.load(urllib.request.urlopen(self.base + path, timeout=10))

    def post(self, path, body=None):
        request = urllib.request.Request(self.base + path, data=json.dumps(body or {}).encode(), method="POST",
                                         headers={"Content-Type": "application/json"})
        urllib.request.urlopen(request, timeout=10).read()

    def add_event(self, **event):
        self.post("/calendar-events", {"account": "robin.sample@example.com", "calendar": "primary", "event": event})

    def remove_event(self, identifier):
        self.post("/calendar-events", {"account": "robin.sample@example.com", "calendar": "primary", "remove": identifier})

    def remove_sample_events(self):
        """Of that calendar: only added ones are left."""
        for number in range(1, 30):
            with contextlib.suppress(urllib.error.HTTPError):  # it is another calendar's, or there is none
                self.remove_event(f"sample{number:03}")

    def stop(self):
        self.process.stdin.close()
        self.process.wait(10)
        self.process.stdout.close()


class Kestrel:
    """One data folder, and at most one running Kestrel in it."""

    def __init__(self, google, *options, browser="kestrel-sample-consent", program=BIN / "kestrel"):
        self.program = program
        self.folder = tempfile.TemporaryDirectory(prefix="kestrel-e2e-")
        self.data = pathlib.Path(self.folder.name) / "data"
        self.options = options
        self.environment = dict(os.environ, KESTREL_DATA=str(self.data), KESTREL_GOOGLE_BASE=google.base,
                                KESTREL_BROWSER=str(BIN / browser) if "/" not in browser else browser)
        self.process = None
        self.log = open(pathlib.Path(self.folder.name) / "log", "w+")

    def start(self, wrapper=()):
        self.process = subprocess.Popen([*wrapper, self.program, *self.options], env=self.environment,
                                        stdin=subprocess.DEVNULL, stdout=self.log, stderr=self.log)
        wait_until(lambda: self.verb("status").returncode == 0 or self.process.poll() is not None, "Kestrel answers")
        assert self.process.poll() is None, self.log_text()

    def stop(self, how=signal.SIGTERM):
        if self.process is None:
            return
        self.process.send_signal(how)
        status = self.process.wait(30)
        self.process = None
        if how == signal.SIGTERM:
            assert status == 0, f"ended with {status}: {self.log_text()}"

    def close(self):
        self.stop()
        self.log.close()
        # a browser that Kestrel started may be writing its last files
        wait_until(lambda: shutil.rmtree(self.folder.name, ignore_errors=True) or not os.path.exists(self.folder.name),
                   "the data folder removed")
        self.folder.cleanup()

    def verb(self, *arguments, timeout=60):
        return subprocess.run([self.program, *self.options, *arguments], env=self.environment,
                              capture_output=True, text=True, timeout=timeout)

    def done(self, *arguments):
        """The output of a verb that must succeed."""
        result = self.verb(*arguments)
        assert result.returncode == 0, f"{arguments}: {result.returncode}: {result.stderr}\n{self.log_text()}"
        return result.stdout

    def json(self, *arguments):
        return json.loads(self.done(*arguments, "--json"))

    def log_text(self):
        self.log.flush()
        return pathlib.Path(self.log.name).read_text()
