#!/usr/bin/python3
"""A call in a real browser from outside: from a shortcut to the page, and what the programs between cost. Prints each
figure beside its budget.

Runs on a display and a bus of its own (tests/support/with-display). KESTREL_BIN names the build's bin folder."""
import pathlib
import statistics
import subprocess
import sys
import time

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "tests/e2e"))
from browser_session import Browser, SampleCall  # noqa: E402
from kestrel_session import Kestrel, SampleGoogle, wait_until  # noqa: E402
from process_figures import line, memory  # noqa: E402

PRESSES = 200
POLLING_SECONDS = 60
POLLS_A_SECOND = 1 / 1.5


def helper_process(kestrel):
    """That of our Kestrel, whose preference file stands on its command line."""
    found = subprocess.run(["pgrep", "-f", f"/kestrel-browser-helper .*{kestrel.data}"], capture_output=True, text=True,
                           check=True).stdout.split()
    assert len(found) == 1, found
    return int(found[0])


def relay_process(browser):
    """Its socket is named after it."""
    return int(browser.socket_paths()[0].stem.split("-")[1])


def processor_seconds(pid):
    """Of all its threads, to the nanosecond."""
    return sum(int(file.read_text().split()[0]) for file in pathlib.Path(f"/proc/{pid}/task").glob("*/schedstat")) / 1e9


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
        delays.sort()
        p95 = delays[int(0.95 * PRESSES)]
        print(f"{'the call':<58}{'measured':>15}{'budget':>10}  ratio")
        print(f"  shortcut to click in the page: shortest {delays[0]:.1f} ms, median {statistics.median(delays):.1f} ms, "
              f"longest {delays[-1]:.1f} ms of {PRESSES}")
        line("shortcut pressed to script run in the page, p95", p95, "ms", 20)

        helper, relay = helper_process(kestrel), relay_process(browser)
        before = processor_seconds(helper)
        time.sleep(POLLING_SECONDS)
        polls = POLLING_SECONDS * POLLS_A_SECOND
        line("processor time of the helper for a poll", 1000 * (processor_seconds(helper) - before) / polls, "ms", 2)
        line("memory, helper", memory(helper), "MB", 15)
        line("memory, relay", memory(relay), "MB", 3)
    finally:
        keys.stdin.close()
        keys.wait(20)
        kestrel.close()
        browser.stop()
        call.stop()
        google.stop()


main()
