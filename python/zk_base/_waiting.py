"""What an arm does for a while: moves and programs."""
from __future__ import annotations

from collections.abc import Generator
from typing import TYPE_CHECKING, Any

from ._errors import BadArgument, error
from .interface import ZK_BAD_ARGUMENT, ZK_OK, ZK_TIMEOUT, ZK_ProgramOutcome
from ._library import lib
from ._threads import awaitable

if TYPE_CHECKING:
    from ._arm import Arm

_FOREVER_MS = 2**31 - 1


class Waiting:
    """Something that the arm does, and that ends. Wait for it by `wait`, or `await` it."""

    _call = ""

    def __init__(self, arm: Arm, command: str) -> None:
        self.arm = arm
        self.command = command
        self._ended = False
        self._status = 0
        self._text = ""

    def _look(self, milliseconds: int) -> int:
        raise NotImplementedError

    def _note(self, status: int, text: str) -> bool:
        """Whether it has ended. Raises what keeps the wait from its end."""
        if status == ZK_TIMEOUT:
            return False
        if status in (0, 1, 14):
            self._ended, self._status, self._text = True, status, text
            return True
        raise error(status, self._call, text)

    def _raise_failure(self) -> None:
        if self._status != ZK_OK:
            raise error(self._status, self.command, self._text)

    def wait(self, timeout: float | None = None) -> None:
        """Waits for the end, at most `timeout` seconds.

        Raises Refused when it ended before its target, Timeout after `timeout` (it may be called again), and what else
        ends a blocking call. Ctrl-C stops the arm and raises KeyboardInterrupt.
        """
        if not self._ended:
            milliseconds = _FOREVER_MS if timeout is None else max(1, int(timeout * 1000))
            status, text = self.arm._blocking(lambda: self._look(milliseconds), self._call)
            if not self._note(status, text):
                raise error(ZK_TIMEOUT, self.command, f"it has not ended within {timeout} s")
        self._raise_failure()

    def done(self) -> bool:
        """Whether it has ended, well or not."""
        if not self._ended:
            status, text = self.arm._blocking(lambda: self._look(1), self._call)
            self._note(status, text)
        return self._ended

    def stop(self) -> None:
        """Stops the arm."""
        self.arm.stop()

    async def end(self, *, stop_if_cancelled: bool = False) -> None:
        """Waits for the end, for coroutines; `await move` does the same. Raises as `wait` does.

        When the task is cancelled the wait ends. The arm goes on, unless `stop_if_cancelled` is set.
        """
        import asyncio

        if not self._ended:
            try:
                status, text = await awaitable(lambda: self.arm._with_text(lambda: self._look(_FOREVER_MS), self._call))
            except asyncio.CancelledError:
                if stop_if_cancelled:
                    self.arm.stop()
                raise
            self._note(status, text)
        self._raise_failure()

    def __await__(self) -> Generator[Any, None, None]:
        return self.end().__await__()


class Move(Waiting):
    """A motion of the arm. Of several that were started it ends with the last; a joined one has no end of its own."""

    _call = "ZK_Wait_Move"

    def __init__(self, arm: Arm, command: str, joined: bool = False) -> None:
        super().__init__(arm, command)
        self._joined = joined

    def _look(self, milliseconds: int) -> int:
        if self._joined:
            raise BadArgument(ZK_BAD_ARGUMENT, self._call, "a joined motion ends with the next one: wait for that")
        return lib.ZK_Wait_Move(self.arm.handle, milliseconds)

    def progress(self) -> float:
        """The share of the way that is done, 0 to 1; see Arm.progress."""
        return self.arm.progress()


class Program(Waiting):
    """A program that runs in the controller."""

    _call = "ZK_Wait_Program"

    def __init__(self, arm: Arm, command: str) -> None:
        super().__init__(arm, command)
        self.outcome = ZK_ProgramOutcome()

    def _look(self, milliseconds: int) -> int:
        return lib.ZK_Wait_Program(self.arm.handle, milliseconds, self.outcome)
