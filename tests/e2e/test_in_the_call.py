"""A call in a real browser, driven by global shortcuts, the command line and a client of the bridge, while another
window has the focus: in the everyday profile through our extension, and in Kestrel's own profile."""

import json
import os
import pathlib
import queue
import re
import shlex
import socket
import subprocess
import tempfile
import threading
import time
import unittest

from browser_session import Browser, SampleCall
from kestrel_session import Kestrel, SampleGoogle, wait_until
from screen import geometry, windows, xdotool

CALL = "https://meet.google.com/kes-demo-abc"
ON = {"inMeeting": True, "micOn": True, "cameraOn": True, "handRaised": False, "sharing": False}
REACTIONS = ["Thumbs up", "Sparkling heart", "Party popper", "Clapping hands", "Face with tears of joy",
             "Face with open mouth", "Crying face", "Thinking face", "Thumbs down", "Smiling face with heart eyes"]


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


class BridgeClient:
    def __init__(self, port):
        self.process = subprocess.Popen(
            ["node", pathlib.Path(__file__).with_name("bridge_client.js"), str(port)], stdin=subprocess.PIPE,
            stdout=subprocess.PIPE, text=True, env=dict(os.environ, NODE_PATH="/usr/share/nodejs"))
        self.messages = queue.Queue()
        self.reader = threading.Thread(target=self.read, daemon=True)
        self.reader.start()
        self.greeting = self.messages.get(timeout=30)
        self.state = self.greeting["state"]

    def read(self):
        for line in self.process.stdout:
            self.messages.put(json.loads(line))

    def send(self, message):
        self.process.stdin.write(json.dumps(message) + "\n")
        self.process.stdin.flush()

    def wait_for(self, **expected):
        """Until the state that was told last has these values."""
        end = time.monotonic() + 30
        while any(self.state[key] != value for key, value in expected.items()):
            try:
                message = self.messages.get(timeout=max(0.1, end - time.monotonic()))
            except queue.Empty:
                raise AssertionError(f"the bridge never told {expected}; last {self.state}") from None
            assert message.pop("type") == "state", message
            self.state = message

    def close(self):
        self.process.stdin.close()
        self.process.wait(20)
        self.reader.join(20)
        self.process.stdout.close()


