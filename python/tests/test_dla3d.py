"""The Python module against dla3d-batch: the same cells bit for bit, views
on them, threads, the lock released while growing, errors with the batch
program's messages, Ctrl-C.

PYTHONPATH=build/python /usr/bin/python3 -m pytest python/tests
(DLA3D_BATCH names the batch program; build/dla3d-batch by default.)"""
import concurrent.futures
import csv
import gc
import os
import signal
import subprocess
import threading

import numpy as np
import pytest

import dla3d

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
BATCH = os.environ.get("DLA3D_BATCH", os.path.join(ROOT, "build", "dla3d-batch"))


def batch_csv(args, tmp_path):
    path = tmp_path / "cells.csv"
    subprocess.run([BATCH, "--no-progress", "--csv", str(path)] + args.split(), check=True)
    with open(path) as f:
        rows = list(csv.reader(f))
    assert rows[0] == ["index", "parent", "x", "y", "z", "weight"]
    # %.17g gives every double back exactly through float().
    return np.array([[float(v) for v in row] for row in rows[1:]])


@pytest.mark.parametrize("cells, settings, args", [
    (3000, {}, ""),
    (20000, dict(seed=11, walk="fast", bias=0.3),
     "--seed 11 --walk fast --bias 0.3"),
    (1500, dict(seed=5, roots=3, root_distribution=2, root_range=8, associate=True, sample=21,
                transform=((0.6, 0.6, 0.6), (0, 0, 0), (0, 0, 30)), thickness=(0.5, 0.02)),
     "--seed 5 --roots 3 --root-distribution 2 --root-range 8 --associate --sample 21 "
     "--transform 0.6,0.6,0.6 0,0,0 0,0,30 --thickness 0.5 0.02"),
])
def test_cells_are_the_batch_programs_bit_for_bit(cells, settings, args, tmp_path):
    want = batch_csv(f"--cells {cells} {args}", tmp_path)
    sim = dla3d.grow(cells=cells, **settings)
    assert sim.cells == len(want) == cells
    np.testing.assert_array_equal(np.arange(cells), want[:, 0])
    np.testing.assert_array_equal(sim.parent, want[:, 1])
    assert sim.positions.tobytes() == np.ascontiguousarray(want[:, 2:5]).tobytes()
    assert sim.weight.tobytes() == np.ascontiguousarray(want[:, 5]).tobytes()
    # Each cell's root by walking the CSV's parent links.
    root = want[:, 1].astype(int)
    for i in range(cells):
        root[i] = i if root[i] < 0 else root[root[i]]
    np.testing.assert_array_equal(sim.root, root)
    assert len(set(root)) == (3 if "roots" in settings else 1)
    summary = sim.summary()
    assert (summary["cells"], summary["steps"]) == (cells, sim.steps)


def test_views_share_the_cells_and_keep_the_simulation():
    sim = dla3d.grow(cells=500, seed=2)
    p, w, parent = sim.positions, sim.weight, sim.parent
    # One stride, the cell's: the three views lie in one block of memory.
    assert p.shape == (500, 3) and p.strides[1] == 8
    assert p.strides[0] == w.strides[0] == parent.strides[0] > 3 * 8
    assert np.may_share_memory(p, w) and np.may_share_memory(w, parent)
    assert not p.flags.writeable and not p.flags.owndata
    with pytest.raises(BufferError, match="3 numpy arrays still view the cells"):
        sim.grow(cells=1000)
    del w, parent
    kept = p.copy()
    del sim
    gc.collect()
    other = dla3d.grow(cells=3000, seed=3)  # would reuse freed cells
    np.testing.assert_array_equal(p, kept)
    other_view = other.positions[:10]
    del other_view
    assert other.grow(cells=3100) == "done" and other.cells == 3100


