"""Callbacks that show how far an operation is, and can stop it."""

from __future__ import annotations

from typing import Callable, Iterator, Optional, Sequence, TypeVar

from .errors import CancelledError

#: Called with the fraction that is done, 0 to 1; ``False``, and nothing else, stops the operation, which then raises
#: CancelledError. So does an exception, which the operation raises. The file in use cannot be used in it, others can.
Progress = Callable[[float], object]

T = TypeVar("T")


def counted(items: Sequence[T], progress: Optional[Progress]) -> Iterator[T]:
    """The items, reporting after each."""
    for done, item in enumerate(items, 1):
        yield item
        if progress is not None and progress(done / len(items)) is False:
            raise CancelledError("The operation was stopped by its progress callback.")
