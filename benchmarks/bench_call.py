#!/usr/bin/python3
"""A call in a real browser from outside: from a shortcut to the page, and what the programs between cost.

Runs on a display and a bus of its own (tests/support/with-display). KESTREL_BIN names the build's bin folder."""
import os
import pathlib
import signal
import subprocess
import sys
import time

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "tests/e2e"))
from browser_session import Browser, SampleCall  # noqa: E402
from kestrel_session import Kestrel, SampleGoogle, wait_until  # noqa: E402
from process_figures import memory, processor_milliseconds, row  # noqa: E402

PRESSES = 200
PERIODS = 12
PERIOD_SECONDS = 9  # six polls
POLLS_A_SECOND = 1 / 1.5
PROCESSES = 7  # whose memory is measured


def helper_process(kestrel):
    """That of our Kestrel, whose preference file stands on its command line."""
    found = subprocess.run(["pgrep", "-f", f"/kestrel-browser-helper .*{kestrel.data}"], capture_output=True,
                           text=True).stdout.split()
    return int(found[0]) if len(found) == 1 else None


def relay_process(browser):
    """Its socket is named after it."""
    sockets = browser.socket_paths()
    return int(sockets[0].stem.split("-")[1]) if len(sockets) == 1 else None


def main():
    google, call = SampleGoogle(), SampleCall()
    browser = Browser(call)
    kestrel = Kestrel(google, "--secret-store", "file")
    kestrel.environment["KESTREL_BROWSER_SOCKETS"] = str(browser.sockets)
    keys = subprocess.Popen(["xdotool", "-"], stdin=subprocess.PIPE, text=True)
    try:
        kestrel.start()
        kestrel.stop()
        (kestrel.data / "kestrel.ini").write_text(
            "[General]\npopover.hasShownInitialAutoOpen.v1=true\nenableMeetControls=true\n")
        kestrel.start()
        browser.start("--window-size=900,600", "https://meet.google.com/kes-demo-abc")
        browser.relays()[0].close()
        wait_until(lambda: "Global hotkey Meet:mute registered" in kestrel.log_text(), "the shortcuts")
        time.sleep(8)  # the browser settles

        delays = []
        for _ in range(PRESSES):
            count = len(delays)
            pressed = time.time()
            keys.stdin.write("key --delay 0 alt+shift+m\n")
            keys.stdin.flush()
            wait_until(lambda: len(call.times()) > count, "the press in the page")
            delays.append(call.times()[-1] - 1000 * pressed)
            time.sleep(0.1)
        row("shortcut pressed to script run in the page", "ms", delays, 20, 0.95, "p95")

        helper = helper_process(kestrel)
        costs = []
        for _ in range(PERIODS):
            before = processor_milliseconds(helper)
            time.sleep(PERIOD_SECONDS)
            costs.append((processor_milliseconds(helper) - before) / (PERIOD_SECONDS * POLLS_A_SECOND))
        row("helper: one poll", "ms CPU", costs, 2)

        helpers, relays = [], []
        for _ in range(PROCESSES):
            relay = relay_process(browser)
            helpers.append(memory(helper))
            relays.append(memory(relay))
            # both are started anew: one by the next poll, one by the extension
            os.kill(helper, signal.SIGKILL)
            os.kill(relay, signal.SIGTERM)
            wait_until(lambda: helper_process(kestrel) not in (None, helper), "another helper")
            wait_until(lambda: relay_process(browser) not in (None, relay), "another relay")
            helper = helper_process(kestrel)
            time.sleep(6)  # four polls
        row("memory, helper", "MB", helpers, 15)
        row("memory, relay", "MB", relays, 3)
    finally:
        keys.stdin.close()
        keys.wait(20)
        kestrel.close()
        browser.stop()
        call.stop()
        google.stop()


main()
