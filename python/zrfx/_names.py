"""Objects by name."""

from __future__ import annotations

from typing import Dict, Generic, Iterable, Iterator, List, Mapping, Protocol, TypeVar


class HasNameAndId(Protocol):
    """What a collection can hold."""

    @property
    def name(self) -> str: ...

    @property
    def id(self) -> int: ...


T = TypeVar("T", bound=HasNameAndId)


class Named(Mapping[str, T], Generic[T]):
    """Objects by name, in the order of the file.

    Names need not be unique in a file: of two objects of one name the later is found as ``"name#id"``.
    """

    def __init__(self, what: str, items: Iterable[T]) -> None:
        self._what = what
        self._items: Dict[str, T] = {}
        for item in items:
            self._items[f"{item.name}#{item.id}" if item.name in self._items else item.name] = item

    def __getitem__(self, name: str) -> T:
        try:
            return self._items[name]
        except KeyError:
            names = ", ".join(repr(known) for known in self._items) or "none"
            raise KeyError(f"no {self._what} {name!r}; there are: {names}") from None

    def __iter__(self) -> Iterator[str]:
        return iter(self._items)

    def __len__(self) -> int:
        return len(self._items)

    def by_id(self, id: int) -> T:
        """The object with an id; KeyError lists the ids."""
        for item in self._items.values():
            if item.id == id:
                return item
        ids: List[int] = [item.id for item in self._items.values()]
        raise KeyError(f"no {self._what} with the id {id}; there are: {ids}")

    def __repr__(self) -> str:
        return f"<{len(self)} of {self._what}: {', '.join(self._items)}>"
