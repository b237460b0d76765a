"""One ZRFx file."""

from __future__ import annotations

import os
import threading
import weakref
from types import TracebackType
from typing import Any, Callable, ContextManager, Dict, Iterator, List, MutableMapping, Optional, Type, Union

from . import _core
from ._cases import Case
from ._model import Model
from ._names import Named
from ._progress import Progress
from .errors import ClosedError, ReadOnlyError
from .settings import PropertySet, ViewSettings

Path = Union[str, "os.PathLike[str]"]


class Texts(MutableMapping[str, str]):
    """The user texts of a file by name. An assignment is written at once. Texts cannot be taken away."""

    def __init__(self, file: File) -> None:
        self._file = file

    def __getitem__(self, name: str) -> str:
        names = self._file._open.texts()
        if name not in names:
            raise KeyError(f"no text {name!r}; there are: {', '.join(map(repr, names)) or 'none'}")
        return self._file._open.text(names[name])

    def __setitem__(self, name: str, content: str) -> None:
        self._file._open.add_text(name, content)

    def __delitem__(self, name: str) -> None:
        raise TypeError("texts cannot be taken away")

    def __iter__(self) -> Iterator[str]:
        return iter(self._file._open.texts())

    def __len__(self) -> int:
        return len(self._file._open.texts())


class File:
    """A ZRFx file, made by :func:`zrfx.open`, :func:`zrfx.create` or :func:`zrfx.append`.

    In a ``with`` statement it is closed at the end, or abandoned after an exception: everything since the last
    flush is dropped then, and no half-written file is left behind. Threads may share a file; they wait for
    each other.
    """

    def __init__(self, path: Path, core: _core.File, is_writable: bool, password: Optional[str],
                 progress: Optional[Progress] = None) -> None:
        self.path = os.fspath(path)
        self.is_writable = is_writable
        self._password = password
        self._core: Optional[_core.File] = core
        self._lock = threading.RLock()
        self.progress = progress
        self._models: Dict[int, Model] = {}
        self._read_models()

    @property
    def is_open(self) -> bool:
        return self._core is not None

    @property
    def progress(self) -> Optional[Progress]:
        """A callback that is called with the fraction, 0 to 1, of an operation that takes long: refresh, flush,
        close, and reading and writing of arrays. ``False`` stops the operation, which raises CancelledError; an
        exception stops it too. The callback may use other files, not this one."""
        return self._progress

    @progress.setter
    def progress(self, callback: Optional[Progress]) -> None:
        self._progress = callback
        self._open.set_progress(None if callback is None else _reporter(weakref.ref(self)))

    @property
    def models(self) -> Named[Model]:
        """The models by name."""
        return Named("model", self._models.values())

    @property
    def cases(self) -> Named[Case]:
        """The cases by name."""
        return Named("case", [Case(self, core) for core in self._open.cases()])

    @property
    def texts(self) -> Texts:
        """The user texts by name."""
        return Texts(self)

    @property
    def settings(self) -> Dict[str, Any]:
        """How the file is stored: ``binary``, ``signed``, ``level``, ``vendor``, ``application``."""
        return self._open.settings()

    def add_model(self, name: str, *, simulation: str = "structural", solution: str = "linear_static",
                  description: str = "", id: Optional[int] = None) -> Model:
        """Adds a model; :class:`Model` lists the kinds of simulations and solutions."""
        with self._writing():
            number = self._open.unused_database_id() if id is None else id
            core = _core.add_database(self._open, name, number, simulation, solution, description)
            model = self._models[core.id] = Model(self, core)
            return model

    def add_case(self, name: str, model: Model, *, description: str = "", snapshot: Optional[Any] = None,
                 properties: Union[None, ViewSettings, List[PropertySet]] = None, id: Optional[int] = None) -> Case:
        """Adds a view of a model; its attributes can be set later as well."""
        with self._writing():
            number = self._open.unused_case_id() if id is None else id
            case = Case(self, _core.add_case(self._open, name, number, model.id))
            if description:
                case.description = description
            if snapshot is not None:
                case.snapshot = snapshot
            if properties is not None:
                case.properties = properties.properties if isinstance(properties, ViewSettings) else properties
            return case

    def flush(self) -> None:
        """Makes all that was written so far durable and visible to readers. The file stays open."""
        with self._writing():
            for model in self._models.values():
                model._write_lists(is_last=False)
            self._open.flush()

    def close(self) -> None:
        """Writes out what is missing and closes; does nothing when the file is closed. After a failure the
        file stays open."""
        if self._core is None:
            return
        with self._lock:
            if self.is_writable:
                for model in self._models.values():
                    model._write_lists(is_last=True)
            self._core.close()
            self._core = None

    def close_as(self, path: Path) -> None:
        """Writes a file under another name and closes, for use when its disk is full. What is there stays."""
        with self._writing():
            for model in self._models.values():
                model._write_lists(is_last=True)
            self._open.close_as(os.fspath(path))
            self._core = None

    def abandon(self) -> None:
        """Closes without writing: everything since the last flush is dropped."""
        with self._lock:
            if self._core is not None:
                self._core.abandon()
                self._core = None

    def refresh(self) -> bool:
        """Takes in what a writer has committed since the file was opened or refreshed last, and says whether
        there was anything. Models stay the same objects; ask them anew for states and results."""
        with self._lock:
            changed = self._open.refresh()
            if changed:
                self._read_models()
                for model in self._models.values():
                    model._forget()
            return changed

    def _writing(self) -> ContextManager[bool]:
        """The lock to be held while the file is changed; raises unless it is open for writing."""
        if self._core is None:
            self._open
        if not self.is_writable:
            raise ReadOnlyError(f"{self.path}: the file was opened for reading")
        return self._lock

    @property
    def _open(self) -> _core.File:
        if self._core is None:
            raise ClosedError(f"{self.path}: the file is closed")
        return self._core

    def _read_models(self) -> None:
        for core in self._open.databases():
            if core.id not in self._models:
                self._models[core.id] = Model(self, core)

    def __enter__(self) -> File:
        return self

    def __exit__(self, kind: Optional[Type[BaseException]], error: Optional[BaseException],
                 trace: Optional[TracebackType]) -> None:
        if kind is not None:
            self.abandon()
            return
        try:
            self.close()
        except BaseException:
            self.abandon()
            raise

    def __repr__(self) -> str:
        return f"<File {self.path!r}, {'open' if self.is_open else 'closed'}>"


