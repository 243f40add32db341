"""ZK Base: robot arms with six and seven joints.

    import zk_base

    with zk_base.Arm("192.168.1.18") as arm:
        arm.move_joints([0, 20, 70, 0, 90, 0], speed=20)
        print(arm.pose())

`Arm` is a connection to a controller, `Model` the kinematics of an arm on this host, `Simulator` a simulated
controller, `lib` the whole C interface, `interface` its records and constants. Joint angles are degrees, lengths
metres, Euler angles radians, times seconds. What fails raises a subclass of `Error`. The log is
`logging.getLogger("zk_base")`.
"""
from __future__ import annotations

from typing import TYPE_CHECKING, Any

from . import interface
from ._arm import Arm
from ._errors import (BadArgument, BadReply, Busy, Cancelled, Deadline, Error, FileError, Lost, NoSolution, NoState,
                      NotConnected, Refused, Timeout)
from ._events import Subscription, on_connection, on_motion_report
from ._library import lib
from ._types import Out
from ._pose import Pose
from ._state import State
from ._waiting import Move, Program

if TYPE_CHECKING:
    from ._model import Model, pose_dtype
    from ._simulator import Simulator

__all__ = ["Arm", "BadArgument", "BadReply", "Busy", "Cancelled", "Deadline", "Error", "FileError", "Lost", "Model",
           "Move", "NoSolution", "NoState", "NotConnected", "Out", "Pose", "Program", "Refused", "Simulator", "State",
           "Subscription", "Timeout", "interface", "lib", "on_connection", "on_motion_report", "pose_dtype"]

# Loaded at their first use: numpy takes longer than all the rest.
_LATER = {"Model": "_model", "pose_dtype": "_model", "Simulator": "_simulator"}


def __getattr__(name: str) -> Any:
    if name == "__version__":
        return lib.API_Version()
    if name not in _LATER:
        raise AttributeError(f"module {__name__!r} has no attribute {name!r}")
    from importlib import import_module
    return globals().setdefault(name, getattr(import_module(f".{_LATER[name]}", __name__), name))


def __dir__() -> list[str]:
    return __all__
