"""Parts made by a job array of Slurm, whose daemons run in a folder of the test."""

import getpass
import os
import shutil
import socket
import subprocess
import sys
import time
from pathlib import Path

import pytest
from test_parts import COLUMNS, EYES, UP, same

import lumivane
import lumivane.parts

CONFIGURATION = """
ClusterName=test
SlurmctldHost={host}(127.0.0.1)
SlurmctldPort={controller_port}
SlurmdPort={node_port}
SlurmUser={user}
SlurmdUser={user}
AuthType=auth/munge
AuthInfo=socket={folder}/munge.socket
CredType=cred/munge
StateSaveLocation={folder}/state
SlurmdSpoolDir={folder}/spool
SlurmctldPidFile={folder}/slurmctld.pid
SlurmdPidFile={folder}/slurmd.pid
SlurmctldLogFile={folder}/slurmctld.log
SlurmdLogFile={folder}/slurmd.log
ProctrackType=proctrack/linuxproc
TaskPlugin=task/none
JobAcctGatherType=jobacct_gather/none
AccountingStorageType=accounting_storage/none
JobCompType=jobcomp/none
MpiDefault=none
ReturnToService=2
SchedulerType=sched/builtin
SelectType=select/cons_tres
SelectTypeParameters=CR_CPU
NodeName={host} NodeAddr=127.0.0.1 CPUs={cpus} State=UNKNOWN
PartitionName=all Nodes={host} Default=YES MaxTime=INFINITE State=UP OverSubscribe=YES
"""


def free_ports(count):
    sockets = [socket.socket() for _ in range(count)]
    for one in sockets:
        one.bind(("127.0.0.1", 0))
    ports = [one.getsockname()[1] for one in sockets]
    for one in sockets:
        one.close()
    return ports


class Slurm:
    """Munge, a controller and a node, which end with the test."""

    def __init__(self, folder):
        self.folder, self.daemons = folder, []
        for name in ("state", "spool"):
            (folder / name).mkdir()
        controller_port, node_port = free_ports(2)
        (folder / "slurm.conf").write_text(CONFIGURATION.format(
            folder=folder, controller_port=controller_port, node_port=node_port,
            host=socket.gethostname().split(".")[0], user=getpass.getuser(), cpus=os.cpu_count(),
        ))  # fmt: skip
        (folder / "cgroup.conf").write_text("CgroupAutomount=no\n")
        self.environment = {**os.environ, "SLURM_CONF": str(folder / "slurm.conf")}
        key = folder / "munge.key"
        key.write_bytes(os.urandom(128))
        key.chmod(0o600)
        self.start("munged", "--foreground", "--force", f"--socket={folder}/munge.socket",
                   f"--key-file={key}", f"--pid-file={folder}/munge.pid",
                   f"--seed-file={folder}/munge.seed")  # fmt: skip
        self.wait(lambda: (folder / "munge.socket").exists())
        self.start("slurmctld", "-D", "-f", folder / "slurm.conf")
        self.start("slurmd", "-D", "-f", folder / "slurm.conf")
        self.wait(lambda: "idle" in self.run("sinfo", "--noheader", "--format=%T").stdout)

    def start(self, program, *arguments):
        log = open(self.folder / f"{program}.out", "w")
        self.daemons.append(subprocess.Popen(
            [found(program), *map(str, arguments)], stdout=log, stderr=log, cwd=self.folder,
            env=self.environment))  # fmt: skip

    def run(self, program, *arguments):
        return subprocess.run([program, *map(str, arguments)], capture_output=True, text=True,
                              cwd=self.folder, env=self.environment, timeout=300)  # fmt: skip

    def wait(self, is_so):
        end = time.monotonic() + 60
        while not is_so():
            if time.monotonic() > end or any(d.poll() is not None for d in self.daemons):
                pytest.skip(f"Slurm's daemons do not run here:\n{self.logs()}")
            time.sleep(0.1)

    def logs(self):
        files = sorted({*self.folder.glob("*.out"), *self.folder.glob("*.log")})
        return "\n".join(f"{file.name}: {file.read_text()[-1500:]}" for file in files)

    def close(self):
        for daemon in reversed(self.daemons):
            daemon.terminate()
            try:
                daemon.wait(10)
            except subprocess.TimeoutExpired:
                daemon.kill()
                daemon.wait()


def found(program):
    return shutil.which(program, path=os.environ["PATH"] + ":/usr/sbin:/sbin")


@pytest.fixture
def slurm(tmp_path_factory):
    for program in ("munged", "slurmctld", "slurmd", "sbatch", "sinfo"):
        if not found(program):
            pytest.skip(f"there is no {program} (slurmctld, slurmd, slurm-client, munge)")
    running = Slurm.__new__(Slurm)
    try:
        running.__init__(tmp_path_factory.mktemp("slurm"))
        yield running
    finally:
        running.close()


def test_a_job_array_makes_the_parts_of_a_plan(small, slurm, tmp_path):
    path = lumivane.parts.plan(small, EYES, COLUMNS, 3, forward=UP, folder=tmp_path).write(small)
    job = tmp_path / "views.sh"
    job.write_text(
        f"#!/bin/sh\n#SBATCH --array=1-4\n"
        f'"{sys.executable}" -m lumivane.parts "$1" "$SLURM_ARRAY_TASK_ID/$SLURM_ARRAY_TASK_COUNT"\n'
    )
    done = slurm.run("sbatch", "--wait", f"--output={tmp_path}/task-%a.txt", job, path)
    assert done.returncode == 0, done.stderr + slurm.logs()
    printed = [(tmp_path / f"task-{i}.txt").read_text() for i in range(1, 5)]
    made = [int(line.split(": ")[1].split()[0]) for line in printed]
    assert made == [4, 4, 3, 3], printed
    plan = lumivane.parts.read(path)
    assert same(small.shares(EYES, UP, columns=COLUMNS), plan.result())

    # A task that is started again makes nothing that is there.
    Path(plan.store.path(plan.part_names[1])).unlink()
    done = slurm.run("sbatch", "--wait", "--array=1-4", f"--output={tmp_path}/again-%a.txt", job, path)
    assert done.returncode == 0, done.stderr + slurm.logs()
    assert ": 1 parts made, 0 of 14 missing" in (tmp_path / "again-2.txt").read_text()
    assert same(small.shares(EYES, UP, columns=COLUMNS), plan.result())