def _reporter(file: Callable[[], Optional[File]]) -> Progress:
    """Calls what the file has as its callback, without keeping the file."""
    def report(fraction: float) -> object:
        own = file()
        return None if own is None or own.progress is None else own.progress(fraction)

    return report


def _new_core(threads: int, progress: Optional[Progress]) -> _core.File:
    core = _core.File()
    core.set_threads(threads)
    core.set_progress(progress)
    return core


def open(path: Path, password: Optional[str] = None, *, threads: int = 0, progress: Optional[Progress] = None) -> File:
    """Opens a file for reading. An encrypted one needs its password. ``threads`` is how many unpack large arrays, 0
    for as many as there are processors. ``progress`` becomes :attr:`File.progress`, and shows opening too.

    Raises :class:`ZrfxError`: NotFoundError, NotZrfxError, PasswordNeededError, WrongPasswordError,
    DamagedError and others.
    """
    core = _new_core(threads, progress)
    core.open(os.fspath(path), password or "")
    return File(path, core, is_writable=False, password=password, progress=progress)


def create(path: Path, *, level: int = 5, binary: bool = True, password: Optional[str] = None, vendor: str = "",
           application: str = "", signed: bool = False, digits: int = 0, threads: int = 0,
           progress: Optional[Progress] = None) -> File:
    """Creates a file; an existing one is replaced by the first flush, or by close.

    ``level`` is 0 (stored) to 9 (smallest). ``binary=False`` stores lines of text, which keep six digits. With
    a password the file is encrypted. ``vendor`` and ``application`` say who makes it; ``signed`` is only noted.
    ``digits``, 1 to 6, is how many significant digits values of results keep, so that they pack better; 0 keeps all.
    ``threads`` is how many pack large arrays, 0 for as many as there are processors; ``progress`` becomes
    :attr:`File.progress`.
    """
    core = _new_core(threads, progress)
    core.create(os.fspath(path), {"level": level, "binary": binary, "password": password or "", "vendor": vendor,
                                  "application": application, "signed": signed, "digits": digits, "threads": threads})
    return File(path, core, is_writable=True, password=password, progress=progress)


def append(path: Path, password: Optional[str] = None, *, threads: int = 0,
           progress: Optional[Progress] = None) -> File:
    """Opens a file for adding models, states, results and cases. New data takes the form of the existing. Threads
    and progress are those of :func:`open`."""
    core = _new_core(threads, progress)
    core.open_for_append(os.fspath(path), password or "")
    return File(path, core, is_writable=True, password=password, progress=progress)
