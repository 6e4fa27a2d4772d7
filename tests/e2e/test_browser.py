"""Our extension and its relay in a real browser with windows, asked through the relay's socket as the helper asks."""

import json
import os
import pathlib
import shutil
import signal
import subprocess
import tempfile
import unittest

from browser_session import EXTENSION, EXTENSION_ID, RELAY, Browser, RelayClient, SampleCall
from kestrel_session import BIN, wait_until

# presses a button, then one that comes later, and the first again in the end: as long as frames and timers go on
REACT = """(() => {
    const labelled = text => document.querySelector(`button[aria-label*="${text}" i]`);
    labelled("reaction").click();
    const start = performance.now();
    const poll = () => {
        if (labelled("clap")) {
            labelled("clap").click();
            setTimeout(() => labelled("reaction").click(), 150);
        } else if (performance.now() - start < 1500) {
            requestAnimationFrame(poll);
        }
    };
    requestAnimationFrame(poll);
    return "fired";
})()"""
REACTED = ["Send a reaction", "Clapping hands", "Send a reaction"]


def xdotool(*arguments):
    return subprocess.run(["xdotool", *arguments], capture_output=True, text=True).stdout.strip()


class BrowserTest(unittest.TestCase):
    def setUp(self):
        self.call = SampleCall()
        self.addCleanup(self.call.stop)

    def browser(self, *pages, **options):
        browser = Browser(self.call, **options)
        self.addCleanup(browser.stop)
        browser.start(*pages)
        return browser

    def tab(self, client, marker="meet.google.com/"):
        """Once its page is there."""
        wait_until(lambda: client.find(marker) is not None, f"a tab of {marker}")
        tab = client.find(marker)
        wait_until(lambda: client.run(tab, "document.readyState") == {"result": "complete"}, "the page")
        return tab

    def wait_for_page(self, client, tab, what, value):
        wait_until(lambda: client.run(tab, what) == {"result": value}, f"{what} is {value}")


