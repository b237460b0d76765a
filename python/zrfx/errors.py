"""The exceptions of the package: why an operation failed.

All are :class:`ZrfxError`, and so ``OSError``. Where Python has an exception for the same cause, it is a
base as well: a missing file is a ``FileNotFoundError``, use of a closed file a ``ValueError``.
"""

from __future__ import annotations

from typing import Dict, NoReturn, Type

__all__ = [
    "ZrfxError",
    "InvalidArgumentError",
    "InvalidContentError",
    "ClosedError",
    "ReadOnlyError",
    "NotFoundError",
    "ExistsError",
    "NotZrfxError",
    "PasswordError",
    "PasswordNeededError",
    "WrongPasswordError",
    "DamagedError",
    "LockedError",
    "ChangedError",
    "NoPermissionError",
    "DiskFullError",
    "OutOfMemoryError",
    "TooLargeError",
    "IncompleteError",
    "CancelledError",
]


class ZrfxError(OSError):
    """An operation on a ZRFx file failed. The text names the cause and the file.

    ``code`` is the reason in capitals, such as ``"DISK_FULL"``.
    """

    code = "SYSTEM_ERROR"


class InvalidArgumentError(ZrfxError, ValueError):
    """The call breaks a rule of the operation."""


class InvalidContentError(InvalidArgumentError):
    """What is written could not be read back."""


class ClosedError(ZrfxError, ValueError):
    """The file is closed."""


class ReadOnlyError(ZrfxError):
    """The file was opened for reading."""


class NotFoundError(ZrfxError, FileNotFoundError):
    """There is no such file, block or case."""


class ExistsError(ZrfxError, FileExistsError):
    """There is a file, block or id of that name already."""


class NotZrfxError(ZrfxError):
    """The path holds something other than a ZRFx file."""


class PasswordError(ZrfxError):
    """A password is needed, or is wrong."""


class PasswordNeededError(PasswordError):
    """The file is encrypted and no password was given."""


class WrongPasswordError(PasswordError):
    """The password is wrong; or the file is damaged, where this cannot be told."""


class DamagedError(ZrfxError):
    """What is read does not fit together."""


class LockedError(ZrfxError):
    """Another writer has the file."""


class ChangedError(ZrfxError):
    """Someone has replaced or removed the file under its writer."""


class NoPermissionError(ZrfxError, PermissionError):
    """The system does not allow the operation."""


class DiskFullError(ZrfxError):
    """There is no room left on the disk."""


class OutOfMemoryError(ZrfxError, MemoryError):
    """There is no memory left."""


class TooLargeError(ZrfxError):
    """An array of 4 GiB or more, or one beyond what may be read."""


class IncompleteError(ZrfxError):
    """A model lacks its parts or its states."""


class CancelledError(ZrfxError):
    """A callback has stopped the operation."""


_CLASSES: Dict[str, Type[ZrfxError]] = {
    "INVALID_ARGUMENT": InvalidArgumentError,
    "NOT_OPEN": ClosedError,
    "READ_ONLY": ReadOnlyError,
    "NOT_FOUND": NotFoundError,
    "NO_REGULAR_FILE": NotZrfxError,
    "NO_ZRFX_FILE": NotZrfxError,
    "PASSWORD_NEEDED": PasswordNeededError,
    "WRONG_PASSWORD": WrongPasswordError,
    "DAMAGED": DamagedError,
    "IN_USE": LockedError,
    "CHANGED": ChangedError,
    "EXISTS": ExistsError,
    "NO_PERMISSION": NoPermissionError,
    "DISK_FULL": DiskFullError,
    "OUT_OF_MEMORY": OutOfMemoryError,
    "TOO_LARGE": TooLargeError,
    "INVALID_CONTENT": InvalidContentError,
    "INCOMPLETE": IncompleteError,
    "CANCELLED": CancelledError,
}

for _code, _class in reversed(_CLASSES.items()):
    _class.code = _code


def raise_error(code: str, text: str) -> NoReturn:
    """Raises the exception of a reason; the library calls it."""
    error = _CLASSES.get(code, ZrfxError)(text)
    error.code = code
    raise error
