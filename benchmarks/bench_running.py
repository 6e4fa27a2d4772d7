#!/usr/bin/python3
"""The running program from outside: time to the status item, memory, wake-ups. Prints each figure beside its budget.

Runs on a display and a bus of its own (tests/support/with-display), with a tray host that only notes who registers.
KESTREL_BIN names the build's bin folder. The parts can be named: start status memory wake-ups."""
import os
import pathlib
import statistics
import subprocess
import sys
import threading
import time

import dbus
import dbus.mainloop.glib
import dbus.service
from gi.repository import GLib

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "tests/e2e"))
from kestrel_session import BIN, Kestrel, SampleGoogle, wait_until  # noqa: E402
from process_figures import line, memory  # noqa: E402

WATCHER = "org.kde.StatusNotifierWatcher"


class Watcher(dbus.service.Object):
    """A tray host as far as registering goes."""

    def __init__(self, bus):
        super().__init__(dbus.service.BusName(WATCHER, bus), "/StatusNotifierWatcher")
        self.registered = threading.Event()
        self.at = 0.0

    @dbus.service.method(WATCHER, in_signature="s")
    def RegisterStatusNotifierItem(self, _item):
        self.at = time.monotonic()
        self.registered.set()

    @dbus.service.method(WATCHER, in_signature="s")
    def RegisterStatusNotifierHost(self, _host):
        pass

    @dbus.service.method(dbus.PROPERTIES_IFACE, in_signature="ss", out_signature="v")
    def Get(self, _interface, name):
        return self.GetAll(_interface)[name]

    @dbus.service.method(dbus.PROPERTIES_IFACE, in_signature="s", out_signature="a{sv}")
    def GetAll(self, _interface):
        return {"IsStatusNotifierHostRegistered": True, "ProtocolVersion": dbus.Int32(0),
                "RegisteredStatusNotifierItems": dbus.Array([], signature="s")}

    @dbus.service.signal(WATCHER)
    def StatusNotifierHostRegistered(self):
        pass

    @dbus.service.method(dbus.INTROSPECTABLE_IFACE, in_signature="", out_signature="s",
                         path_keyword="object_path", connection_keyword="connection")
    def Introspect(self, object_path, connection):
        """Qt believes in a property only when it is described here."""
        described = super().Introspect(object_path, connection)
        return described.replace(f'<interface name="{WATCHER}">', f'''<interface name="{WATCHER}">
            <property name="IsStatusNotifierHostRegistered" type="b" access="read"/>''')


def milliseconds_to_item(watcher, command, environment=None):
    watcher.registered.clear()
    before = time.monotonic()
    process = subprocess.Popen(command, env=environment, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                               stderr=subprocess.DEVNULL)
    seen = watcher.registered.wait(20)
    process.terminate()
    process.wait(20)
    if not seen:
        raise SystemExit(f"{command[0]} never registered a status item")
    return 1000 * (watcher.at - before)


def milliseconds_of(command, environment):
    before = time.monotonic()
    subprocess.run(command, env=environment, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, check=True)
    return 1000 * (time.monotonic() - before)


def wake_ups(pid):
    """How often any of its threads was given the processor after it had waited."""
    total = 0
    for status in pathlib.Path(f"/proc/{pid}/task").glob("*/status"):
        for entry in status.read_text().splitlines():
            if entry.startswith("voluntary_ctxt_switches"):
                total += int(entry.split()[1])
    return total


def idle_wake_ups(pid, google, minutes):
    """A minute's wake-ups, leaving out the two seconds after each refresh starts. Sampled every quarter of a second."""
    counted = seconds = 0.0
    refreshed_at = time.monotonic() - 60
    requests = google.get("/requests")["count"]
    last = wake_ups(pid)
    end = time.monotonic() + 60 * minutes
    pending = []  # samples that a refresh, seen a little late, may still take out
    while time.monotonic() < end:
        time.sleep(0.25)
        now, total, asked = time.monotonic(), wake_ups(pid), google.get("/requests")["count"]
        pending.append((now, total - last))
        last = total
        if asked != requests:
            requests = asked
            refreshed_at = now
            pending = []
        if now - refreshed_at < 2.25:
            pending = []
        while pending and now - pending[0][0] > 0.5:
            counted += pending.pop(0)[1]
            seconds += 0.25
    return counted * 60 / seconds


def main():
    parts = set(sys.argv[1:]) or {"start", "status", "memory", "wake-ups"}
    dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
    watcher = Watcher(dbus.SessionBus())
    threading.Thread(target=GLib.MainLoop().run, daemon=True).start()

    google = SampleGoogle("--events", "50")  # none of which begins in the next hour
    kestrel = Kestrel(google, "--secret-store", "file")
    try:
        kestrel.start()
        kestrel.done("accounts", "add")
        kestrel.done("refresh")
        time.sleep(2)
        kestrel.stop()  # the first start shows the agenda; measured is an everyday one
        watcher.registered.clear()
        kestrel.start()
        wait_until(watcher.registered.is_set, "the status item")
        print(f"{'the running program':<58}{'measured':>15}{'budget':>10}  ratio")
        if "status" in parts:
            calls = sorted(milliseconds_of([str(BIN / "kestrel"), *kestrel.options, "status"], kestrel.environment)
                           for _ in range(50))
            print(f"  kestrel status, 50 calls: shortest {calls[0]:.1f} ms, longest {calls[-1]:.1f} ms")
            line("kestrel status, from start to exit, median", statistics.median(calls), "ms", 30)
        if parts & {"memory", "wake-ups"}:
            time.sleep(5)
        if "memory" in parts:
            line("memory, signed in, before the first window", memory(kestrel.process.pid), "MB", 32)
        if "wake-ups" in parts:
            line("wake-ups a minute, nothing shown", idle_wake_ups(kestrel.process.pid, google, 3), "", 6)
        if "memory" in parts:
            google.post("/calendar-events", {
                "account": kestrel.json("accounts", "list")[0]["email"], "calendar": "primary",
                "event": {"id": "soon", "title": "Soon", "startsInMinutes": 4.5, "meetCode": "kes-demo-now"}})
            kestrel.done("refresh")
            kestrel.done("show")
            time.sleep(5)
            line("memory, after agenda and card", memory(kestrel.process.pid), "MB", 48)
            kestrel.done("settings")
            time.sleep(5)
            line("memory, after settings, agenda and card", memory(kestrel.process.pid), "MB", 60)
        kestrel.stop()
        if "start" in parts:
            command = [str(BIN / "kestrel"), *kestrel.options]
            bare, ours = [], []
            for _ in range(10):
                bare.append(milliseconds_to_item(watcher, [str(BIN / "bare-tray")]))
                ours.append(milliseconds_to_item(watcher, command, kestrel.environment))
            print(f"  start to status item, bare Qt tray: median {statistics.median(bare):.1f} ms; "
                  f"Kestrel: median {statistics.median(ours):.1f} ms, longest {max(ours):.1f} ms")
            line("start to status item", statistics.median(ours), "ms", 3 * statistics.median(bare))
    finally:
        kestrel.close()
        google.stop()


main()
