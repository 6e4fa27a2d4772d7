"""What is on the display and the bus that a test runs on."""

import os
import re
import signal
import subprocess
import time

from kestrel_session import wait_until


def has_owner(name):
    answer = subprocess.run(["gdbus", "call", "--session", "--dest", "org.freedesktop.DBus", "--object-path", "/",
                             "--method", "org.freedesktop.DBus.NameHasOwner", name],
                            capture_output=True, text=True, timeout=20)
    return "true" in answer.stdout


def windows(name):
    """Identifiers of the visible windows whose title matches exactly."""
    found = subprocess.run(["xdotool", "search", "--onlyvisible", "--name", f"^{name}$"], capture_output=True, text=True,
                           timeout=20)
    return found.stdout.split()


def geometry(window):
    text = subprocess.run(["xdotool", "getwindowgeometry", "--shell", window], capture_output=True, text=True,
                          check=True, timeout=20).stdout
    values = dict(line.split("=") for line in text.split())
    return tuple(int(values[key]) for key in ("X", "Y", "WIDTH", "HEIGHT"))


def xdotool(*words):
    subprocess.run(["xdotool", *map(str, words)], check=True, timeout=60)


def item_property(name):
    """A property of the registered status item, read as a panel reads it."""
    items = subprocess.run(["gdbus", "call", "--session", "--dest", "org.kde.StatusNotifierWatcher", "--object-path",
                            "/StatusNotifierWatcher", "--method", "org.freedesktop.DBus.Properties.Get",
                            "org.kde.StatusNotifierWatcher", "RegisteredStatusNotifierItems"],
                           capture_output=True, text=True, timeout=20).stdout
    found = re.search(r"'(:[0-9.]+)", items)
    if not found:
        return None
    answer = subprocess.run(["gdbus", "call", "--session", "--dest", found[1], "--object-path", "/StatusNotifierItem",
                             "--method", "org.freedesktop.DBus.Properties.Get", "org.kde.StatusNotifierItem", name],
                            capture_output=True, text=True, timeout=20)
    value = re.search(r"<'(.*)'>", answer.stdout)
    return value[1] if value else None


def start_panel(test):
    """A real panel with its tray for the rest of the test, or until the function that is returned is called."""
    environment = dict(os.environ, GSETTINGS_BACKEND="memory", NO_AT_BRIDGE="1", GTK_A11Y="none", XDG_CURRENT_DESKTOP="MATE")
    panel = subprocess.Popen(["mate-panel"], env=environment, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                             stderr=subprocess.DEVNULL)

    def end(how=signal.SIGTERM):
        panel.send_signal(how)
        panel.wait(20)
    test.addCleanup(end)
    wait_until(lambda: has_owner("org.kde.StatusNotifierWatcher"), "the panel's tray")
    time.sleep(2)  # its other applets draw themselves
    return end