class Scripts(BrowserTest):
    def test_answers_what_a_script_gives(self):
        [client] = self.browser("https://meet.google.com/abc").relays()
        tab = self.tab(client)
        for source, answer in {
            "'tëxt 👏'": {"result": "tëxt 👏"},
            "1 + 1 // and no more": {"result": "2"},
            "null": {"result": None},
            "undefined": {"result": None},
            " \n": {"result": None},
            "'\\ud800'": {"result": "\ufffd"},
            "new Promise(done => setTimeout(done, 1, 'later'))": {"result": "later"},
            "'x'.repeat(256 * 1024 - 2)": {"result": "x" * (256 * 1024 - 2)},
            "'x'.repeat(256 * 1024 - 1)": {"error": "result too large"},
            "'\\0'.repeat(50000)": {"error": "result too large"},
            "(() => { throw new TypeError('no'); })()": {"error": "TypeError: no"},
            "Promise.reject('refused')": {"error": "refused"},
            "1 +": {"error": "SyntaxError: Unexpected end of input"},
            "({ toString() { throw 'never a text' } })": {"error": "never a text"},
            "document.querySelector('[aria-label=\"Turn off microphone\"]').click()": {"result": None},
            "location = 'about:blank'; new Promise(() => {})": {"gone": True},
        }.items():
            with self.subTest(source[:60]):
                self.assertEqual(client.run(tab, source), answer)
        self.assertEqual(self.call.clicks(), ["Turn off microphone"])

    def test_touches_no_other_pages(self):
        browser = self.browser("https://meet.google.com:8443/other-port", "https://example.org/?meet.google.com/",
                               "data:text/html,meet.google.com/", "https://meet.google.com/abc")
        [client] = browser.relays()
        tab = self.tab(client)
        self.assertEqual(client.find("/abc"), tab)
        for marker in ("other-port", "example", "data:", "nowhere"):
            self.assertIsNone(client.find(marker))
        self.assertEqual(client.run(tab, "1", marker="/xyz"), {"gone": True})
        self.assertEqual(client.run(tab + 1000, "1"), {"gone": True})
        self.assertEqual(client.ask("close", tab=tab, marker="/xyz"), {"gone": True})
        for url in ("http://meet.google.com/", "javascript:alert(1)", "no address"):
            with self.subTest(url):
                self.assertIn("error", client.ask("open", url=url, width=500, height=400))
        self.assertIn("error", client.ask("unheard-of"))

    def test_go_on_in_pages_that_nobody_sees(self):
        browser = self.browser("https://meet.google.com/abc")
        [client] = browser.relays()
        tab = self.tab(client)

        browser.start("about:blank")
        self.wait_for_page(client, tab, "document.visibilityState", "hidden")
        self.assertEqual(client.run(tab, REACT), {"result": "fired"})
        wait_until(lambda: self.call.clicks() == REACTED, "the reaction in a hidden tab")

        client.run(tab, "", activate=True)
        self.wait_for_page(client, tab, "document.visibilityState", "visible")
        xdotool("getactivewindow", "windowminimize")
        self.wait_for_page(client, tab, "document.visibilityState", "hidden")
        self.wait_for_page(client, tab, "document.querySelector('[aria-expanded]').ariaExpanded", "false")
        self.assertEqual(client.run(tab, REACT), {"result": "fired"})
        wait_until(lambda: self.call.clicks() == REACTED * 2, "the reaction in a minimised window")

        with self.subTest("a script that changes the page in each of its frames does not drive itself"):
            frames = client.run(tab, """new Promise(done => {
                const start = performance.now();
                let count = 0;
                const frame = () => {
                    requestAnimationFrame(performance.now() - start < 1500 ? frame : () => done(count));
                    document.body.dataset.count = ++count;
                };
                requestAnimationFrame(frame);
            })""")
            self.assertLess(int(frames["result"]), 100)

    def browser_with_devtools(self, *pages, **options):
        """The browser, the path of the extension's relay, and a DevTools client through Kestrel's own way to a browser."""
        browser = Browser(self.call, **options)
        self.addCleanup(browser.stop)
        browser.process = subprocess.Popen(
            [RELAY, "--devtools", "--", *browser.command("--remote-debugging-pipe", *pages)], env=browser.environment(),
            stdout=subprocess.PIPE, stderr=browser.log, text=True)
        self.addCleanup(browser.process.stdout.close)
        devtools = DevTools(browser.process.stdout.readline().rstrip("\n"))
        wait_until(lambda: len(browser.socket_paths()) == 2, "the extension's relay")
        return browser.socket_paths()[1], devtools

    def test_leave_tabs_that_are_asleep_alone(self):
        path, devtools = self.browser_with_devtools("https://meet.google.com/one", "https://meet.google.com/two")
        client = RelayClient(path)
        asleep, awake = self.tab(client, "/one"), self.tab(client, "/two")
        client.run(awake, "", activate=True)
        [worker] = [target["targetId"] for target in devtools.ask("Target.getTargets")["targetInfos"]
                    if target["type"] == "service_worker" and EXTENSION_ID in target["url"]]
        session = devtools.ask("Target.attachToTarget", targetId=worker, flatten=True)["sessionId"]
        asleep = devtools.evaluate(session, f"chrome.tabs.discard({asleep}).then(tab => tab.id)")

        self.assertEqual(client.find(), awake)
        self.assertEqual(client.find("/one"), asleep)
        self.assertEqual(client.run(asleep, "1"), {"gone": True})
        self.assertEqual(client.run(asleep, "'awake'", activate=True), {"result": "awake"})
        self.assertEqual(client.find(), asleep)

    def test_without_the_switch_and_after_it_was_turned_on(self):
        path, devtools = self.browser_with_devtools("https://meet.google.com/abc", user_scripts=False)
        client = RelayClient(path)
        self.assertIs(client.greeting["userScripts"], False)
        wait_until(client.find, "the tab")
        tab = client.find()
        # the switch is turned as a person turns it, on the browser's own page
        page = devtools.attach(devtools.ask("Target.createTarget", url="chrome://extensions")["targetId"])
        for isOn, answer in ((True, {"result": "2"}), (False, {"error": "Allow User Scripts is off"})) * 2:
            self.assertEqual(
                client.run(tab, "1 + 1"), {"error": "Allow User Scripts is off"} if isOn else {"result": "2"})
            devtools.evaluate(page, f"""chrome.developerPrivate.updateExtensionConfiguration(
                {{ extensionId: "{EXTENSION_ID}", userScriptsAccess: {json.dumps(isOn)} }})""")
            wait_until(lambda: client.run(tab, "1 + 1") == answer, f"the switch is {isOn}")
            self.assertIs(RelayClient(path).greeting["userScripts"], isOn)


