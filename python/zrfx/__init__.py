"""ZRFx files: finite-element models and their results.

>>> with zrfx.open("plate.zrfx") as f:
...     stress = f.models["Plate"].results["STRESS"].at(time=0.5)

Arrays that are read are read-only views on the library's memory and outlive their file. Arrays that are
written are not copied where they are C-contiguous float32 or int32. Failures raise :class:`ZrfxError`; other
messages of the library go to the logger ``"zrfx"`` of :mod:`logging`.
"""

import os as _os
from typing import Any

from . import _core, derived, elements, errors
from ._cases import Case, Images
from ._file import File, Texts, append, create, open
from ._mesh import Elements, Group, Nodes, Part
from ._model import Model
from ._names import Named
from ._results import Field, Result
from ._sets import ElementSet, SetGroup
from ._states import State, StateGroup, States
from ._transformations import Transformation
from .errors import *  # noqa: F403
from .settings import Color, ViewSettings

_core.initialize()

#: The version of the library.
__version__ = _core.version()


def is_zrfx(path: "str | _os.PathLike[str]") -> bool:
    """Whether a path holds a ZRFx file, judged by its extension and content."""
    return _core.is_zrfx(_os.fspath(path))


def is_encrypted(path: "str | _os.PathLike[str]") -> bool:
    """Whether a file needs a password; raises ZrfxError when it cannot be read."""
    return _core.is_encrypted(_os.fspath(path))


def log_to_python() -> None:
    """Sends the library's messages to the logger ``"zrfx"``. Importing the package does so, unless the process
    had initialized the library before: a host that embeds Python keeps its own log."""
    _core.log_to_python()


def from_meshio(mesh: Any, file: File, name: str = "Model", time: float = 0.0) -> Model:
    """Writes a meshio.Mesh as a model of a file. See :func:`zrfx.meshio.from_meshio`."""
    from .meshio import from_meshio as convert

    return convert(mesh, file, name, time)


__all__ = ["Case", "Color", "Elements", "ElementSet", "Field", "File", "Group", "Images", "Model", "Named", "Nodes",
           "Part", "Result", "SetGroup", "State", "StateGroup", "States", "Texts", "Transformation",
           "ViewSettings", "append", "create", "derived", "elements", "errors", "from_meshio",
           "is_encrypted", "is_zrfx", "log_to_python", "open"]
__all__ += errors.__all__
