"""The engine ``"zrfx"`` of xarray: ``xarray.open_dataset("run.zrfx", engine="zrfx")``."""

from __future__ import annotations

import os
from typing import Any, List, Optional, Tuple

import numpy as np
from xarray.backends import BackendArray, BackendEntrypoint
from xarray.core import indexing

from . import _file
from .lazy import Source, to_xarray


class ZrfxArray(BackendArray):  # type: ignore[misc]
    """The values of a result, (states, items[, components]), read state by state; of one item, or of a range of items,
    no more than their part."""

    def __init__(self, source: Source, shape: Tuple[int, ...], states: List[Optional[int]]) -> None:
        self.source = source
        self.shape = shape
        self.states = states
        self.dtype = np.dtype(np.float32)

    def __getitem__(self, key: Any) -> Any:
        return indexing.explicit_indexing_adapter(key, self.shape, indexing.IndexingSupport.OUTER, self._read)

    def _read(self, key: Tuple[Any, ...]) -> Any:
        chosen = np.arange(self.shape[0])[key[0]]
        if chosen.ndim == 0:
            return self._state(int(chosen), key[1:])
        if chosen.size == 0:
            return np.zeros(self.shape, self.dtype)[:0]
        return np.stack([self._state(index, key[1:]) for index in chosen])

    def _state(self, index: int, key: Tuple[Any, ...]) -> Any:
        id = self.states[index]
        if id is not None and isinstance(key[0], (int, np.integer)):
            values, key = self.source.read(id, rows=slice(int(key[0]), int(key[0]) + 1)), (0, *key[1:])
        elif id is not None and isinstance(key[0], slice) and key[0].step in (None, 1):
            values, key = self.source.read(id, rows=key[0]), (slice(None), *key[1:])
        else:
            values = np.full(self.shape[1:], np.nan, self.dtype) if id is None else self.source.read(id)
        for axis in reversed(range(len(key))):
            values = values[(slice(None),) * axis + (key[axis],)]
        return values


class ZrfxBackend(BackendEntrypoint):  # type: ignore[misc]
    """Opens one model of a file; the first, unless ``model`` names another."""

    description = "Finite-element models and results in ZRFx files"
    open_dataset_parameters = ("filename_or_obj", "drop_variables", "model", "password")

    def open_dataset(self, filename_or_obj: Any, *, drop_variables: Any = None, model: Optional[str] = None,
                     password: Optional[str] = None) -> Any:
        file = _file.open(filename_or_obj, password)
        name = next(iter(file.models)) if model is None else model
        dataset = to_xarray(file.models[name])
        dataset.set_close(file.close)
        return dataset.drop_vars([drop_variables] if isinstance(drop_variables, str) else drop_variables or [])

    def guess_can_open(self, filename_or_obj: Any) -> bool:
        return isinstance(filename_or_obj, (str, os.PathLike)) and os.fspath(filename_or_obj).endswith(".zrfx")