class DevTools(RelayClient):
    def ask(self, method, session=None, **parameters):
        assert self.greeting["route"] == "devtools"
        identifier = int(next(self.identifiers).split("-")[2])
        self.send({"id": identifier, "method": method, "params": parameters, **({"sessionId": session} if session else {})})
        while (answer := self.receive()).get("id") != identifier:
            pass
        return answer["result"]

    def attach(self, target):
        session = self.ask("Target.attachToTarget", targetId=target, flatten=True)["sessionId"]
        wait_until(lambda: self.evaluate(session, "document.readyState") == "complete", "the page of the target")
        return session

    def evaluate(self, session, expression):
        answer = self.ask("Runtime.evaluate", session, expression=expression, awaitPromise=True, returnByValue=True)
        assert "exceptionDetails" not in answer, answer
        return answer["result"].get("value")


class Windows(BrowserTest):
    def name_of_active(self):
        return xdotool("getactivewindow", "getwindowname")

    def test_brings_the_tab_and_its_window_to_the_front(self):
        browser = self.browser("https://meet.google.com/abc", "about:blank")
        [client] = browser.relays()
        tab = self.tab(client)
        browser.start("--new-window", "data:text/html,<title>Another</title>")
        wait_until(lambda: "Another" in self.name_of_active(), "another window in front")
        self.assertEqual(client.run(tab, "", activate=True), {"result": None})
        wait_until(lambda: "Sample call" in self.name_of_active(), "the call in front")
        self.wait_for_page(client, tab, "document.visibilityState", "visible")

        xdotool("getactivewindow", "windowminimize")
        wait_until(lambda: "Another" in self.name_of_active(), "the call is minimised")
        self.assertEqual(client.run(tab, "'and runs'", activate=True), {"result": "and runs"})
        wait_until(lambda: "Sample call" in self.name_of_active(), "the call in front again")

    def test_closes_without_a_question(self):
        browser = self.browser("https://meet.google.com/one?ask", "https://meet.google.com/two?ask",
                               "https://meet.google.com/three?ask")
        [client] = browser.relays()
        self.tab(client, "/three")
        for marker in ("/one", "/two", "/three"):
            tab = self.tab(client, marker)
            client.run(tab, "", activate=True)
            self.wait_for_page(client, tab, "document.visibilityState", "visible")
            # browsers ask only where the person has done something
            xdotool("mousemove", "500", "400", "click", "1")
            self.wait_for_page(client, tab, "navigator.userActivation.hasBeenActive", "true")
            if marker == "/one": # in the background, and as the active one
                client.run(self.tab(client, "/two"), "", activate=True)
            if marker == "/three":
                break
            self.assertEqual(client.ask("close", tab=tab, marker=marker), {"closed": True})
            self.assertIsNone(client.find(marker))
        # the last one takes the browser with it
        try:
            self.assertEqual(client.ask("close", tab=tab, marker="/three"), {"closed": True})
        except (EOFError, ConnectionResetError):
            pass
        browser.process.wait(30)

    def test_opens_a_window_of_the_asked_size(self):
        [client] = self.browser("https://meet.google.com/abc").relays()
        self.tab(client)
        for width, height in ((1300, 800), (640, 480)):
            with self.subTest(width):
                marker = f"/size-{width}"
                url = f"https://meet.google.com{marker}"
                self.assertEqual(client.ask("open", url=url, width=width, height=height), {"opened": True})
                tab = self.tab(client, marker)
                self.wait_for_page(client, tab, "`${outerWidth}x${outerHeight}`", f"{width}x{height}")
                self.assertIn(f"Geometry: {width}x{height}", xdotool("getactivewindow", "getwindowgeometry"))
                self.assertEqual(client.ask("close", tab=tab, marker=marker), {"closed": True})

    def test_takes_the_first_tab_over_windows_and_each_profile_its_own(self):
        browser = self.browser("--profile-directory=Default", "https://meet.google.com/one", "https://meet.google.com/two",
                               profiles=("Default", "Profile 1"))
        [client] = browser.relays()
        self.tab(client, "/two")
        browser.start("--profile-directory=Default", "--new-window", "https://meet.google.com/three")
        self.tab(client, "/three")
        self.wait_for_page(client, client.find(), "location.pathname", "/one")
        client.ask("close", tab=client.find(), marker="/one")
        client.ask("close", tab=client.find(), marker="/two")
        self.wait_for_page(client, client.find(), "location.pathname", "/three")

        browser.start("--profile-directory=Profile 1", "https://meet.google.com/four")
        wait_until(lambda: len(browser.socket_paths()) == 2, "a relay of the other profile")
        other = RelayClient(browser.socket_paths()[1])
        self.tab(other, "/four")
        self.assertIsNone(other.find("/three"))
        self.assertIsNone(client.find("/four"))


