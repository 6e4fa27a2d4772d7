"""What is on the display and the bus that a test runs on."""

import subprocess


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
