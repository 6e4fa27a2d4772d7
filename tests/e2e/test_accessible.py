"""Every window as a screen reader finds it through AT-SPI, and worked by the keyboard alone."""

import contextlib
import os
import re
import shutil
import subprocess
import threading
import unittest
from pathlib import Path

import gi
gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, Gio, GLib

from kestrel_session import BIN, Kestrel, SampleGoogle, wait_until
from screen import windows, xdotool

CONTROLS = {"push button", "check box", "radio button", "combo box", "spin button", "text", "list item", "page tab"}
OTHERS = {"panel", "list", "page tab list", "dialog", "notification", "image", "label", "heading", "alert", "animation",
          "tool tip"}
State = Atspi.StateType
CHOSEN = {"radio button": State.CHECKED, "page tab": State.SELECTED}
BROWSER = f"""#!/bin/sh
case "$1" in
http://127.0.0.1*)
    while [ -e "$0.waits" ]; do sleep 0.1; done
    [ ! -e "$0.cancels" ] || cancel=--cancel
    exec {BIN}/kestrel-sample-google press-consent "$1" $cancel ;;
*) echo "$1" >>"$0.opened" ;;
esac
"""
PROTOCOL = Path(__file__).parents[2] / "src/meet/protocol/app.kestrel.Kestrel.ChromeLauncher.xml"


def say_that_a_screen_reader_runs():
    bus = Gio.bus_get_sync(Gio.BusType.SESSION)
    for name in ("IsEnabled", "ScreenReaderEnabled"):
        bus.call_sync("org.a11y.Bus", "/org/a11y/bus", "org.freedesktop.DBus.Properties", "Set",
                      GLib.Variant("(ssv)", ("org.a11y.Status", name, GLib.Variant("b", True))), None, 0, -1, None)


class PlayedHelper:
    """Stands where the browser helper does, in a call whose buttons all work."""

    def __init__(self):
        self.interface = Gio.DBusNodeInfo.new_for_xml(PROTOCOL.read_text()).interfaces[0]
        self.loop = GLib.MainLoop(GLib.MainContext())
        self.bus = Gio.DBusConnection.new_for_address_sync(
            os.environ["DBUS_SESSION_BUS_ADDRESS"],
            Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION, None, None)
        self.thread = threading.Thread(target=self.serve)
        self.thread.start()

    def serve(self):
        self.loop.get_context().push_thread_default()
        self.bus.register_object("/app/kestrel/ChromeLauncher", self.interface, self.answer, None, None)
        names = self.ask_bus("ListNames", None).unpack()[0]
        kestrel = next(name for name in names if re.fullmatch(r"app\.kestrel\.Kestrel\.data_\w+", name))
        self.ask_bus("RequestName", GLib.Variant("(su)", (kestrel + ".ChromeLauncher", 0)))
        self.loop.run()

    def ask_bus(self, method, arguments):
        return self.bus.call_sync("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", method, arguments,
                                  None, 0, -1, None)

    def answer(self, bus, sender, path, interface, method, arguments, invocation):
        invocation.return_value(GLib.Variant("(basas)", (True, ["ok:Turn off microphone"], [])))

    def stop(self):
        self.loop.get_context().invoke_full(0, self.loop.quit)
        self.thread.join()


def inside(accessible):
    return filter(None, (accessible.get_child_at_index(i) for i in range(accessible.get_child_count())))


class Node:
    """An object of the tree; role and name as they were when it was found."""

    def __init__(self, accessible, parent=None):
        self.accessible, self.parent = accessible, parent
        self.role, self.name = accessible.get_role_name(), accessible.get_name()

    def __repr__(self):
        return f"{self.role} “{self.name}”"

    def has(self, state):
        return self.accessible.get_state_set().contains(state)

    def act(self, action):
        names = [self.accessible.get_action_name(i) for i in range(self.accessible.get_n_actions())]
        self.accessible.do_action(names.index(action))

    def text(self):
        return self.accessible.get_text(0, self.accessible.get_character_count())

    def below(self):
        """All that is there for a person: scrolled out of sight is not visible either, but has a place on the screen."""
        for child in (Node(child, self) for child in inside(self.accessible)):
            if "Component" in child.accessible.get_interfaces():
                yield child
                yield from child.below()


def controls_of(window):
    return [node for node in window.below() if node.role in CONTROLS and node.has(State.SENSITIVE)]


def focused(controls, before=None):
    """Whichever of the controls has the focus, asked in an order in which it is found soon."""
    first = controls.index(before) + 1 if before else 0
    return next((node for node in controls[first:] + controls[:first] if node.has(State.FOCUSED)), None)


