"""Blocking calls on threads of their own, so that the caller can be interrupted, or be a coroutine."""
from __future__ import annotations

import os
import sys
import threading
from collections.abc import Callable
from queue import SimpleQueue
from typing import Any, TypeVar

Result = TypeVar("Result")
_Outcome = Callable[[Any, "BaseException | None"], None]

_SLICE = 0.05  # a signal that another thread takes is noticed after it
_LAST = 0.1  # for an interrupted call to end in


class _Worker:
    """A thread that makes one call after the other. It ends with the process."""

    def __init__(self) -> None:
        self.calls: SimpleQueue[tuple[Callable[[], Any], _Outcome]] = SimpleQueue()
        threading.Thread(target=self._work, name="zk_base call", daemon=True).start()

    def _work(self) -> None:
        while True:
            call, tell = self.calls.get()
            result, failure = None, None
            try:
                result = call()
            except BaseException as error:
                failure = error
            _idle.append(self)
            tell(result, failure)
            del call, tell, result, failure


_idle: list[_Worker] = []
_process: list[int] = []  # the one whose threads are here


def check_process() -> None:
    """Threads do not survive a fork, neither these nor those of the library."""
    if not _process:
        _process.append(os.getpid())
    elif _process[0] != os.getpid():
        raise RuntimeError("this process was forked from one that has connected: start it by 'spawn' instead")


def _start(call: Callable[[], Any], tell: _Outcome) -> None:
    try:
        worker = _idle.pop()
    except IndexError:
        worker = _Worker()
    worker.calls.put((call, tell))


def interruptible(call: Callable[[], Result], interrupted: Callable[[], object]) -> Result:
    """Makes a blocking call. On the main thread Ctrl-C ends it: `interrupted` is called, then the exception goes on."""
    if threading.current_thread() is not threading.main_thread():
        return call()
    over = threading.Lock()
    over.acquire()
    outcome: list[Any] = []

    def tell(*result_and_failure: Any) -> None:
        outcome.extend(result_and_failure)
        over.release()

    try:
        _start(call, tell)
        while not over.acquire(timeout=_SLICE):
            pass
    except BaseException:
        interrupted()
        over.acquire(timeout=_LAST)
        raise
    result, failure = outcome
    if failure is not None:
        raise failure
    return result  # type: ignore[no-any-return]


def aside(call: Callable[[], object]) -> None:
    """Makes a short call that may log. The library logs on the thread of the call, and Ctrl-C in a callback on the main
    thread would be lost."""
    if sys.is_finalizing():
        call()
    else:
        interruptible(call, lambda: None)


async def awaitable(call: Callable[[], Result]) -> Result:
    """Makes a blocking call while the event loop goes on. When the task is cancelled, the call goes on unheard."""
    import asyncio

    loop = asyncio.get_running_loop()
    future: asyncio.Future[Result] = loop.create_future()

    def settle(result: Any, failure: BaseException | None) -> None:
        if future.done():
            return
        if failure is not None:
            future.set_exception(failure)
        else:
            future.set_result(result)

    def tell(result: Any, failure: BaseException | None) -> None:
        try:
            loop.call_soon_threadsafe(settle, result, failure)
        except RuntimeError:  # the loop has been closed meanwhile
            pass

    _start(call, tell)
    return await future
