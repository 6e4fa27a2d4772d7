"""A Kestrel that is started from a stick: it offers to install itself, and the installed copy takes over."""

import contextlib
import json
import os
import pathlib
import shutil
import signal
import subprocess
import tempfile
import time
import unittest

from kestrel_session import BIN, wait_until
from screen import windows, xdotool

NOTICE = "Install Kestrel on this computer."
ENTRY = "share/applications/app.kestrel.Kestrel.desktop"
ICON = "share/icons/hicolor/scalable/apps/app.kestrel.Kestrel.svg"


def links_below(folder, *names):
    """The processes whose /proc entries of these names lead below the folder."""
    found = []
    for process in pathlib.Path("/proc").glob("[0-9]*"):
        for name in names:
            with contextlib.suppress(OSError):
                if str((process / name).readlink()).startswith(f"{folder}/"):
                    found.append(int(process.name))
    return found


class SelfInstall(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory(prefix="kestrel-e2e-")))
        self.home = self.folder / "data/home"
        self.installed = self.home / ".local/opt/kestrel"
        self.environment = dict(os.environ, KESTREL_DATA=str(self.folder / "data"), KESTREL_PASSING=f"{self.folder}/media/",
                                LANG="C.UTF-8", LC_ALL="C.UTF-8")
        self.bundle = self.folder / "media/stick/Kestrel"
        self.lay_out()
        self.log = open(self.folder / "log", "w+")
        self.addCleanup(self.log.close)
        self.addCleanup(self.end_all)

    def lay_out(self):
        programs = self.bundle / "libexec/kestrel"
        programs.mkdir(parents=True)
        (self.bundle / "bin").mkdir()
        shutil.copy2(BIN / "kestrel", self.bundle / "bin")
        for program in ("kestrel-app", "kestrel-browser-helper", "kestrel-browser-relay"):
            with contextlib.suppress(FileNotFoundError):
                shutil.copy2(BIN / program, programs)
        for name, text in ((ENTRY, "[Desktop Entry]\nType=Application\nName=Kestrel\nExec=kestrel\n"), (ICON, "<svg/>")):
            (self.bundle / name).parent.mkdir(parents=True)
            (self.bundle / name).write_text(text)

    def end_all(self):
        for process in links_below(self.folder, "exe"):
            os.kill(process, signal.SIGKILL)
        wait_until(lambda: not links_below(self.folder, "exe"), "everything ended")

    def start(self):
        return subprocess.Popen([self.bundle / "bin/kestrel", "--secret-store", "file"], env=self.environment,
                                cwd=self.bundle, stdin=subprocess.DEVNULL, stdout=self.log, stderr=self.log)

    def verb(self, program, *arguments):
        return subprocess.run([program, *arguments], env=self.environment, capture_output=True, text=True, timeout=60)

    def press(self, key):
        wait_until(lambda: windows(NOTICE), f"the offer; {self.log_text()}")
        focused = ["xdotool", "getwindowfocus"]
        wait_until(lambda: subprocess.run(focused, capture_output=True, text=True).stdout.split() == windows(NOTICE),
                   "the offer has the keyboard")
        xdotool("key", key)

    def log_text(self):
        return pathlib.Path(self.log.name).read_text()

    def test_not_now_is_remembered(self):
        kestrel = self.start()
        wait_until(lambda: windows(NOTICE), f"the offer; {self.log_text()}")
        with self.subTest("who calls meanwhile is told so"):
            answer = self.verb(self.bundle / "bin/kestrel", "status")
            self.assertEqual((answer.returncode, answer.stdout), (3, ""))
            self.assertIn("try again in a moment", answer.stderr)
            self.assertEqual(self.verb(self.bundle / "bin/kestrel").stdout, "Kestrel is starting already.\n")
        with self.subTest("to end it is not to decline it"):
            kestrel.terminate()
            self.assertEqual(kestrel.wait(30), 0, self.log_text())
            kestrel = self.start()
        self.press("Escape")
        wait_until(lambda: windows("Kestrel"), f"the agenda; {self.log_text()}")
        kestrel.terminate()
        self.assertEqual(kestrel.wait(30), 0, self.log_text())

        kestrel = self.start()
        wait_until(lambda: self.verb(self.bundle / "bin/kestrel", "status").returncode == 0, "the second start")
        self.assertFalse(windows(NOTICE))
        self.assertFalse(self.home.exists())
        kestrel.terminate()
        self.assertEqual(kestrel.wait(30), 0, self.log_text())

    def test_the_installed_copy_takes_over(self):
        connect = [self.bundle / "bin/kestrel", "browser", "install"]
        refused = self.verb(*connect)
        self.assertEqual((refused.returncode, refused.stdout), (1, ""))
        self.assertIn("Install it on this computer first", refused.stderr)
        kestrel = self.start()
        self.press("Return")
        self.assertEqual(kestrel.wait(60), 0, self.log_text())
        command = self.home / ".local/bin/kestrel"
        self.assertEqual(command.readlink(), self.installed / "bin/kestrel")
        wait_until(lambda: self.verb(command, "status").returncode == 0, "the installed Kestrel answers")
        wait_until(lambda: windows("Kestrel"), "its agenda")
        self.assertTrue(links_below(self.installed, "exe"))
        with self.subTest("nothing holds the stick any more"):
            # long before the helper ends because nobody asks
            wait_until(lambda: not links_below(self.folder / "media", "exe", "cwd"), "the stick free", seconds=15)
        with self.subTest("the desktop knows it"):
            share = self.home / ".local"
            self.assertIn(f'Exec="{self.installed}/bin/kestrel"', (share / ENTRY).read_text())
            self.assertEqual((share / ICON).read_text(), "<svg/>")
            service = (share / "share/dbus-1/services/app.kestrel.Kestrel.ChromeLauncher.service").read_text()
            self.assertIn(f"Exec='{self.installed}/libexec/kestrel/kestrel-browser-helper'", service)
        with self.subTest("browsers are told of it, also from the stick"):
            self.verb(*connect)
            manifest = self.home / ".config/chromium/NativeMessagingHosts/app.kestrel.kestrel.json"
            self.assertEqual(json.loads(manifest.read_text())["path"],
                             f"{self.installed}/libexec/kestrel/kestrel-browser-relay")
        with self.subTest("and it offers nothing"):
            self.assertFalse(windows(NOTICE))

    def test_a_helper_that_is_killed_while_it_copies(self):
        ballast = self.bundle / "bin/a-file-to-copy-first"
        with ballast.open("wb") as file:
            file.truncate(2 * 10**9)
        copies = self.home / ".local/opt"
        kestrel = self.start()
        self.press("Return")
        while not list(copies.glob(".kestrel-copy-*")):
            self.assertIsNone(kestrel.poll(), self.log_text())
            time.sleep(0.001)
        helper, = [process for process in links_below(self.bundle / "libexec", "exe") if process != kestrel.pid]
        os.kill(helper, signal.SIGKILL)
        wait_until(lambda: windows("Couldn’t install Kestrel"), f"the failure; {self.log_text()}")
        xdotool("key", "Return")
        wait_until(lambda: windows("Kestrel"), "the agenda")
        self.assertFalse(self.installed.exists())
        self.assertEqual(self.log_text().count("the browser helper ended before it answered"), 1)
        kestrel.terminate()
        self.assertEqual(kestrel.wait(30), 0, self.log_text())

        ballast.unlink()
        kestrel = self.start()
        self.press("Return")
        self.assertEqual(kestrel.wait(60), 0, self.log_text())
        self.assertEqual(os.listdir(copies), ["kestrel"])

    def test_what_cannot_be_installed_goes_on_from_the_stick(self):
        self.installed.mkdir(parents=True)
        (self.installed / "thesis").write_text("mine")
        kestrel = self.start()
        self.press("Return")
        wait_until(lambda: windows("Couldn’t install Kestrel"), f"the failure; {self.log_text()}")
        xdotool("key", "Return")
        wait_until(lambda: windows("Kestrel"), "the agenda")
        self.assertEqual(links_below(self.installed, "exe"), [])
        self.assertEqual((self.installed / "thesis").read_text(), "mine")
        self.assertEqual(sorted(path.name for path in (self.home / ".local").iterdir()), ["opt"])
        kestrel.terminate()
        self.assertEqual(kestrel.wait(30), 0, self.log_text())


unittest.main()