class Lives(BrowserTest):
    def assert_ended(self, client):
        with self.assertRaises((EOFError, ConnectionResetError)):
            client.receive()

    def test_a_killed_browser_takes_its_relay_along(self):
        browser = self.browser("https://meet.google.com/abc")
        [client] = browser.relays()
        self.assertEqual(client.greeting["userDataDir"], str(browser.data))
        self.assertEqual(client.greeting["browserPid"], browser.process.pid)
        browser.kill(signal.SIGKILL)
        self.assert_ended(client)
        wait_until(lambda: not browser.socket_paths(), "no socket is left")

    def test_comes_back_after_its_relay_was_killed_or_fed_with_rubbish(self):
        browser = self.browser("https://meet.google.com/abc")
        for end in (lambda client: client.send(b"no JSON"), lambda client: client.send(b"[]"), self.kill_relay):
            path = browser.socket_paths()[-1] if browser.socket_paths() else None
            client = RelayClient(path) if path else browser.relays()[0]
            self.assertTrue(client.greeting)
            end(client)
            client.close()
            wait_until(lambda: self.answers(browser), "the extension answers")

    def kill_relay(self, client):
        pid = int(client.path.stem.split("-")[1])
        subprocess.run(["kill", "-KILL", str(pid)], check=True)

    def answers(self, browser):
        try:
            client = RelayClient(browser.socket_paths()[-1])
            return "tab" in client.ask("find", marker="meet.google.com/")
        except (EOFError, OSError, IndexError):
            return False

    def test_finds_a_relay_that_is_installed_later(self):
        browser = Browser(self.call)
        self.addCleanup(browser.stop)
        [manifest] = (browser.data / "NativeMessagingHosts").iterdir()
        away = manifest.rename(browser.data / "away")
        browser.start("https://meet.google.com/abc")
        wait_until(lambda: (browser.data / "Default/Service Worker").exists(), "the extension runs")
        self.assertEqual(browser.socket_paths(), [])
        away.rename(manifest)
        self.assertTrue(self.tab(browser.relays()[0]))

    def test_starts_anew_when_it_was_updated_in_its_folder(self):
        place = Browser(self.call)
        self.addCleanup(place.stop)
        place.extension = place.data.parent / "extension"
        shutil.copytree(EXTENSION, place.extension)
        place.start("https://meet.google.com/abc")
        [client] = place.relays()
        manifest = json.loads((place.extension / "manifest.json").read_text())
        self.assertEqual(client.greeting["revision"], manifest["version"])

        (place.extension / "manifest.json").write_text(json.dumps({**manifest, "version_name": "next"}))
        (place.extension / "revision").write_text("next\n")
        wait_until(lambda: self.revision(place) == "next", "the new one runs")
        newer = RelayClient(place.socket_paths()[-1])
        self.assertEqual(newer.run(self.tab(newer), "'works'"), {"result": "works"})

    def revision(self, browser):
        try:
            return RelayClient(browser.socket_paths()[-1]).greeting.get("revision")
        except (EOFError, OSError, IndexError):
            return None


