"""Many eyes on a cluster of Dask: real processes, which are killed."""

import subprocess
import sys

import numpy as np
import pytest
from clusters import Cluster, kill
from test_parts import COLUMNS, EYES, UP, same

import lumivane

distributed = None


@pytest.fixture(autouse=True)
def _dask():
    global distributed
    distributed = pytest.importorskip("distributed")
    import cloudpickle
    import lumivane.dask  # noqa: F401

    cloudpickle.register_pickle_by_value(sys.modules[__name__])  # workers know no tests


@pytest.fixture
def cluster(tmp_path):
    started = []

    def start(**how):
        started.append(Cluster(tmp_path / f"cluster-{len(started)}", **how))
        return started[-1]

    yield start
    for one in started:
        one.close()


@pytest.fixture
def sent(monkeypatch):
    """The addresses of workers that the scene has been sent to."""
    addresses = []
    send = lumivane.dask._Run.send

    def recorded(self, some):
        some = list(some)
        addresses.extend(some)
        send(self, some)

    monkeypatch.setattr(lumivane.dask._Run, "send", recorded)
    return addresses


class AtHalf:
    """A callback of progress that does something once, when some tasks have ended and some not."""

    def __init__(self, act):
        self.act, self.is_done = act, False

    def __call__(self, part):
        if 0.2 < part < 0.8 and not self.is_done:
            self.is_done = True
            self.act()


def test_a_cluster_gives_what_one_process_gives(small, cluster, sent):
    client = cluster().client
    one = small.shares(EYES, UP, columns=COLUMNS)
    progress = []
    many = lumivane.dask.map_views(client, small, EYES, COLUMNS, forward=UP, progress=progress.append)
    assert same(one, many)
    assert progress == sorted(progress) and progress[0] == 0.0 and progress[-1] == 1.0
    assert len(sent) == len(set(sent)) == 2

    # Workers that have the scene are not sent it again.
    assert same(one, lumivane.dask.map_views(client, small, EYES, COLUMNS, 3, forward=UP))
    assert len(sent) == 2
    assert same(small.shares([]), lumivane.dask.map_views(client, small, []))


def test_sparse_columns_and_own_directions_go_through_a_cluster(small, cluster):
    pytest.importorskip("scipy.sparse")
    angles = np.linspace(0, 6, len(EYES))
    forward = np.column_stack([np.cos(angles), np.sin(angles), np.zeros(len(EYES))])
    how = {"forward": forward, "columns": COLUMNS, "sparse": True}
    assert same(
        small.shares(EYES, **how), lumivane.dask.map_views(cluster().client, small, EYES, chunk=6, **how)
    )


@pytest.mark.parametrize("has_folder", [False, True])
def test_a_worker_that_is_killed_in_the_middle_changes_nothing(street, cluster, tmp_path, has_folder):
    running = cluster()
    half = AtHalf(lambda: kill(running.workers[0]))
    many = lumivane.dask.map_views(
        running.client, street, EYES, chunk=1, progress=half,
        folder=tmp_path / "parts" if has_folder else None,
    )  # fmt: skip
    assert half.is_done
    assert same(street.shares(EYES), many)


def test_a_worker_that_comes_later_is_sent_the_scene(street, cluster, sent):
    running = cluster(workers=1)

    def replace():
        kill(running.workers[0])
        running.add_worker()

    half = AtHalf(replace)
    assert same(
        street.shares(EYES),
        lumivane.dask.map_views(running.client, street, EYES, chunk=1, progress=half),
    )
    assert half.is_done and len(set(sent)) == 2


def test_parts_outlive_the_scheduler_and_a_second_run_takes_them_up(street, cluster, tmp_path):
    first = cluster()
    folder = tmp_path / "parts"
    how = {"chunk": 1, "folder": folder}
    with pytest.raises(lumivane.Error, match="the scheduler is lost .* run it again"):
        lumivane.dask.map_views(
            first.client, street, EYES, progress=AtHalf(lambda: kill(first.scheduler)), **how
        )
    first.close()
    made = {file: file.stat().st_mtime_ns for file in folder.glob("*.part.npz")}
    assert 0 < len(made) < len(EYES)

    second = cluster()
    assert same(street.shares(EYES), lumivane.dask.map_views(second.client, street, EYES, **how))
    assert made == {file: file.stat().st_mtime_ns for file in made}
    assert len(list(folder.glob("*.part.npz"))) == len(EYES)


def test_without_a_folder_a_lost_scheduler_is_an_error_that_says_so(small, cluster):
    running = cluster()
    kill(running.scheduler)
    with pytest.raises(lumivane.Error, match="the scheduler is lost .*; nothing is kept without"):
        lumivane.dask.map_views(running.client, small, EYES)