def test_threads_grow_at_once_and_release_the_gil():
    def grow(seed):
        return dla3d.grow(cells=10000, seed=seed, walk="fast").positions.tobytes()

    alone = [grow(seed) for seed in (1, 2)]
    with concurrent.futures.ThreadPoolExecutor(max_workers=2) as pool:
        assert list(pool.map(grow, (1, 2))) == alone
    # While a growth runs no Python code (no progress callback), another
    # thread runs Python and finds the Simulation busy: the GIL was released.
    sim = dla3d.Simulation(seed=5, walk="fast")
    done, seen = threading.Event(), []

    def watch():
        while not done.is_set() and not seen:
            try:
                sim.cells
            except RuntimeError as busy:
                seen.append(str(busy))

    watcher = threading.Thread(target=watch)
    watcher.start()
    sim.grow(cells=20000)
    done.set()
    watcher.join()
    assert seen == ["dla3d: this Simulation is busy (growing in another thread, or its progress callback called it)"]
    assert sim.cells == 20000


def test_refusals_carry_the_batch_programs_messages(tmp_path):
    rows = [
        (dict(bias=2), "dla3d-batch: --bias: 2 is out of range (allowed: 0 to 1)"),
        (dict(walk="slow"), 'dla3d-batch: --walk: "slow" is not allowed (allowed: exact or fast)'),
        (dict(thickness=0.4), "dla3d-batch: --thickness needs two values START END (allowed: 0 or more)"),
        (dict(root_distribution=10), "dla3d-batch: no root is placed (--roots 1, --root-distribution 10): "
         "no cell can ever stick (give --steps N to run anyway)"),
        (dict(seed_file=tmp_path / "none.txt"), f'dla3d-batch: --seed-file: cannot read "{tmp_path}/none.txt": '
         "Failed to read seed file (No such file or directory)"),
        (dict(frobnicate=1), 'dla3d-batch: unknown option "--frobnicate" (see --help)'),
        (dict(cells=5), 'dla3d: "cells" is a limit of the growth, not a setting (give it to Grow)'),
        (dict(csv="a.csv"), 'dla3d: "csv" is an output, not a setting (Write writes files after growth, '
         "Statistics runs the statistics)"),
        (dict(associate="yes"), 'dla3d: "associate" is a switch: its value is "", not "yes"'),
    ]
    for settings, message in rows:
        with pytest.raises(ValueError) as refused:
            dla3d.Simulation(**settings)
        assert str(refused.value) == message
    with pytest.warns(UserWarning, match=r"^dla3d-batch: --root-distribution 1 \(Origin\) places one root, "
                      "not the 3 --roots asks for$"):
        sim = dla3d.Simulation(roots=3)
    with pytest.raises(ValueError, match=r'^dla3d: "a\.xyz": no writer takes this ending'):
        sim.write("a.xyz")
    with pytest.raises(OSError, match=f'^dla3d-batch: --ply: cannot create "{tmp_path}/no/a.ply": No such file'):
        sim.write(tmp_path / "no" / "a.ply")
    with pytest.raises(ValueError, match="^dla3d: cells must be from 1 to 2147483647 or None, not 0$"):
        sim.grow(cells=0)


def test_ctrl_c_stops_a_long_growth_and_progress_can_stop_it():
    sim = dla3d.Simulation(seed=3, walk="fast")
    # Python's own handler, also where the test runner was started with SIGINT ignored.
    previous = signal.signal(signal.SIGINT, signal.default_int_handler)
    timer = threading.Timer(0.5, os.kill, (os.getpid(), signal.SIGINT))
    try:
        timer.start()
        with pytest.raises(KeyboardInterrupt):
            sim.grow(cells=2_000_000)  # about a minute
    finally:
        timer.cancel()
        signal.signal(signal.SIGINT, previous)
    stopped = sim.cells
    assert 1 < stopped < 2_000_000 and sim.positions.shape == (stopped, 3)
    calls = []
    assert sim.grow(cells=2_000_000, progress=lambda cells, steps: calls.append(cells) or len(calls) < 3) == "stopped"
    assert len(calls) == 3 and stopped <= calls[0] <= calls[2] == sim.cells < 2_000_000
