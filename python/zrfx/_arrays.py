"""Arrays to and from the library, copied only where their form is another."""

from __future__ import annotations

from typing import Any, Optional

import numpy as np
import numpy.typing as npt

FloatArray = npt.NDArray[np.floating[Any]]
IntArray = npt.NDArray[np.int32]

#: A value not below this one is none.
UNDEFINED_LIMIT = np.float32(2.99e38)
#: What stands for "no value" in files.
UNDEFINED = np.array([0x7F60F14E], dtype=np.uint32).view(np.float32)[0]


def view(array: Any) -> Any:
    """An array of the library as a read-only array of numpy on the same memory."""
    return np.asarray(array)


def floats(values: Any) -> Any:
    """C-contiguous float32: the array itself if it is that, else a copy. Masked values become the
    marker of undefined ones."""
    if isinstance(values, np.ma.MaskedArray):
        values = np.ma.filled(values.astype(np.float32), UNDEFINED)  # type: ignore[no-untyped-call]
    return np.ascontiguousarray(values, dtype=np.float32)


def ints(values: Any) -> Any:
    """C-contiguous int32: the array itself if it is that, else a copy. OverflowError where a number
    does not fit."""
    array = np.asarray(values)
    if array.dtype == np.int32:
        return np.ascontiguousarray(array)
    if array.size and array.dtype.kind not in "iu":
        raise TypeError(f"ids and indices are whole numbers, not {array.dtype}")
    if array.size and (array.max() > 2147483647 or array.min() < -2147483648):
        raise OverflowError("ids and indices have 32 bits in files")
    return np.ascontiguousarray(array, dtype=np.int32)


def optional_ints(values: Optional[Any]) -> Any:
    return None if values is None else ints(values)


def unmasked(items: Any) -> Any:
    """Positions: those at which a mask is true, or as they are."""
    array = np.asarray(items)
    return np.flatnonzero(array) if array.dtype == bool else array


def undefined(values: FloatArray) -> Any:
    """Where an array has no value: booleans of its shape."""
    return ~(values < UNDEFINED_LIMIT)


def without_undefined(values: Any, how: str) -> Any:
    """Values in the form asked for: ``"nan"``, ``"mask"`` or ``"keep"``."""
    if how == "keep":
        return values
    if how == "mask":
        return np.ma.MaskedArray(values, undefined(values))  # type: ignore[no-untyped-call]
    if how != "nan":
        raise ValueError(f"undefined is 'nan', 'mask' or 'keep', not {how!r}")
    if values.size == 0 or values.max() < UNDEFINED_LIMIT:
        return values
    return np.where(undefined(values), np.float32(np.nan), values)


def positions(ids: Optional[Any], wanted: Any, count: int, what: str) -> Any:
    """Positions, from 0, of ids in an array of ids; where that is None, ids are positions. KeyError
    names an id that is missing."""
    wanted = np.asarray(wanted)
    if ids is None:
        found, known = wanted, (wanted >= 0) & (wanted < count)
    else:
        order = np.argsort(ids, kind="stable")
        place = np.minimum(np.searchsorted(ids, wanted, sorter=order), max(len(ids) - 1, 0))
        found = order[place] if len(ids) else np.zeros_like(wanted)
        known = ids[found] == wanted if len(ids) else np.zeros(wanted.shape, bool)
    if not np.all(known):
        raise KeyError(f"no {what} {wanted[~known].flat[0]}")
    return found