CLIENT = """
import sys
import numpy as np
import distributed, lumivane, lumivane.dask

client = distributed.Client(scheduler_file=sys.argv[1])
scene = lumivane.Scene.read(sys.argv[2])
def report(part):
    if part > 0.2:
        print("some", flush=True)
        sys.stdin.readline()  # until it is killed; workers go on with what they have
lumivane.dask.map_views(client, scene, np.load(sys.argv[3]), chunk=1, folder=sys.argv[4],
                        progress=report)
"""


def test_parts_outlive_the_client(street, scenes, cluster, tmp_path):
    running = cluster()
    np.save(tmp_path / "eyes.npy", EYES)
    folder = tmp_path / "parts"
    process = subprocess.Popen(
        [sys.executable, "-c", CLIENT, running.folder / "scheduler.json", scenes / "street.json",
         tmp_path / "eyes.npy", folder], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True,
    )  # fmt: skip
    with process.stdin, process.stdout:
        assert process.stdout.readline() == "some\n"
        kill(process)
    made = {file: file.stat().st_mtime_ns for file in folder.glob("*.part.npz")}
    assert 0 < len(made) < len(EYES)
    many = lumivane.dask.map_views(running.client, street, EYES, chunk=1, folder=folder)
    assert same(street.shares(EYES), many)
    assert made == {file: file.stat().st_mtime_ns for file in made}


def test_errors_of_workers_and_of_progress_come_through(small, cluster, tmp_path, monkeypatch):
    client = cluster().client
    with pytest.raises(ValueError, match="the eye is not finite"):
        lumivane.dask.map_views(client, small, [(0, 0, np.nan)])

    def enough(part):
        raise LookupError("enough")

    with pytest.raises(LookupError, match="enough"):
        lumivane.dask.map_views(client, small, EYES, chunk=1, progress=enough)

    blocked = tmp_path / "file"
    blocked.write_text("")
    with pytest.raises(OSError):
        lumivane.dask.map_views(client, small, EYES, chunk=9, folder=blocked)

    monkeypatch.setattr("lumivane._core.__version__", "0.0.0")
    with pytest.raises(lumivane.Error, match="has lumivane .*, but the client 0.0.0: use one version"):
        lumivane.dask.map_views(client, small, EYES, chunk=9)


def regular(dask_worker):
    """How often a worker watches its event loop and samples stacks, in milliseconds."""
    callbacks = dask_worker.periodic_callbacks
    return {name: callbacks[name].callback_time for name in ("tick", "profile")}


def test_workers_watch_themselves_seldom_while_they_look_and_as_before_afterwards(street, cluster):
    running = cluster(workers=1)
    before = running.client.run(regular)
    seen = []
    half = AtHalf(lambda: seen.append(running.client.run(regular)))
    lumivane.dask.map_views(running.client, street, EYES, chunk=1, progress=half)
    assert running.client.run(regular) == before
    assert list(before.values()) == [{"tick": 20, "profile": 10}]
    # The worker may have been asked between two of its tasks.
    assert list(seen[0].values()) in ([{"tick": 1000, "profile": 1000}], [{"tick": 20, "profile": 10}])


def test_what_a_worker_does_regularly_is_as_before_after_the_last_of_tasks_at_once(monkeypatch):
    class Callback:
        def __init__(self, time):
            self.callback_time = time

    class Worker:
        periodic_callbacks = {"tick": Callback(20), "profile": Callback(10)}

    monkeypatch.setattr("distributed.get_worker", Worker)
    with pytest.raises(LookupError):
        with lumivane.dask._undisturbed():
            with lumivane.dask._undisturbed():
                pass
            assert regular(Worker) == {"tick": 1000, "profile": 1000}
            raise LookupError
    assert regular(Worker) == {"tick": 20, "profile": 10}


def loaded(dask_worker):
    import sys

    found = {name for name in ("pandas", "lumivane.dask") if name in sys.modules}
    return found | {name for name in dask_worker.periodic_callbacks if "profile" in name}


def test_a_lean_worker_knows_all_versions_without_pandas_and_samples_no_stacks(small, cluster):
    running = cluster(workers=1, lean=True)
    assert list(running.client.run(loaded).values()) == [{"lumivane.dask"}]
    versions = running.client.get_versions(check=True)
    (worker,) = versions["workers"].values()
    assert worker["packages"] == versions["client"]["packages"]
    assert same(small.shares(EYES), lumivane.dask.map_views(running.client, small, EYES))


def test_a_local_cluster_takes_lean_workers_too(small):
    with distributed.LocalCluster(
        n_workers=1, threads_per_worker=1, dashboard_address=None, preload="lumivane.dask_lean"
    ) as local, distributed.Client(local) as client:
        found = client.run(loaded)
        assert list(found.values()) == [{"lumivane.dask"}]
        assert same(small.shares(EYES), lumivane.dask.map_views(client, small, EYES))


def test_processes_of_workers_are_not_those_of_the_test(cluster):
    running = cluster()
    ids = set(running.client.run(__import__("os").getpid).values())
    assert ids == {worker.pid for worker in running.workers}
