"""The NumPy path of the Python package against Python loops of scalar calls.

    PYTHONPATH=build/python /usr/bin/python3 bench/python_numpy_bench.py [states] [repeats]

Water (IF97, SI units) at states spread over the liquid and the steam: Fluid.calc("h", "PT", p, T)
with arrays of every state (the loop runs in C++), a Python loop of the first-layer procedure
zentropia.calcprop, and a Python loop of Fluid.calc with numbers. Prints the best time per state
(CPU time) of `repeats` runs and the speed-up of the NumPy path.
"""

import sys
import time

import numpy as np
import zentropia


def best_time(function, repeats):
    times = []
    for _ in range(repeats):
        start = time.process_time()
        function()
        times.append(time.process_time() - start)
    return min(times)


def main():
    states = int(sys.argv[1]) if len(sys.argv) > 1 else 100_000
    repeats = int(sys.argv[2]) if len(sys.argv) > 2 else 5
    rng = np.random.default_rng(1)
    p = rng.uniform(1e5, 1e7, states)
    t = rng.uniform(300.0, 800.0, states)
    water = zentropia.Fluid("IF97", "water", units="SI")
    zentropia.setunits("SI", "PerMass", "", "")
    zentropia.setfluid("IF97", 1, ["water"], [1.0])

    runs = {
        "Fluid.calc, NumPy arrays": lambda: water.calc("h", "PT", p, t),
        "loop of zentropia.calcprop": lambda: [zentropia.calcprop("h", "PT", a, b)
                                               for a, b in zip(p.tolist(), t.tolist())],
        "loop of Fluid.calc, numbers": lambda: [water.calc("h", "PT", a, b)
                                                for a, b in zip(p.tolist(), t.tolist())],
    }
    reference = water.calc("h", "PT", p, t)
    looped = np.array([zentropia.calcprop("h", "PT", a, b)[0] for a, b in zip(p, t)])
    assert np.array_equal(reference, looped), "the NumPy path and the loop disagree"

    print(f"{states} states of water, h from (p, T), best of {repeats}")
    numpy_ns = None
    for name, run in runs.items():
        ns = best_time(run, repeats) / states * 1e9
        numpy_ns = numpy_ns or ns
        print(f"  {name:30s} {ns:8.0f} ns per state  ({ns / numpy_ns:5.1f} x the NumPy path)")


if __name__ == "__main__":
    main()
