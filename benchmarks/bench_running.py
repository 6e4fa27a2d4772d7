#!/usr/bin/python3
"""The running program from outside: time to the status item, memory, wake-ups, what a refresh costs.

Runs on a display and a bus of its own (tests/support/with-display), with a tray host that only notes who registers.
KESTREL_BIN names the build's bin folder. The parts can be named: start status memory wake-ups refresh."""
import os
import pathlib
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
from process_figures import memory, percentile, processor_milliseconds, row, wake_ups  # noqa: E402

WATCHER = "org.kde.StatusNotifierWatcher"
ALARM_NOTIFY = "/usr/libexec/evolution-data-server/evolution-alarm-notify"
PROCESSES = 7  # whose memory is measured
MINUTES = 5  # whose wake-ups are counted


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


class AlarmNotify:
    """The alarm daemon of another calendar, with the services that the bus starts for it."""

    def __init__(self, bus):
        no_screen_reader = dict(os.environ, NO_AT_BRIDGE="1")  # which only some programs start by themselves
        self.process = subprocess.Popen([ALARM_NOTIFY], env=no_screen_reader, stdin=subprocess.DEVNULL,
                                        stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.bus = bus
        wait_until(lambda: any("Calendar" in name for name in self.names()), "its calendars are served")

    def names(self):
        return [name for name in self.bus.list_names() if name.startswith("org.gnome.evolution.dataserver.")]

    def processes(self):
        services = {int(self.bus.call_blocking("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                                               "GetConnectionUnixProcessID", "s", [name])) for name in self.names()}
        return [self.process.pid, *sorted(services)]

    def stop(self):
        self.process.terminate()
        self.process.wait(20)


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


def measure_status(kestrel):
    command = [str(BIN / "kestrel"), *kestrel.options, "status"]
    row("kestrel status, from start to exit", "ms", [milliseconds_of(command, kestrel.environment) for _ in range(200)], 30)


def measure_refreshes(kestrel):
    """Of the calendar that is read, with 50 events which are what they were. Asking costs Kestrel something too."""
    before = processor_milliseconds(kestrel.process.pid)
    costs = []
    for _ in range(50):
        kestrel.done("refresh")
        after = processor_milliseconds(kestrel.process.pid)
        costs.append(after - before)
        before = after
    row("refresh of one calendar without changes", "ms CPU", costs, 15)


def idle_wake_ups(kestrel, google, others):
    """Each minute's wake-ups of Kestrel, leaving out the two seconds after each refresh starts, and each minute's of the
    lists of other processes. Sampled every quarter of a second."""
    pid = kestrel.process.pid
    ours, theirs = [], [[] for _ in others]
    requests = google.get("/requests")["count"]
    refreshed_at = time.monotonic() - 60
    for _ in range(MINUTES):
        counted = seconds = 0.0
        pending = []  # samples that a refresh, seen a little late, may still take out
        before = [sum(map(wake_ups, pids)) for pids in others]
        last = wake_ups(pid)
        end = time.monotonic() + 60
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
        ours.append(counted * 60 / seconds)
        for counts, pids, start in zip(theirs, others, before):
            counts.append(sum(map(wake_ups, pids)) - start)
    return ours, theirs


def measure_idling(kestrel, google, bus):
    """Beside the reference, which has no calendar but the empty one that every home has."""
    kestrel.stop()
    kestrel.start()
    reference = AlarmNotify(bus)
    try:
        time.sleep(30)  # both have settled
        processes = reference.processes()
        ours, (alone, together) = idle_wake_ups(kestrel, google, [processes[:1], processes])
        row("wake-ups a minute, nothing shown", "", ours, 6)
        row("wake-ups a minute, evolution-alarm-notify", "", alone)
        row("wake-ups a minute, that and its services", "", together)
        row("memory, Kestrel, as long after its start", "MB", [memory(kestrel.process.pid)])
        row("memory, evolution-alarm-notify", "MB", [memory(processes[0])])
        row("memory, that and its services", "MB", [sum(map(memory, processes))])
    finally:
        reference.stop()


def measure_memory(kestrel, google):
    """Each time in a new process, with a meeting that its card is for."""
    states = {"before the first window": 32, "after agenda and card": 48, "after settings, agenda and card": 60}
    shares, wholes = ({state: [] for state in states} for _ in range(2))

    def note(state):
        shares[state].append(memory(kestrel.process.pid))
        wholes[state].append(memory(kestrel.process.pid, "Rss"))

    for number in range(PROCESSES):
        kestrel.stop()
        kestrel.start()
        time.sleep(6)  # the quiet seconds in which faces are read
        note("before the first window")
        place = {"account": kestrel.json("accounts", "list")[0]["email"], "calendar": "primary"}
        google.post("/calendar-events", {**place, "event": {"id": f"soon{number}", "title": "Soon", "startsInMinutes": 4.5,
                                                            "meetCode": "kes-demo-now"}})
        kestrel.done("refresh")
        kestrel.done("show")
        time.sleep(5)
        assert kestrel.log_text().count("Presented alert") == number + 1, "a card each time"
        note("after agenda and card")
        kestrel.done("settings")
        time.sleep(5)
        note("after settings, agenda and card")
        google.post("/calendar-events", {**place, "remove": f"soon{number}"})
    for state, budget in states.items():
        row(f"memory, {state}", "MB", shares[state], budget)
    for state in states:
        row(f"resident, {state}", "MB", wholes[state])


def measure_starts(kestrel, watcher):
    command = [str(BIN / "kestrel"), *kestrel.options]
    bare, ours = [], []
    for _ in range(20):
        bare.append(milliseconds_to_item(watcher, [str(BIN / "bare-tray")]))
        ours.append(milliseconds_to_item(watcher, command, kestrel.environment))
    row("start to status item, bare Qt tray", "ms", bare)
    row("start to status item", "ms", ours, 3 * percentile(bare, 0.5), note="3 x the bare Qt tray")


def main():
    parts = set(sys.argv[1:]) or {"start", "status", "memory", "wake-ups", "refresh"}
    dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
    bus = dbus.SessionBus()
    watcher = Watcher(bus)
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
        if "status" in parts:
            measure_status(kestrel)
        if "refresh" in parts:
            measure_refreshes(kestrel)
        if "memory" in parts:
            measure_memory(kestrel, google)
        if "wake-ups" in parts:
            measure_idling(kestrel, google, bus)
        kestrel.stop()
        if "start" in parts:
            measure_starts(kestrel, watcher)
    finally:
        kestrel.close()
        google.stop()


main()
