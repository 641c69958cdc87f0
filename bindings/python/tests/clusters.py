"""Clusters of Dask on one machine, each process by itself, so that tests may kill it."""

import contextlib
import os
import signal
import subprocess
import sys
import time

CALL = "import sys; from distributed.cli.{0} import {1} as run; sys.argv[0] = '{0}'; run()"


def _start(program, function, folder, name, *arguments):
    log = open(folder / f"{name}.log", "w")
    return subprocess.Popen(
        [sys.executable, "-c", CALL.format(program, function), "--no-dashboard",
         "--scheduler-file", folder / "scheduler.json", *map(str, arguments)],
        stdout=log, stderr=log, cwd=folder,
        # Workers are found by the machine's own address, whatever its name may stand for.
        env={**os.environ, "DASK_DISTRIBUTED__COMM__TIMEOUTS__CONNECT": "60s"},
    )  # fmt: skip


class Cluster:
    """A scheduler, its workers and a client."""

    def __init__(self, folder, workers=2, nanny=False, lean=False):
        import distributed

        folder.mkdir(parents=True, exist_ok=True)
        self.folder, self.nanny, self.client = folder, nanny, None
        self.lean = ["--preload", "lumivane.dask_lean"] if lean else []
        self.workers = []
        self.scheduler = _start(
            "dask_scheduler", "main", folder, "scheduler", "--host", "127.0.0.1", "--port", 0,
            *self.lean,
        )
        try:
            for _ in range(workers):
                self.add_worker()
            until(lambda: (folder / "scheduler.json").exists(), self.scheduler)
            self.client = distributed.Client(
                scheduler_file=str(folder / "scheduler.json"), timeout=60, set_as_default=False
            )
            self.client.wait_for_workers(workers, timeout=120)
        except BaseException:
            self.close()
            raise

    def add_worker(self):
        self.workers.append(
            _start("dask_worker", "main", self.folder, f"worker-{len(self.workers)}",
                   "--host", "127.0.0.1", "--nthreads", 1, "--local-directory", self.folder,
                   "--nanny" if self.nanny else "--no-nanny", *self.lean)
        )  # fmt: skip

    def close(self):
        if self.client is not None:
            with contextlib.suppress(Exception):
                self.client.close(timeout=5)
        for process in (*self.workers, self.scheduler):
            kill(process)


def kill(process):
    """SIGKILL, and until it is over."""
    with contextlib.suppress(ProcessLookupError):
        process.send_signal(signal.SIGKILL)
    process.wait()


def until(is_so, process, seconds=60):
    """Waits until something is so, while a process lives."""
    end = time.monotonic() + seconds
    while not is_so():
        assert process.poll() is None, "the process has ended"
        assert time.monotonic() < end, "nothing has happened for a minute"
        time.sleep(0.02)
