"""Exceptions by cause."""
from __future__ import annotations

from .interface import ZK_MUST_NOT, ZK_RETRY, ZK_Advice
from ._library import lib


class Error(Exception):
    """A call of the library failed. The subclasses name causes; a status without a class of its own is an Error.

    status: the number that the call returned (zk/status.h), or another number of the controller.
    command: the name of the call. text: what happened. advice: what to do, "" when nothing needs to be done.
    """

    def __init__(self, status: int, command: str, text: str = "") -> None:
        advice = ZK_Advice()
        lib.ZK_Explain(status, 0, 0, advice)
        self.status = status
        self.command = command
        self.text = text or lib.ZK_Status_Text(status)
        self.advice = (advice.remedy or b"").decode()
        self.may_succeed_later = advice.go_on == ZK_RETRY
        self.needs_a_person = advice.go_on == ZK_MUST_NOT
        super().__init__(status, command, self.text)

    def __str__(self) -> str:
        advice = f"; {self.advice}" if self.advice else ""
        return f"{self.command}: {self.text} (status {self.status}){advice}"


class Refused(Error):
    """The controller refused the command, or a motion ended before its target."""


class NotConnected(Error, ConnectionError):
    """No connection: to such a host or port, to no controller, or of a closed handle."""


class Lost(Error, ConnectionError):
    """The connection is lost: the controller closed or reset it, or fell silent."""


class Timeout(Error, TimeoutError):
    """No answer within the time limit, or no end of what was waited for."""


class Deadline(Timeout):
    """The deadline of the connection passed during the call."""


class Cancelled(Error):
    """The call was cancelled, by Arm.cancel."""


class Busy(Error):
    """Another call, or a file transfer, excludes this one."""


class BadArgument(Error, ValueError):
    """An argument is missing, of the wrong type or length, not finite, or out of its range."""


class NoSolution(Error):
    """The inverse kinematics has no answer.

    cause: "out of reach", "beyond limits", "singular", "larger step" or "bad target". joint: number from 1 of the joint
    that would be beyond its limits, else 0. followed: the poses of a path that could be followed.
    """

    cause = ""
    joint = 0
    followed = 0


class BadReply(Error):
    """The controller's reply is broken, or about another device."""


class NoState(Error):
    """No real-time record of the arm has come, or none as young as asked for."""


class FileError(Error, OSError):
    """A file or its path cannot be used, or the controller rejected it."""

    def __init__(self, status: int, command: str, text: str = "") -> None:
        Error.__init__(self, status, command, text)


_CLASSES: dict[type[Error], tuple[int, ...]] = {
    Refused: (1, 14),
    NotConnected: (2, 4, 5, -13, -15, -16, -17, -19, -20),
    Lost: (6, -12),
    Timeout: (7, -18),
    Deadline: (-11,),
    Cancelled: (-10,),
    Busy: (18, 20, -1, -14),
    BadArgument: (19,),
    NoSolution: (21,),
    BadReply: (8, 9, 10, 11, 12),
    NoState: (25, -21, -22),
    FileError: (15, 16, 17, 22, 24, -4),
}
_CLASS_OF = {status: kind for kind, statuses in _CLASSES.items() for status in statuses}


def error(status: int, command: str, text: str = "") -> Error:
    """The exception for a status."""
    return _CLASS_OF.get(status, Error)(status, command, text)
