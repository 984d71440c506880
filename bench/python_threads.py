#!/usr/bin/env python3
"""Several seeds grown by the Python module on 1 thread and then on N
threads (a ThreadPoolExecutor; the growth releases the GIL): wall and CPU
time of each, the speed-up, and whether both gave the same aggregates.

PYTHONPATH=build/python /usr/bin/python3 bench/python_threads.py --seeds 8 --cells 200000 --threads 2
"""
import argparse
import concurrent.futures
import hashlib
import os
import time

import dla3d


def grow(seed, cells):
    sim = dla3d.grow(cells=cells, seed=seed, walk="fast")
    return hashlib.sha256(sim.positions.tobytes() + sim.weight.tobytes()).hexdigest()


def timed(threads, seeds, cells):
    wall, cpu = time.perf_counter(), time.process_time()
    with concurrent.futures.ThreadPoolExecutor(max_workers=threads) as pool:
        digests = list(pool.map(lambda seed: grow(seed, cells), seeds))
    return time.perf_counter() - wall, time.process_time() - cpu, digests


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--seeds", type=int, default=8)
    parser.add_argument("--cells", type=int, default=200000)
    parser.add_argument("--threads", type=int, default=2)
    args = parser.parse_args()
    seeds = list(range(1, args.seeds + 1))
    print(f"{args.seeds} seeds of {args.cells} cells, fast walk, dla3d {dla3d.__version__}, "
          f"{os.cpu_count()} processors, load {os.getloadavg()[0]:.1f}")
    rows = []
    for threads in (1, args.threads):
        wall, cpu, digests = timed(threads, seeds, args.cells)
        rows.append((threads, wall, cpu, digests))
        print(f"{threads} thread{'s' if threads > 1 else ' '}: wall {wall:7.2f} s, CPU {cpu:7.2f} s, "
              f"CPU/wall {cpu / wall:4.2f}")
    print(f"speed-up (wall, 1 thread / {args.threads}): {rows[0][1] / rows[1][1]:.2f}; "
          f"same aggregates: {'yes' if rows[0][3] == rows[1][3] else 'NO'}")


if __name__ == "__main__":
    main()
