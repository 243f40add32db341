"""What the library reports unasked: its log, changes of connections, reports of streamed motion.

The library calls from threads of its own. What it says goes through a queue to one thread of Python, which calls the
program: a slow callback delays other callbacks, never the library.
"""
from __future__ import annotations

import atexit
import logging
import threading
from collections.abc import Callable
from queue import SimpleQueue
from typing import Any

from .interface import (ZK_CONNECTION_CLOSED, ZK_CONNECTION_LOST, ZK_CONNECTION_UP, ZK_LOG_EVENTS, ZK_LOG_FRAMES,
                         ArmMotionReport, MotionReportCallback, ZK_ConnectionCallback, ZK_LogCallback)
from ._library import lib

log = logging.getLogger("zk_base")

_STATES = {ZK_CONNECTION_CLOSED: "closed", ZK_CONNECTION_UP: "up", ZK_CONNECTION_LOST: "lost"}
_queue: SimpleQueue[tuple[Callable[..., object], tuple[Any, ...]]] = SimpleQueue()
_lock = threading.Lock()
_started = False
_level = ZK_LOG_EVENTS


def _deliver() -> None:
    while True:
        function, arguments = _queue.get()
        try:
            function(*arguments)
        except BaseException:  # SystemExit too: the other callbacks go on
            log.exception("a callback failed: %r", function)


def _write(level: int, arm: int, text: bytes) -> None:
    log.log(logging.DEBUG if level == ZK_LOG_FRAMES else logging.INFO, "%s", text.decode(errors="replace"),
            extra={"arm": arm})


class Subscription:
    """Keeps a callback called. `cancel` ends it, and so does the end of a `with` block."""

    def __init__(self, kind: list[Subscription], callback: Callable[..., object]) -> None:
        self._kind = kind
        self.callback = callback
        kind.append(self)

    def cancel(self) -> None:
        """No call begins from now on. A second cancel does nothing."""
        with _lock:
            if self in self._kind:
                self._kind.remove(self)

    def __enter__(self) -> Subscription:
        return self

    def __exit__(self, *_: object) -> None:
        self.cancel()


_connection_watchers: list[Subscription] = []
_report_watchers: list[Subscription] = []


def _tell(watchers: list[Subscription], *arguments: object) -> None:
    for one in list(watchers):
        _queue.put((one.callback, arguments))


def _on_log(_: object, level: int, arm: int, text: bytes) -> None:
    _queue.put((_write, (level, arm, text)))


def _on_connection(_: object, arm: int, state: int, cause: bytes | None) -> None:
    _tell(_connection_watchers, arm, _STATES.get(state, str(state)), (cause or b"").decode(errors="replace"))


def _on_report(report: ArmMotionReport) -> None:
    _tell(_report_watchers, ArmMotionReport.from_buffer_copy(report))


_LOG = ZK_LogCallback(_on_log)
_CONNECTION = ZK_ConnectionCallback(_on_connection)
_REPORT = MotionReportCallback(_on_report)


def listen() -> None:
    """Sets the library's callbacks. The log has the frames of the wire when the logger is enabled for DEBUG."""
    global _started, _level
    with _lock:
        if not _started:
            _started = True
            threading.Thread(target=_deliver, name="zk_base callbacks", daemon=True).start()
            lib.ZK_Set_Connection_Callback(_CONNECTION, None)
            atexit.register(_silence)
        _level = ZK_LOG_FRAMES if log.isEnabledFor(logging.DEBUG) else ZK_LOG_EVENTS
        lib.ZK_Set_Log(_LOG, None, _level)


def has_frames() -> bool:
    """Whether the log has the frames of the wire."""
    return _level == ZK_LOG_FRAMES


def _silence() -> None:
    """The library's threads outlive the interpreter: they must not call it any more."""
    lib.ZK_Set_Log(None, None, ZK_LOG_EVENTS)
    lib.ZK_Set_Connection_Callback(None, None)
    lib.callback1 = MotionReportCallback()


def on_connection(callback: Callable[[int, str, str], object]) -> Subscription:
    """Calls `callback(handle, state, cause)` at every change of a connection: "up", "lost" or "closed"."""
    listen()
    return Subscription(_connection_watchers, callback)


def on_motion_report(callback: Callable[[ArmMotionReport], object]) -> Subscription:
    """Calls `callback(report)` for every report on a streamed set-point, of all arms: see zk/streaming.h."""
    listen()
    lib.callback1 = _REPORT
    return Subscription(_report_watchers, callback)
