"""Cases: how a model is to be shown."""

from __future__ import annotations

from typing import TYPE_CHECKING, Any, Iterator, List, MutableMapping, Optional

import numpy as np

from . import _arrays, _core
from .settings import PropertySet

if TYPE_CHECKING:
    from ._file import File
    from ._model import Model


def _pixels(image: Any) -> Any:
    pixels = np.ascontiguousarray(image)
    if pixels.dtype != np.uint8 or pixels.ndim != 3 or pixels.shape[2] != 3:
        raise ValueError(f"an image is (height, width, 3) uint8, not {pixels.shape} {pixels.dtype}")
    return pixels


class Images(MutableMapping[str, Any]):
    """The textures of a case by name, each (height, width, 3) uint8 with the top row first. An assignment is
    written at once. Textures cannot be taken away."""

    def __init__(self, core: _core.Case) -> None:
        self._core = core

    def __getitem__(self, name: str) -> Any:
        names = self._core.image_names()
        if name not in names:
            raise KeyError(f"no texture {name!r}; there are: {', '.join(map(repr, names)) or 'none'}")
        return _arrays.view(self._core.image(names.index(name)))

    def __setitem__(self, name: str, image: Any) -> None:
        pixels = _pixels(image)
        self._core.add_image(name, pixels, pixels.shape[1], pixels.shape[0])

    def __delitem__(self, name: str) -> None:
        raise TypeError("textures cannot be taken away")

    def __iter__(self) -> Iterator[str]:
        return iter(self._core.image_names())

    def __len__(self) -> int:
        return len(self._core.image_names())


class Case:
    """A view of a model: name, description, picture, textures and viewer settings. What is set is written by
    the next flush."""

    def __init__(self, file: File, core: _core.Case) -> None:
        self.file = file
        self._core = core
        self.id = core.id
        self.model_id = core.database_id

    @property
    def model(self) -> Model:
        """The model that is shown; KeyError when the file has it no more."""
        return self.file.models.by_id(self.model_id)

    @property
    def name(self) -> str:
        return self._core.name

    @name.setter
    def name(self, name: str) -> None:
        self._core.name = name

    @property
    def description(self) -> str:
        """HTML text, or empty."""
        return self._core.description

    @description.setter
    def description(self, html: str) -> None:
        self._core.description = html

    @property
    def derived_disabled(self) -> bool:
        """Whether a viewer is to show stored results only, and none that it could derive."""
        return self._core.derived_disabled

    @derived_disabled.setter
    def derived_disabled(self, disabled: bool) -> None:
        self._core.derived_disabled = disabled

    @property
    def snapshot(self) -> Optional[Any]:
        """The picture of the view, (height, width, 3) uint8, or None. It is stored as JPEG."""
        picture = self._core.snapshot()
        return None if picture is None else _arrays.view(picture)

    @snapshot.setter
    def snapshot(self, image: Optional[Any]) -> None:
        if image is None:
            self._core.set_snapshot(None, 0, 0)
        else:
            pixels = _pixels(image)
            self._core.set_snapshot(pixels, pixels.shape[1], pixels.shape[0])

    @property
    def images(self) -> Images:
        """The textures of parts by name."""
        return Images(self._core)

    @property
    def properties(self) -> List[PropertySet]:
        """The viewer settings: pairs of class type and values by key, of the types in :mod:`zrfx.settings`.
        The list is a copy: assign one, such as that of a :class:`ViewSettings`, to change the case. Settings that
        do not fit the catalogue are refused."""
        return self._core.properties()

    @properties.setter
    def properties(self, settings: List[PropertySet]) -> None:
        self._core.set_properties(list(settings))

    def __repr__(self) -> str:
        return f"<Case {self.id} {self.name!r}>"
