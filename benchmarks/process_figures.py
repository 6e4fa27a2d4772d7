"""Figures of running processes."""

import math
import pathlib
import time


def percentile(values, fraction):
    """The least value that at least this share of all does not exceed."""
    return sorted(values)[max(0, math.ceil(fraction * len(values)) - 1)]


def row(what, unit, values, budget=None, held=0.5, note=""):
    """Prints what was measured in the columns that tools/bench makes tables of (BudgetTable is the same for programs in
    C++). Held against the budget is the median, or another percentile."""
    columns = [what, unit, *(f"{percentile(values, fraction):g}" for fraction in (0, 0.5, 0.99))]
    if budget is not None:
        columns += [f"{percentile(values, held):g}", f"{budget:g}", note]
    print("\t".join(columns), flush=True)


def memory(pid, kind="Pss"):
    """In MB. Proportional set size: what the process has for itself, and its share of what it shares. "Rss": all of what it
    shares as well, whoever else runs."""
    for entry in pathlib.Path(f"/proc/{pid}/smaps_rollup").read_text().splitlines():
        if entry.startswith(kind + ":"):
            return int(entry.split()[1]) / 1024
    raise AssertionError(f"no {kind}")


def processor_milliseconds(pid):
    """Of all threads that it ever had."""
    return 1000 * time.clock_gettime(~pid << 3 | 2)  # that process's clock, as clock_getcpuclockid(3) names it


def wake_ups(pid):
    """How often any of its threads was given the processor after it had waited."""
    total = 0
    for status in pathlib.Path(f"/proc/{pid}/task").glob("*/status"):
        for entry in status.read_text().splitlines():
            if entry.startswith("voluntary_ctxt_switches"):
                total += int(entry.split()[1])
    return total
