"""Quantities derived from vectors and tensors, as functions on arrays.

Vectors are (..., 3) in the order x, y, z, symmetric tensors (..., 6) in the order xx, yy, zz, xy, yz, zx, as
results have them. Where any component has no value (NaN, masked, or 2.99e38 and above, as in files), the result
has none: NaN, or masked where the input is a masked array. Computed in double precision and given in that of the
input.

Strains of kind ``"engineering"`` hold twice the shear of the tensor: halve the last three components first, with
:func:`standard_strain`.
"""

from __future__ import annotations

from typing import Any, Tuple

import numpy as np

from ._arrays import UNDEFINED_LIMIT


def _prepare(values: Any, components: int) -> Tuple[Any, Any, Any]:
    """Values in double precision, where they are undefined, and the type of the result."""
    array = np.ma.getdata(values)  # type: ignore[no-untyped-call]
    if array.shape[-1:] != (components,):
        raise ValueError(f"the last axis has {components} components, not {array.shape}")
    kind = array.dtype if array.dtype.kind == "f" else np.dtype(float)
    undefined = ~(array < UNDEFINED_LIMIT) | np.ma.getmaskarray(values)  # type: ignore[no-untyped-call]
    missing = undefined.any(axis=-1)
    return np.where(missing[..., None], 0.0, array).astype(np.float64), missing, kind


def _finish(values: Any, result: Any, missing: Any, kind: Any) -> Any:
    for _ in range(result.ndim - missing.ndim):
        missing = missing[..., None]
    if isinstance(values, np.ma.MaskedArray):
        mask = np.broadcast_to(missing, result.shape)
        return np.ma.MaskedArray(result.astype(kind), mask)  # type: ignore[no-untyped-call]
    return np.where(missing, np.nan, result).astype(kind)


def _matrix(tensor: Any) -> Any:
    xx, yy, zz, xy, yz, zx = np.moveaxis(tensor, -1, 0)
    rows = [np.stack(row, axis=-1) for row in ((xx, xy, zx), (xy, yy, yz), (zx, yz, zz))]
    return np.stack(rows, axis=-2)


def magnitude(vectors: Any) -> Any:
    """The lengths of vectors: (..., 3) to (...)."""
    array, missing, kind = _prepare(vectors, 3)
    return _finish(vectors, np.sqrt((array * array).sum(axis=-1)), missing, kind)


def von_mises(tensors: Any) -> Any:
    """The equivalent stress after von Mises: (..., 6) to (...)."""
    array, missing, kind = _prepare(tensors, 6)
    xx, yy, zz, xy, yz, zx = np.moveaxis(array, -1, 0)
    squares = ((xx - yy) ** 2 + (yy - zz) ** 2 + (zz - xx) ** 2) / 2 + 3 * (xy ** 2 + yz ** 2 + zx ** 2)
    return _finish(tensors, np.sqrt(squares), missing, kind)


def principal_values(tensors: Any) -> Any:
    """The principal values, the largest first: (..., 6) to (..., 3)."""
    array, missing, kind = _prepare(tensors, 6)
    return _finish(tensors, np.linalg.eigvalsh(_matrix(array))[..., ::-1], missing, kind)


def principal_directions(tensors: Any) -> Any:
    """The unit vectors of the principal values, in their order: (..., 6) to (..., 3, 3), the i-th direction in
    ``[..., i, :]``. Their sense is arbitrary, and so are directions of equal values."""
    array, missing, kind = _prepare(tensors, 6)
    columns = np.linalg.eigh(_matrix(array))[1]
    return _finish(tensors, np.swapaxes(columns, -1, -2)[..., ::-1, :], missing, kind)


def maximum_shear(tensors: Any) -> Any:
    """The maximum shear, half the difference of the largest and the smallest principal value: (..., 6) to
    (...)."""
    array, missing, kind = _prepare(tensors, 6)
    values = np.linalg.eigvalsh(_matrix(array))
    return _finish(tensors, (values[..., 2] - values[..., 0]) / 2, missing, kind)


def standard_strain(tensors: Any) -> Any:
    """Engineering strains as components of the strain tensor: the shears are halved."""
    array, missing, kind = _prepare(tensors, 6)
    return _finish(tensors, array * np.array([1, 1, 1, 0.5, 0.5, 0.5]), missing, kind)
