#!/usr/bin/env python3
"""Instructions of an interface operation against the back-end call it makes, counted by callgrind
in one run of a benchmark: everything executed inside OUTER (the interface function) is collected,
and the inclusive count of INNER (the back-end's entry point) is the back-end's share. The load of
the machine does not touch these counts, unlike the benchmark's times.

    bench/callgrind_ratio.py build/bench/props_bench 'calcprop_of/h_PT$' \\
        'zentropia_main::calcprop*' 'if97::if97_main'
"""
import argparse
import os
import re
import subprocess
import sys
import tempfile


def count(bench, benchmark_filter, outer, inner, min_time):
    with tempfile.TemporaryDirectory() as work:
        out = os.path.join(work, "callgrind.out")
        run = subprocess.run(
            ["valgrind", "--tool=callgrind", "--callgrind-out-file=" + out,
             "--toggle-collect=" + outer, bench, "--benchmark_filter=" + benchmark_filter,
             "--benchmark_min_time=" + str(min_time)],
            capture_output=True, text=True)
        if run.returncode != 0 or not os.path.exists(out):
            sys.exit("callgrind failed: " + run.stderr[-500:])
        report = subprocess.run(["callgrind_annotate", "--inclusive=yes", "--threshold=100", out],
                                capture_output=True, text=True).stdout
    total = backend = 0
    for line in report.splitlines():
        m = re.match(r"\s*([\d,]+) \(", line)
        if not m:
            continue
        value = int(m.group(1).replace(",", ""))
        if "PROGRAM TOTALS" in line:
            total = value
        elif ":" + inner in line:
            backend = max(backend, value)
    return total, backend


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("bench")
    parser.add_argument("filter")
    parser.add_argument("outer")
    parser.add_argument("inner")
    parser.add_argument("--min-time", type=float, default=0.02)
    a = parser.parse_args()
    total, backend = count(a.bench, a.filter, a.outer, a.inner, a.min_time)
    if total == 0 or backend == 0:
        sys.exit(f"nothing counted for {a.filter} (outer {a.outer}, inner {a.inner})")
    print(f"{a.filter}: {total / backend:.3f} "
          f"(interface {total - backend:,} of {total:,} instructions)")


if __name__ == "__main__":
    main()