class InTheCall(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory()))
        self.google = SampleGoogle()
        self.addCleanup(self.google.stop)
        self.call = SampleCall()
        self.addCleanup(self.call.stop)
        self.browser = Browser(self.call)
        self.addCleanup(self.browser.stop)
        self.kestrel = Kestrel(self.google, "--secret-store", "file")
        self.addCleanup(self.kestrel.close)
        self.port = free_port()
        self.kestrel.environment.update(KESTREL_BROWSER_SOCKETS=str(self.browser.sockets),
                                        KESTREL_BRIDGE_PORT=str(self.port))
        self.typed = self.folder / "typed"

    def start_kestrel(self, **preferences):
        # the first start makes the data folder
        self.kestrel.start()
        self.kestrel.stop()
        self.prefer(**{"popover.hasShownInitialAutoOpen.v1": "true", "enableMeetControls": "true",
                       "enableJoinShortcut": "true", "enableStreamDeckBridge": "true"}, **preferences)
        self.kestrel.start()
        wait_until(lambda: "Global hotkey Meet:mute registered" in self.kestrel.log_text(), "the shortcuts")
        self.bridge = BridgeClient(self.port)
        self.addCleanup(self.bridge.close)

    def prefer(self, **preferences):
        file = self.kestrel.data / "kestrel.ini"
        text = file.read_text() if file.exists() else ""
        if "[General]" not in text:
            text = "[General]\n" + text
        for key, value in preferences.items():
            text = re.sub(rf"(?m)^{re.escape(key)}=.*\n", "", text)
            text = text.replace("[General]\n", f"[General]\n{key}={value}\n", 1)
        file.write_text(text)

    def focus_a_terminal(self):
        """Something else to type into: what is not a shortcut goes there."""
        terminal = subprocess.Popen(["xterm", "-T", "Terminal", "-geometry", "60x10+0+700", "-e", f"cat >{self.typed}"])
        self.addCleanup(lambda: (terminal.terminate(), terminal.wait(20)))
        wait_until(lambda: windows("Terminal"), "the terminal")
        xdotool("windowactivate", "--sync", windows("Terminal")[0])

    def press(self, keys, *clicked):
        """The shortcut has the page see these presses, and no others."""
        before = self.call.clicks()
        xdotool("key", keys)
        wait_until(lambda: len(self.call.clicks()) >= len(before) + len(clicked), f"{keys} pressed {clicked}")
        self.assertEqual(self.call.clicks()[len(before):], list(clicked))

    def active_title(self):
        return subprocess.run(["xdotool", "getactivewindow", "getwindowname"], capture_output=True, text=True).stdout

    def test_everyday_profile(self):
        self.start_kestrel()
        self.assertEqual(self.bridge.greeting, {"type": "hello", "state": dict(ON, inMeeting=False)})
        self.browser.start("--window-size=1100,640", "--window-position=0,0", CALL)
        self.bridge.wait_for(**ON)
        self.focus_a_terminal()

        with self.subTest("every shortcut presses its button, and what changed is told"):
            self.press("alt+shift+m", "Turn off microphone")
            self.bridge.wait_for(micOn=False)
            self.press("alt+shift+m", "Turn on microphone")
            self.press("alt+shift+c", "Turn off camera")
            self.bridge.wait_for(cameraOn=False, micOn=True)
            self.press("alt+shift+h", "Raise hand")
            self.press("alt+shift+s", "Present now")
            self.bridge.wait_for(handRaised=True, sharing=True)
            for number, reaction in enumerate(REACTIONS, 1):
                self.press(f"ctrl+alt+shift+{number % 10}", "Send a reaction", reaction, "Send a reaction")

        with self.subTest("the tab in the background, and the window minimised"):
            self.browser.start("about:blank")
            wait_until(lambda: windows("about:blank.*"), "another tab in front")
            xdotool("windowactivate", "--sync", windows("Terminal")[0])
            self.press("alt+shift+m", "Turn off microphone")
            self.press("ctrl+alt+shift+2", "Send a reaction", "Sparkling heart", "Send a reaction")
            xdotool("windowminimize", windows("about:blank.*")[0])
            self.press("alt+shift+m", "Turn on microphone")

        with self.subTest("focus raises tab and window"):
            xdotool("key", "alt+shift+f")
            wait_until(lambda: "Sample call" in self.active_title(), "the call in front")
            xdotool("windowactivate", "--sync", windows("Terminal")[0])

        with self.subTest("the bridge and the command line do the same"):
            before = self.call.clicks()
            self.bridge.send({"cmd": "meetHand"})
            wait_until(lambda: self.call.clicks() == [*before, "Lower hand"], "the bridge's press")
            self.kestrel.done("action", "meetVideo")
            wait_until(lambda: self.call.clicks() == [*before, "Lower hand", "Turn on camera"], "the verb's press")

        with self.subTest("leaving closes the tab, and then there is nothing to drive but the agenda"):
            self.press("alt+shift+l", "Leave call")
            wait_until(lambda: not windows("Sample call.*"), "the tab closed")
            self.bridge.wait_for(inMeeting=False)
            xdotool("key", "alt+shift+m")
            wait_until(lambda: windows("Kestrel"), "the agenda")
            xdotool("key", "Escape")

        with self.subTest("Spanish"):
            self.browser.start(f"{CALL}?lang=es&muted")
            self.bridge.wait_for(inMeeting=True, micOn=False, cameraOn=True)
            xdotool("windowactivate", "--sync", windows("Terminal")[0])
            self.press("alt+shift+m", "Activar micrófono")
            self.press("alt+shift+h", "Levantar la mano")
            self.press("ctrl+alt+shift+9", "Enviar una reacción", "Pulgar abajo", "Enviar una reacción")
            self.bridge.wait_for(micOn=True, handRaised=True)

        with self.subTest("a browser that dies is no meeting"):
            self.browser.kill()
            self.bridge.wait_for(inMeeting=False)

        with self.subTest("none of the shortcuts was typed into the terminal"):
            xdotool("windowactivate", "--sync", windows("Terminal")[0])
            xdotool("type", "the end")
            xdotool("key", "Return", "ctrl+d")
            wait_until(lambda: self.typed.read_text().endswith("the end\n"), "what was typed")
            self.assertEqual(self.typed.read_text(), "the end\n")

    def join_in_app_mode(self):
        """Signed in to an account whose meetings open in windows of their own, as they do unless one wants otherwise."""
        for number in range(1, 30):
            try:
                self.google.post("/calendar-events", {"account": "robin.sample@example.com", "calendar": "primary",
                                                      "remove": f"sample{number:03}"})
            except OSError:
                pass
        self.google.post("/calendar-events", {
            "account": "robin.sample@example.com", "calendar": "primary",
            "event": {"id": "now", "title": "Now", "startsInMinutes": -1, "lastsMinutes": 30, "meetCode": "kes-demo-now"}})
        self.kestrel.done("accounts", "add")
        self.kestrel.done("refresh")
        self.kestrel.done("join")

    def desktop_file(self, *arguments):
        """The browser as the desktop knows it: what tests need on its command line stands in a program of its name."""
        applications = pathlib.Path(os.environ["XDG_DATA_HOME"]) / "applications"
        applications.mkdir(parents=True, exist_ok=True)
        program = self.folder / "chromium"
        program.write_text("#!/bin/sh\nexec " + shlex.join(self.browser.plain_command()) + ' "$@"\n')
        program.chmod(0o755)
        (applications / "chromium.desktop").write_text(
            f"[Desktop Entry]\nType=Application\nName=Chromium\nExec={shlex.join([str(program), *arguments])} %U\n")

    def test_app_window_of_the_everyday_profile(self):
        self.desktop_file(f"--user-data-dir={self.browser.data}")
        self.start_kestrel(popupWindowWidth=900, popupWindowHeight=620)
        self.browser.start("about:blank")
        self.browser.relays()[0].close()
        self.join_in_app_mode()
        self.bridge.wait_for(**ON)
        wait_until(lambda: windows("Sample call.*"), "the window")
        wait_until(lambda: geometry(windows("Sample call.*")[0])[2:] == (900, 620), "exactly the asked size")

    def test_profile_of_its_own(self):
        self.desktop_file()
        self.start_kestrel(browserProfile="kestrel", popupWindowWidth=900, popupWindowHeight=620)
        self.join_in_app_mode()
        self.bridge.wait_for(**ON)
        self.focus_a_terminal()
        with self.subTest("exactly the asked size, and again while it runs"):
            wait_until(lambda: geometry(windows("Sample call.*")[0])[2:] == (900, 620), "the first window's size")
            self.kestrel.done("join")
            wait_until(lambda: len(windows("Sample call.*")) == 2, "the second window")
            wait_until(lambda: [geometry(w)[2:] for w in windows("Sample call.*")] == [(900, 620)] * 2, "its size")
            xdotool("windowactivate", "--sync", windows("Sample call.*")[1], "key", "alt+F4")
            wait_until(lambda: len(windows("Sample call.*")) == 1, "the second window closed")
        xdotool("windowactivate", "--sync", windows("Terminal")[0])
        with self.subTest("shortcuts drive it, also minimised"):
            self.press("alt+shift+m", "Turn off microphone")
            self.bridge.wait_for(micOn=False)
            xdotool("windowminimize", windows("Sample call.*")[0])
            self.press("ctrl+alt+shift+1", "Send a reaction", "Thumbs up", "Send a reaction")
            xdotool("key", "alt+shift+f")
            wait_until(lambda: "Sample call" in self.active_title(), "the call in front")
        with self.subTest("leaving closes it"):
            self.press("alt+shift+l", "Leave call")
            wait_until(lambda: not windows("Sample call.*"), "the window closed")
            self.bridge.wait_for(inMeeting=False)


unittest.main()
