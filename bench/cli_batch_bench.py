"""Throughput of `zentropia batch`: rows of (P, T) of water in, h, s and the speed of sound out.

    /usr/bin/python3 bench/cli_batch_bench.py [build/bin/zentropia] [rows] [repeats]

Writes a CSV of `rows` states (pressures 0.1 to 10 MPa, temperatures 300 to 600 K, in Pa and K)
to a temporary file, runs the tool pinned to one core with the output to a file, and prints the
rows per second of the best and of the median run, by wall-clock time and by CPU time.
"""

import os
import random
import resource
import statistics
import subprocess
import sys
import tempfile
import time


def run_once(command):
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    start = time.perf_counter()
    subprocess.run(command, check=True, preexec_fn=lambda: os.sched_setaffinity(0, {0}))
    wall = time.perf_counter() - start
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    cpu = (after.ru_utime - before.ru_utime) + (after.ru_stime - before.ru_stime)
    return wall, cpu


def main():
    tool = sys.argv[1] if len(sys.argv) > 1 else "build/bin/zentropia"
    rows = int(sys.argv[2]) if len(sys.argv) > 2 else 1_000_000
    repeats = int(sys.argv[3]) if len(sys.argv) > 3 else 5
    rng = random.Random(1)
    with tempfile.TemporaryDirectory() as tmp:
        source, target = os.path.join(tmp, "states.csv"), os.path.join(tmp, "properties.csv")
        with open(source, "w") as f:
            f.write("P,T\n")
            for _ in range(rows):
                f.write("%.6g,%.6g\n" % (rng.uniform(1e5, 1e7), rng.uniform(300.0, 600.0)))
        command = [tool, "batch", source, "--props", "h,s,c", "--output", target]
        runs = [run_once(command) for _ in range(repeats)]
        with open(target) as f:
            lines = sum(1 for _ in f)
            assert lines == rows + 1, f"{lines - 1} rows written for {rows}"
    for label, index in (("wall-clock", 0), ("CPU", 1)):
        seconds = [run[index] for run in runs]
        print(f"{rows} rows, {label} time: best {rows / min(seconds):,.0f} rows/s "
              f"({min(seconds):.2f} s), median {rows / statistics.median(seconds):,.0f} rows/s")


if __name__ == "__main__":
    main()
