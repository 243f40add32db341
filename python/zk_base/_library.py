"""The C library: where it is, and its functions and data by their names."""
from __future__ import annotations

import ctypes
import os
from collections.abc import Callable
from functools import partial
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


class Function:
    """A function of the library.

    Its arguments are converted before ctypes has them, which would turn every exception, Ctrl-C too, into its own.
    """

    def __init__(self, name: str, call: Any, restype: Any, argtypes: tuple[Any, ...]) -> None:
        self.name, self.restype, self.argtypes = name, restype, argtypes
        self._call = call
        call.restype = restype
        if restype is ctypes.c_char_p:
            call.errcheck = _text

    def bind(self, *arguments: Any) -> Callable[[], Any]:
        """The call with these arguments. Raises BadArgument for what C would misread."""
        if len(arguments) != len(self.argtypes):
            raise TypeError(f"{self.name} takes {len(self.argtypes)} arguments, not {len(arguments)}")
        given = []
        for kind, argument in zip(self.argtypes, arguments):
            try:
                given.append(kind.from_param(argument))
            except (TypeError, ValueError, OverflowError, AttributeError, ctypes.ArgumentError) as wrong:
                from ._errors import BadArgument
                raise BadArgument(interface.ZK_BAD_ARGUMENT, self.name,
                                  f"argument {len(given) + 1} of the function in C: {wrong}") from None
        return partial(self._call, *given)

    def __call__(self, *arguments: Any) -> Any:
        return self.bind(*arguments)()


class _Library:
    """Functions are bound at their first use. Data of one number is read and written as that number."""

    def __getattr__(self, name: str) -> Any:
        found: Any
        if name == "_dll":
            found = _open()
        elif name in interface.FUNCTIONS:
            found = Function(name, self._dll[name], *interface.TYPES.of(interface.FUNCTIONS[name]))
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