def press_tab(controls, before):
    found = []

    def moved():
        found[:] = [focused(controls, before)]
        return found[0] not in (None, before)
    xdotool("key", "Tab")
    wait_until(moved, f"Tab goes on from {before}")
    return found[0]


class Accessible(unittest.TestCase):
    def setUp(self):
        self.google = SampleGoogle()
        self.addCleanup(self.google.stop)
        self.kestrel = Kestrel(self.google, "--secret-store", "file")
        self.addCleanup(self.kestrel.close)
        self.folder = self.kestrel.data.parent
        browser = self.folder / "browser"
        browser.write_text(BROWSER)
        browser.chmod(0o755)
        self.kestrel.environment["KESTREL_BROWSER"] = str(browser)
        suppressions = Path(__file__).parents[1] / "support/lsan-screen-reader.supp"
        self.kestrel.environment["LSAN_OPTIONS"] = f"suppressions={suppressions}:print_suppressions=0"

    def shown(self, title, has_keyboard=True):
        def find():
            for program in inside(Atspi.get_desktop(0)):
                program.set_cache_mask(Atspi.Cache.NONE)
                for window in map(Node, inside(program)):
                    if window.name == title and window.has(State.VISIBLE) and (not has_keyboard or window.has(State.ACTIVE)):
                        return window
        wait_until(find, f"{title} in the tree; {self.kestrel.log_text()}")
        return find()

    def control(self, window, name):
        def find():
            return next((node for node in controls_of(window) if re.search(name, node.name)), None)
        wait_until(find, f"{name} in {window}")
        return find()

    def go_to(self, window, name):
        controls = controls_of(window)
        node = focused(controls)
        for _ in controls + controls:
            if node and re.search(name, node.name):
                return node
            node = press_tab(controls, node)
        raise AssertionError(f"Tab does not come to {name} among {controls}")

    def check_tree(self, window):
        """Everything has a name of its own and a role."""
        nodes, seen = list(window.below()), set()
        for node in nodes:
            with self.subTest(f"{window}: {node}"):
                description = node.accessible.get_description()
                self.assertIn(node.role, CONTROLS | OTHERS)
                self.assertTrue(node.name.strip(), f"nameless, in {node.parent}")
                self.assertNotRegex(node.name, rf"(?i)#[0-9a-f]{{6}}|%|\b{node.role.split()[-1]}$")
                self.assertNotEqual(node.name, description)
                if node.role in CONTROLS:
                    self.assertTrue(node.has(State.FOCUSABLE))
                    self.assertNotIn((id(node.parent), node.role, node.name), seen)
                    seen.add((id(node.parent), node.role, node.name))
                if node.role in ("combo box", "spin button"):
                    self.assertTrue(description, "its value in words")
        return nodes

    def check_round(self, window):
        """Tab comes to every control, of a group of choices to the chosen one."""
        controls = controls_of(window)
        expected = [node for node in controls if node.role not in CHOSEN or node.has(CHOSEN[node.role])]
        visited = [focused(controls) if len(expected) == 1 else press_tab(controls, focused(controls))]
        while len(expected) > 1 and len(visited) <= len(controls):
            node = press_tab(controls, visited[-1])
            if node is visited[0]:
                break
            visited.append(node)
        self.assertCountEqual(map(str, visited), map(str, expected), window)

    def test_all_windows(self):
        kestrel = self.kestrel
        kestrel.start()
        wait_until(lambda: windows("Kestrel"), "the agenda of the first start")
        say_that_a_screen_reader_runs()  # only now, as when one is started later than Kestrel
        agenda = self.shown("Kestrel")
        self.assertEqual(len([node for node in self.check_tree(agenda) if node.role == "label"]), 2)
        self.check_round(agenda)
        (self.folder / "browser.cancels").touch()
        self.sign_in(agenda, "Connect a Google account")
        wait_until(lambda: any(node.role == "alert" for node in agenda.below()), "what went wrong")
        self.check_tree(agenda)
        self.check_round(agenda)
        (self.folder / "browser.cancels").unlink()
        self.close(agenda)

        kestrel.done("settings")
        window = self.shown("Kestrel Settings")
        self.turn_to(window, "Accounts")
        self.check_tree(window)
        self.check_round(window)
        self.sign_in(window, "Add a Google account")
        wait_until(lambda: kestrel.json("accounts", "list"), "signed in by the keyboard")
        self.close(window)

        self.google.remove_sample_events()
        kestrel.done("refresh")
        kestrel.done("show")
        agenda = self.shown("Kestrel")
        wait_until(lambda: any(node.name == "No upcoming meetings" for node in agenda.below()), "an empty agenda")
        self.check_tree(agenda)
        self.check_round(agenda)
        self.close(agenda)
        for number, (minutes, more) in enumerate([(-10, {}), (40, {"location": "Harbour office"}), (90, {}), (120, {})]):
            self.google.add_event(id=f"a{number}", title=f"Meeting {number}", startsInMinutes=minutes,
                                  meetCode=f"kes-demo-aa{number}", **more)
        kestrel.done("refresh")
        kestrel.done("show")
        agenda = self.shown("Kestrel")
        wait_until(lambda: len([node for node in controls_of(agenda) if "Meeting" in node.name]) == 4, "four meetings")
        self.check_tree(agenda)
        self.check_round(agenda)
        self.close(agenda)

        kestrel.done("settings")
        window = self.shown("Kestrel Settings")
        for tab in ("General", "Appearance", "Accounts", "Meetings", "Notifications", "About"):
            self.turn_to(window, tab)
            getattr(self, f"work_{tab}", lambda window: None)(window)
            self.check_tree(window)
            self.check_round(window)
        self.close(window)

        kestrel.done("show")
        agenda = self.shown("Kestrel")
        self.go_to(agenda, "Meeting 0")
        xdotool("key", "Return")
        self.joined("kes-demo-aa0")
        self.close(agenda)

        said = []

        def listen(event, *_):  # to what a reader says wherever the focus is
            with contextlib.suppress(GLib.Error):  # what has gone by now was none
                if event.detail1 and event.source.get_role_name() == "notification":
                    said.append(str(Node(event.source)))
        listener = Atspi.EventListener.new(listen)
        listener.register("object:state-changed:showing")
        self.check_card(said, "First", lambda card: kestrel.done("dismiss"))
        self.check_card(said, "Second", lambda card: self.control(card, "Dismiss").act("Press"))
        self.check_card(said, "Third", lambda card: kestrel.done("join"))
        self.joined("kes-demo-bbb")

        helper = PlayedHelper()
        self.addCleanup(helper.stop)
        kestrel.done("action", "meetMute")
        self.wait_for_said(said, "notification “Microphone off”")

        self.google.post("/expire-tokens")
        self.google.post("/revoke-all")
        kestrel.done("refresh")
        kestrel.done("show")
        agenda = self.shown("Kestrel")
        self.control(agenda, "is not signed in")
        self.check_tree(agenda)
        self.check_round(agenda)
        self.go_to(agenda, "is not signed in")
        xdotool("key", "Return")
        window = self.shown("Kestrel Settings")
        wait_until(lambda: self.control(window, "^Accounts$").has(State.SELECTED), "the accounts")
        self.check_tree(window)
        self.check_round(window)
        self.close(window)

    def sign_in(self, window, button):
        """By the keyboard; the browser waits until it was seen that Kestrel does, too."""
        waits = self.folder / "browser.waits"
        waits.touch()
        self.go_to(window, button)
        xdotool("key", "Return")
        wait_until(lambda: any(node.role == "animation" for node in window.below()), "it is told that it works")
        self.check_tree(window)
        waits.unlink()

    def turn_to(self, window, name):
        tab = self.control(window, f"^{name}$")
        while not tab.has(State.SELECTED):
            chosen = next(node for node in controls_of(window) if node.role == tab.role and node.has(State.SELECTED))
            xdotool("key", "ctrl+Next")
            wait_until(lambda: not chosen.has(State.SELECTED), f"on from {chosen}")

    def joined(self, code):
        opened = self.folder / "browser.opened"
        wait_until(lambda: opened.exists() and code in opened.read_text(), f"{code} joined")

    def close(self, window):
        xdotool("key", "Escape")
        wait_until(lambda: not windows(window.name), f"{window} closed")

    def wait_for_said(self, said, text):
        wait_until(lambda: GLib.MainContext.default().iteration(False) or text in said, f"{text} is said, not only {said}")

    def work_General(self, window):
        five, ten = (self.control(window, f"before a meeting: {number} min") for number in (5, 10))
        self.go_to(window, five.name)
        for change, now, other in ((lambda: xdotool("key", "Right"), ten, five), (lambda: five.act("Press"), five, ten)):
            self.assertTrue(other.has(State.CHECKED))
            change()
            wait_until(lambda: now.has(State.CHECKED) and not other.has(State.CHECKED), f"{now} chosen")

        spin = self.go_to(window, "Close alerts")
        xdotool("key", "Up")
        wait_until(lambda: spin.accessible.get_current_value() > 0, "more by the keyboard")
        spin.act("Increase")
        wait_until(lambda: f"autoDismissSeconds={spin.accessible.get_current_value():.0f}\n"
                   in (self.kestrel.data / "kestrel.ini").read_text(), "what is shown is stored")

        combo = self.go_to(window, "Alerts appear at the")
        before = combo.accessible.get_description()
        xdotool("key", "space")
        wait_until(lambda: any(node.role == "list item" for node in controls_of(window)), "its list")
        self.check_tree(window)
        xdotool("key", "Down", "Return")
        wait_until(lambda: combo.accessible.get_description() != before, "another position")

        switch = self.go_to(window, "Stack alerts")
        for change in (lambda: xdotool("key", "space"), lambda: xdotool("key", "Return"), lambda: switch.act("Toggle")):
            was = switch.has(State.CHECKED)
            change()
            wait_until(lambda: switch.has(State.CHECKED) != was, "switched")
        switch.act("Press")

    def work_Accounts(self, window):
        in_a_tab = self.control(window, "Browser tab")
        in_a_tab.act("Press")
        wait_until(lambda: in_a_tab.has(State.CHECKED), "meetings open in a tab")
        line = self.go_to(window, "^Calendars")
        xdotool("key", "space")
        wait_until(lambda: line.has(State.CHECKED), "the calendars unfolded")
        self.control(window, "colour from Google")
        self.go_to(window, "colour from Google")
        xdotool("key", "space")
        second = self.control(window, "^Red 2$")
        self.check_tree(window)
        self.go_to(window, "^Red 1$")
        xdotool("key", "Right")
        wait_until(lambda: second.has(State.FOCUSED), "the next colour")
        xdotool("key", "Return")
        self.control(window, "Your own colour")

    def work_Meetings(self, window):
        self.go_to(window, "^Control calls")
        xdotool("key", "space")
        keys = self.go_to(window, "^Microphone on or off$")
        before = keys.accessible.get_description()
        xdotool("key", "space")
        wait_until(lambda: keys.accessible.get_description() not in ("", before), "it says that it records")
        self.check_tree(window)
        xdotool("key", "Escape")
        wait_until(lambda: keys.accessible.get_description() == before, "as it was")
        xdotool("key", "space")
        xdotool("key", "alt+shift+c")  # the camera's
        wait_until(lambda: len([node for node in window.below() if node.role == "alert"]) == 2, "both say so")
        self.check_tree(window)
        self.go_to(window, "Back to the default shortcut: Microphone")
        xdotool("key", "space")
        wait_until(lambda: keys.accessible.get_description() == before, "the default")
        self.assertFalse([node for node in window.below() if node.role == "alert"])
        self.go_to(window, "^Control calls")
        xdotool("key", "space")

        width = self.go_to(window, "^Width$")
        before = width.text()
        xdotool("type", "1234")
        xdotool("key", "Return")
        wait_until(lambda: width.text() == "1234", "typed")
        self.go_to(window, "Reset size")
        xdotool("key", "space")
        wait_until(lambda: width.text() == before, "reset")

    def check_card(self, said, title, close):
        """Never takes the keyboard and is said all the same."""
        self.google.add_event(id=title, title=title, startsInMinutes=3, meetCode="kes-demo-bbb")
        self.kestrel.done("refresh")
        card = self.shown(title, has_keyboard=False)
        nodes = self.check_tree(card)
        self.assertEqual(str(nodes[0]), f"notification “{title}”")
        self.wait_for_said(said, str(nodes[0]))
        self.assertEqual(said.count(str(nodes[0])), 1, "said once")
        self.assertRegex(nodes[0].accessible.get_description(), r"\d+:\d\d.*30 min")
        self.assertEqual([node.name for node in controls_of(card)], ["Dismiss", "Join Google Meet", "Open in calendar"])
        self.assertFalse(card.has(State.ACTIVE) or focused(nodes))
        close(card)
        wait_until(lambda: not windows(title), f"{title} closed")

    def test_a_notice(self):
        say_that_a_screen_reader_runs()
        bundle = self.folder / "media/stick/Kestrel"
        for source, name in ((BIN / "kestrel", "bin/kestrel"), (BIN / "kestrel-app", "libexec/kestrel/kestrel-app"),
                             (os.devnull, "share/applications/app.kestrel.Kestrel.desktop")):
            (bundle / name).parent.mkdir(parents=True)
            shutil.copy(source, bundle / name)
        process = subprocess.Popen([bundle / "bin/kestrel", "--secret-store", "file"], stdin=subprocess.DEVNULL,
                                   stdout=self.kestrel.log, stderr=self.kestrel.log,
                                   env=dict(self.kestrel.environment, KESTREL_PASSING=f"{self.folder}/media/"))
        self.addCleanup(lambda: (process.terminate(), process.wait(60)))
        notice = self.shown("Install Kestrel on this computer?")
        self.assertEqual([node.role for node in self.check_tree(notice) if node.role not in CONTROLS],
                         ["dialog", "heading", "label"])
        self.check_round(notice)
        self.go_to(notice, "Not Now")
        xdotool("key", "space")
        self.shown("Kestrel")


unittest.main()
