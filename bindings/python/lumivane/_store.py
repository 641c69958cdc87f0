"""Files in a folder that several processes share, on one machine or many: each is written whole or
not at all, and its name says its content, so that whoever finds it may take it as it is."""

from __future__ import annotations

import itertools
import os
import socket
import zipfile
from pathlib import Path
from typing import Any, BinaryIO, Callable, Iterable

import numpy as np

from . import _core
from ._arguments import PathLike

Arrays = dict[str, Any]

_counter = itertools.count()


class Store:
    """A folder of arrays by name. It is made when something is first kept in it."""

    def __init__(self, folder: PathLike, ending: str = ".part.npz") -> None:
        self.folder = Path(os.fsdecode(folder)).absolute()
        self.ending = ending

    def path(self, name: str) -> Path:
        """The file of this name, whether it is there or not."""
        return self.folder / (name + self.ending)

    def names(self) -> set[str]:
        """The names of all that is kept."""
        try:
            found = os.listdir(self.folder)
        except FileNotFoundError:
            return set()
        return {
            file[: -len(self.ending)]
            for file in found
            if file.endswith(self.ending) and not file.startswith(".")
        }

    def keep(self, name: str, arrays: Arrays) -> None:
        """Writes arrays, in place of what may be there under this name."""
        write_whole(self.path(name), lambda file: np.savez(file, **arrays))

    def load(self, name: str) -> Arrays:
        """The arrays of a name. A file that is damaged is removed, so that it is made again."""
        path = self.path(name)
        try:
            with np.load(path, allow_pickle=False) as arrays:
                return dict(arrays)
        except FileNotFoundError:
            raise _core.Error(f"{path}: the file is gone: run it again") from None
        except (OSError, ValueError, KeyError, EOFError, zipfile.BadZipFile) as error:
            path.unlink(missing_ok=True)
            raise _core.Error(
                f"{path}: the file was damaged and has been removed ({error}): run it again"
            ) from None

    def sweep(self, names: Iterable[str]) -> None:
        """Removes what writers of these names have left that were killed. To be called when all
        of them are there: a writer that is still at work finds its file gone, and all is well."""
        wanted = set(names)
        for file in self.folder.glob(f".*{self.ending}.*.unfinished"):
            if file.name[1:].split(self.ending)[0] in wanted:
                file.unlink(missing_ok=True)


def write_whole(path: Path, write: Callable[[BinaryIO], object]) -> None:
    """Writes a file under another name and renames it, so that nobody sees a part of it."""
    path.parent.mkdir(parents=True, exist_ok=True)
    writer = f"{socket.gethostname()}-{os.getpid()}-{next(_counter)}"
    unfinished = path.with_name(f".{path.name}.{writer}.unfinished")
    try:
        with open(unfinished, "wb") as file:
            write(file)
            file.flush()
            os.fsync(file.fileno())
        os.replace(unfinished, path)
    except FileNotFoundError:
        if not path.exists():  # else another process has written the same, and swept up
            raise
    except BaseException:
        unfinished.unlink(missing_ok=True)
        raise
