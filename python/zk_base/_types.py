"""How the parameters of the C interface take what Python has."""
from __future__ import annotations

import ctypes
from operator import index
from typing import Any


class Out:
    """Stands for an output of a command: its value is returned.

    ``Out`` is one value, ``Out(7)`` an array of 7 values, ``Out(16)`` in the place of a text a buffer of 16 bytes.
    """

    def __init__(self, count: int) -> None:
        if count < 1:
            raise ValueError("an output has at least one value")
        self.count = count


class Integer:
    """A whole number, which has to fit its type in C."""

    def __init__(self, kind: Any) -> None:
        self.kind = kind
        bits, signed = 8 * ctypes.sizeof(kind), kind(-1).value < 0
        self.least, self.most = (-1 << bits - 1, (1 << bits - 1) - 1) if signed else (0, (1 << bits) - 1)

    def from_param(self, value: Any) -> Any:
        try:
            number = index(value)
        except TypeError:
            raise TypeError(f"{value!r} is no whole number") from None
        if not self.least <= number <= self.most:
            raise ValueError(f"{number} is not within {self.least} to {self.most}")
        return self.kind(number)


class Loan:
    """Memory in the place of a caller's array, with room behind it that shows whether the array was too short."""

    _UNTOUCHED = 0xa5

    def __init__(self, element: Any, array: Any) -> None:
        self._size = memoryview(array).nbytes
        self._own = (ctypes.c_char * self._size).from_buffer(array) if self._size else None
        self.room = (element * (self._size // ctypes.sizeof(element) + 1024))()
        ctypes.memset(self.room, self._UNTOUCHED, ctypes.sizeof(self.room))
        if self._own:
            ctypes.memmove(self.room, self._own, self._size)

    def give_back(self) -> bool:
        """Copies what was written to the array. Returns False when it was too short for that."""
        if self._own:
            ctypes.memmove(self._own, self.room, self._size)
        behind = bytes(self.room)[self._size:]
        return behind.count(self._UNTOUCHED) == len(behind)


class Callback:
    """A function of Python for the library to call. Its caller keeps the ctypes object alive."""

    def __init__(self, kind: Any) -> None:
        self.kind = kind

    def from_param(self, value: Any) -> Any:
        return self.kind() if value is None else self.kind.from_param(value)


class Pointer:
    """A parameter that the function writes to: a ctypes object or array, or a numpy array of just that type."""

    constant = False

    def __init__(self, element: Any, least: int = 0) -> None:
        self.element = element
        self.least = least  # as its header declares the array; 0 where it does not
        self._last: Any = None  # the type of array that fitted last

    def from_param(self, value: Any) -> Any:
        """What ctypes passes for a value. The function sees the memory of an array, not a copy."""
        if value is None:
            return None
        if self.least and (count := self._count(value)) < self.least:
            raise ValueError(f"{self.least} values are needed, not {count}")
        if isinstance(value, self.element):
            return ctypes.byref(value)
        if hasattr(value, "__array_interface__"):
            return self._array(value)
        if self.constant and isinstance(value, (list, tuple)):
            return (self.element * max(1, len(value)))(*map(self._number, value))
        if self.constant and isinstance(value, (bytes, bytearray)) and ctypes.sizeof(self.element) == 1:
            return (self.element * max(1, len(value))).from_buffer_copy(value or b"\0")
        return ctypes.POINTER(self.element).from_param(value)

    @staticmethod
    def _count(value: Any) -> int:
        """Of an array; of a pointer nobody knows it."""
        size = value.size if hasattr(value, "__array_interface__") else \
            len(value) if hasattr(value, "__len__") else 1 << 31
        return int(size)

    def lend(self, value: Any) -> Loan | None:
        """Memory for an array of numbers or texts that the function writes to; None for a record or a pointer."""
        if self.constant or ctypes.sizeof(self.element) > self._SMALL or not (
                isinstance(value, (self.element, ctypes.Array)) or hasattr(value, "__array_interface__")):
            return None
        try:
            self.from_param(value)
        except (TypeError, ValueError):  # as the call will say
            return None
        return Loan(self.element, value)

    def _number(self, value: Any) -> Any:
        """An element of a sequence, which has to fit its type in C."""
        if getattr(self.element, "_type_", "") in tuple("bBhHiIlLqQ"):
            return Integer(self.element).from_param(value).value
        return value

    def _array(self, array: Any) -> Any:
        flags = array.flags
        if not self._matches(array.dtype) or not flags.c_contiguous:
            if not self.constant:
                raise TypeError(f"a contiguous array of {self.element.__name__} is needed, not one of {array.dtype}")
            import numpy as np
            if not np.can_cast(array.dtype, np.dtype(self.element), "same_kind") or hasattr(array, "mask"):
                raise TypeError(f"an array of {array.dtype} cannot be given as {self.element.__name__}")
            if array.dtype.kind in "iu":
                array = np.array([self._number(one) for one in array.ravel().tolist()])
            array = np.ascontiguousarray(array, np.dtype(self.element))
            flags = array.flags
        if array.size == 0:
            return (self.element * 1)()
        if flags.writeable:
            return ctypes.byref(self.element.from_buffer(array))
        if not self.constant:
            raise TypeError("the array is read-only, and the function writes to it")
        return (self.element * array.size).from_buffer_copy(array)

    def _matches(self, dtype: Any) -> bool:
        if dtype is self._last:
            return True
        if issubclass(self.element, ctypes.Structure):
            offsets = {name: getattr(self.element, name).offset for name, *_ in self.element._fields_}
            fits = dtype.itemsize == ctypes.sizeof(self.element) and offsets == {
                name: field[1] for name, field in (dtype.fields or {}).items()}
        else:
            import numpy as np
            fits = dtype == np.dtype(self.element)
        if fits:
            self._last = dtype
        return bool(fits)

    # Some functions write more than one value to a pointer; memory that is too short would be overrun.
    _AT_LEAST, _SMALL = 64, 12

    def room(self, count: int) -> Any:
        """Memory for an output."""
        return (self.element * max(count, self._AT_LEAST if ctypes.sizeof(self.element) <= self._SMALL else 1))()

    def result(self, room: Any, count: int | None) -> Any:
        """What an output holds: one value without a count, else a list or an array of numpy."""
        if count is None:
            return room[0]
        if issubclass(self.element, ctypes.Structure):
            return list(room[:count])
        import numpy as np
        return np.array(room[:count], np.dtype(self.element))


class Input(Pointer):
    """A parameter that the function only reads: also a sequence of numbers, or an array of another type, copied."""

    constant = True


class _Text(Pointer):
    constant = True

    def from_param(self, value: Any) -> Any:
        if isinstance(value, str):
            value = value.encode()
        if isinstance(value, bytes) and b"\0" in value:
            raise ValueError(f"the text {value!r} has a zero byte, where C would end it")
        return ctypes.c_char_p.from_param(value)


class _Buffer(Pointer):
    def result(self, room: Any, count: int | None) -> str:
        return bytes(room).split(b"\0", 1)[0].decode(errors="replace")


TEXT = _Text(ctypes.c_char)
BUFFER = _Buffer(ctypes.c_char)


class Types(dict[str, Any]):
    """The types of the interface by their names, each made at its first use."""

    def __init__(self, records: dict[str, tuple[str, str]], callbacks: dict[str, str]) -> None:
        super().__init__({name: value for name, value in vars(ctypes).items() if name[:2] == "c_"})
        self.update(POINTER=ctypes.POINTER, CFUNCTYPE=ctypes.CFUNCTYPE, BUFFER=BUFFER, TEXT=TEXT, Callback=Callback,
                    Input=Input, Integer=Integer, Pointer=Pointer)
        self.records, self.callbacks = records, callbacks
        self._made: dict[str, Any] = {}

    def __missing__(self, name: str) -> Any:
        if name in self.callbacks:
            self[name] = self.of(self.callbacks[name])
            return self[name]
        kind, fields = self.records[name]
        made: Any = type(name, (getattr(ctypes, kind),), {"__module__": "zk_base.interface"})
        self[name] = made
        if fields:
            made._fields_ = self.of(fields)
        return made

    def of(self, expression: str) -> Any:
        """What a text of type names stands for."""
        if expression not in self._made:
            self._made[expression] = eval(expression, {}, self)
        return self._made[expression]

    def public(self, name: str, module: str) -> Any:
        """A type for the programs that import it."""
        if name in self or name in self.records or name in self.callbacks:
            return self[name]
        raise AttributeError(f"module {module!r} has no attribute {name!r}")
