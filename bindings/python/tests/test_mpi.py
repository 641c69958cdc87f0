"""Many eyes on two processes of MPI."""

import os
import shutil
import subprocess
import sys

import numpy as np
import pytest
from test_parts import COLUMNS, EYES, UP, same

import lumivane

VIEWS = """
import sys
import numpy as np
from mpi4py import MPI
import lumivane, lumivane.mpi

comm = MPI.COMM_WORLD
assert comm.size == 2
path, eyes, result, folder, sparse, bad = sys.argv[1:]
first = comm.rank == 0
scene = lumivane.Scene.read(path) if first else None
eyes = np.load(eyes) if first else None
how = dict(forward=(0, 0, 1), folder=folder or None, sparse=sparse == "sparse")
if bad == "bad":
    how["by"] = "face"
try:
    many = lumivane.mpi.map_views(comm, scene, eyes, %r, 3, **how)
except ValueError as error:
    comm.barrier()
    print("process", comm.rank, error, flush=True)
else:
    assert (many is None) == (not first)
    if first:
        np.savez(result, **many) if sparse != "sparse" else np.savez(
            result, indptr=many["view_factor"].indptr, indices=many["view_factor"].indices,
            data=many["view_factor"].data, sky=many["sky_view_factor"])
"""


@pytest.fixture
def views(scenes, tmp_path):
    pytest.importorskip("mpi4py")
    if not shutil.which("mpirun"):
        pytest.skip("there is no mpirun")
    np.save(tmp_path / "eyes.npy", EYES)

    def run(folder="", sparse="", bad=""):
        done = subprocess.run(
            ["mpirun", "-n", "2", "--oversubscribe", sys.executable, "-c", VIEWS % (COLUMNS,),
             str(scenes / "small.json"), str(tmp_path / "eyes.npy"), str(tmp_path / "result.npz"),
             str(folder), sparse, bad],
            capture_output=True, text=True, timeout=300,
            env={**os.environ, "OMPI_ALLOW_RUN_AS_ROOT": "1",
                 "OMPI_ALLOW_RUN_AS_ROOT_CONFIRM": "1", "TMPDIR": "/tmp"},
        )  # fmt: skip
        assert done.returncode == 0, done.stderr
        if bad:
            return done.stdout
        with np.load(tmp_path / "result.npz") as arrays:
            return dict(arrays)

    return run


@pytest.mark.parametrize("has_folder", [False, True])
def test_two_processes_give_what_one_gives(small, views, tmp_path, has_folder):
    folder = tmp_path / "parts" if has_folder else ""
    assert same(small.shares(EYES, UP, columns=COLUMNS), views(folder))
    if has_folder:
        assert len(list(folder.glob("*.part.npz"))) == 14


def test_two_processes_take_up_parts_that_are_there(small, views, tmp_path):
    views(tmp_path / "parts")
    files = sorted((tmp_path / "parts").glob("*.part.npz"))
    for file in files[::2]:
        file.unlink()
    kept = {file: file.stat().st_mtime_ns for file in files[1::2]}
    assert same(small.shares(EYES, UP, columns=COLUMNS), views(tmp_path / "parts"))
    assert kept == {file: file.stat().st_mtime_ns for file in kept}


def test_two_processes_give_sparse_columns(small, views):
    pytest.importorskip("scipy.sparse")
    one = small.shares(EYES, UP, columns=COLUMNS, sparse=True)
    matrix = one["view_factor"]
    assert same(
        {"indptr": matrix.indptr, "indices": matrix.indices, "data": matrix.data,
         "sky": one["sky_view_factor"]}, views(sparse="sparse")
    )  # fmt: skip


def test_what_one_process_raises_all_raise(views):
    printed = views(bad="bad")
    assert sorted(printed.splitlines()) == [
        f'process {rank} by: "face" is neither object nor class' for rank in (0, 1)
    ]