class SetUp(BrowserTest):
    def kestrel(self, *arguments, **variables):
        return subprocess.run([BIN / "kestrel", "browser", *arguments], env={**os.environ, **variables},
                              capture_output=True, text=True, timeout=60)

    def test_by_the_command_line(self):
        folder = tempfile.TemporaryDirectory(prefix="kestrel-setup-")
        self.addCleanup(folder.cleanup)
        place = pathlib.Path(folder.name)
        applications = place / "share/applications"
        applications.mkdir(parents=True)
        variables = {"KESTREL_DATA": str(place / "kestrel"), "XDG_DATA_HOME": str(place / "share"), "XDG_DATA_DIRS": str(place)}
        nothing = self.kestrel("install", **variables)
        self.assertEqual(nothing.returncode, 1)
        self.assertIn("no browser", nothing.stderr)

        (applications / "chromium.desktop").write_text("[Desktop Entry]\nExec=chromium\n")
        (applications / "chromium_chromium.desktop").write_text("[Desktop Entry]\nExec=chromium\n")
        installed = self.kestrel("install", **variables)
        self.assertEqual((installed.returncode, installed.stderr), (0, ""))
        for said in ("Load unpacked", "Allow User Scripts", f"{place}/kestrel/browser-extension", "Chromium (Snap)"):
            self.assertIn(said, installed.stdout)

        browser = Browser(self.call, extension=place / "kestrel/browser-extension",
                          data=place / "kestrel/home/.config/chromium")
        self.addCleanup(browser.stop)
        variables["KESTREL_BROWSER_SOCKETS"] = str(browser.sockets)
        self.assertIn("not connected", self.kestrel("status", **variables).stdout)
        browser.start("https://meet.google.com/abc")
        [client] = browser.relays()
        self.assertEqual(client.run(self.tab(client), "'works'"), {"result": "works"})
        report = json.loads(self.kestrel("status", "--json", **variables).stdout)
        native, snap = report["browsers"]
        self.assertEqual((native["manifest"], snap["manifest"]), ("current", "impossible"))
        [connection] = native["connections"]
        self.assertEqual(connection["revision"], report["installedRevision"])
        self.assertEqual(report["installedRevision"], report["shippedRevision"])
        self.assertIs(connection["userScripts"], True)

        with self.subTest("what the browser writes about its profiles"):
            browser.process.terminate()
            browser.process.wait(30)
            [native, _] = json.loads(self.kestrel("status", "--json", **variables).stdout)["browsers"]
            self.assertEqual(
                [(p["folder"], p["hasExtension"], p["isEnabled"], p["userScripts"]) for p in native["profiles"]],
                [("Default", True, True, True)])
            self.assertIn("): ready", self.kestrel("status", **variables).stdout)


if __name__ == "__main__":
    unittest.main(warnings="ignore")
