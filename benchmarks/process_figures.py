"""Figures of running processes, each beside its budget."""

import pathlib


def line(name, value, unit, budget):
    verdict = "within" if value <= budget else "OVER"
    print(f"{name:<58}{value:>10.2f} {unit:<4}{budget:>10.2f} {value / budget:>6.2f}  {verdict}", flush=True)


def memory(pid):
    """Proportional set size in MB: what the process has for itself, and its share of what it shares."""
    for entry in pathlib.Path(f"/proc/{pid}/smaps_rollup").read_text().splitlines():
        if entry.startswith("Pss:"):
            return int(entry.split()[1]) / 1024
    raise AssertionError("no Pss")
