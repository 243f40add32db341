"""The C library: where it is, and its functions and data by their names."""
from __future__ import annotations

import ctypes
import os
from typing import TYPE_CHECKING, Any

from . import interface

_NAME = "libZK_Base.so.1"


def _open() -> ctypes.CDLL:
    """Named by the environment, beside this file, under the same prefix, or where the system's loader finds it."""
    here = os.path.dirname(os.path.abspath(__file__))
    places = [os.path.join(here, _NAME), os.path.join(here, "../../..", _NAME)]
    path = os.environ.get("ZK_BASE_LIBRARY") or next((one for one in places if os.path.exists(one)), _NAME)
    try:
        if path == places[0] and os.path.exists(brought := os.path.join(here, "libcjson.so.1")):
            ctypes.CDLL(brought)  # a wheel brings what the library needs
        return ctypes.CDLL(path)
    except OSError as error:
        raise ImportError(f"the library of zk_base cannot be loaded: {error}; install libzk-base1, or set "
                          f"ZK_BASE_LIBRARY to the path of {_NAME}") from error


def _text(result: bytes | None, *_: object) -> str:
    return (result or b"").decode(errors="replace")


class _Library:
    """Functions are bound at their first use. Data of one number is read and written as that number."""

    def __getattr__(self, name: str) -> Any:
        found: Any
        if name == "_dll":
            found = _open()
        elif name in interface.FUNCTIONS:
            found = self._dll[name]
            found.restype, found.argtypes = interface.TYPES.of(interface.FUNCTIONS[name])
            if found.restype is ctypes.c_char_p:
                found.errcheck = _text
        elif name in interface.DATA:
            datum = interface.TYPES.of(interface.DATA[name]).in_dll(self._dll, name)
            return getattr(datum, "value", datum)
        else:
            raise AttributeError(f"the interface has no {name}")
        self.__dict__[name] = found
        return found

    def __setattr__(self, name: str, value: object) -> None:
        if name not in interface.DATA:
            raise AttributeError(f"the interface has no datum {name}")
        kind = interface.TYPES.of(interface.DATA[name])
        datum = kind.in_dll(self._dll, name)
        if hasattr(datum, "value"):
            datum.value = value
        else:
            ctypes.memmove(ctypes.byref(datum), ctypes.byref(kind(value) if not isinstance(value, kind) else value),
                           ctypes.sizeof(kind))

    def __dir__(self) -> list[str]:
        return [*interface.FUNCTIONS, *interface.DATA]


if TYPE_CHECKING:
    lib: interface.Library
else:
    lib = _Library()
