"""A connection to an arm."""
from __future__ import annotations

import ctypes
import re
import sys
import time
from collections.abc import Callable, Iterator
from contextlib import contextmanager
from functools import partial
from operator import index
from typing import TYPE_CHECKING, Any

from . import _events, _families, interface
from ._errors import BadArgument, NoState, error
from .interface import (COMMANDS, JOINTS, TELLING, ZK_ALL_THREADS, ZK_BAD_ARGUMENT, ZK_DROP_QUEUED, ZK_EMERGENCY_STOP,
                         ZK_KEEP_MODEL, ZK_OK, ZK_PAUSE, ZK_SLOW_STOP, ZK_STOP, ZK_STOP_AT_DEADLINE, ZK_STOP_AT_EXIT,
                         ArmAllState, ArmSoftwareInfo, ZK_ConnectionRecord, ZK_ConnectOptions, ZK_State)
from ._library import lib
from ._types import Out, Pointer
from ._pose import Pose, PoseLike
from ._state import State
from ._threads import aside, check_process, interruptible
from ._waiting import Move

if TYPE_CHECKING:
    import numpy as np
    from numpy.typing import NDArray

    from .interface import Floats
    from ._model import Model

# Calls that wait for nothing; of the second kind the log has the frames.
_AT_ONCE = re.compile(r"ZK_(Cancel|Get_State|Connection|Set_Deadline|Arm_Model)|Parser_.*")
_STREAMED = re.compile(r".*_(CANFD|Follow)(_NonBlock)?")
# The status of these is the state that they deliver.
_STATES = ("Get_Program_Run_State", "Get_Program_Run_State_Block")
_STOPS = {"fast": ZK_STOP, "slow": ZK_SLOW_STOP, "emergency": ZK_EMERGENCY_STOP}


def _check_percent(command: str, what: str, value: Any, least: int) -> None:
    try:
        fits = least <= index(value) <= 100
    except TypeError:
        fits = False
    if not fits:
        raise BadArgument(ZK_BAD_ARGUMENT, command, f"a {what} of {value!r} percent; it is a whole number, {least} to 100")


class _Commands:
    """Every command by its name in C: ``arm.c.Movej_Cmd(...)`` is ``arm.call("Movej_Cmd", ...)``."""

    def __init__(self, arm: Arm) -> None:
        self._arm = arm

    def __getattr__(self, name: str) -> Any:
        if name not in COMMANDS:
            raise AttributeError(f"there is no command {name}")
        command = partial(self._arm.call, name)
        self.__dict__[name] = command
        return command

    def __dir__(self) -> list[str]:
        return sorted(COMMANDS)


class Arm:
    """A connection to a controller, closed by `close` or at the end of a `with` block.

    host: name or address. timeout: seconds for connecting. mode: the arm mode, 0 for the controller's own. heartbeat:
    seconds between queries that notice a silent controller, 0 for none. stop_at_exit: stop the arm when the process
    ends. keep_model: leave the process-wide model of the Algo_ functions alone.

    Joint angles are degrees, lengths metres, other angles radians, times seconds, speeds percent. Every call raises a
    subclass of zk_base.Error when it fails. Ctrl-C in a blocking call stops the arm, then raises KeyboardInterrupt; so
    does leaving a `with` block by KeyboardInterrupt. Several threads may use one arm, see docs/threads.md.
    """

    def __init__(self, host: str = "127.0.0.1", port: int = 8080, *, timeout: float = 5.0, mode: int = 0,
                 heartbeat: float = 0.0, stop_at_exit: bool = False, keep_model: bool = False) -> None:
        options = ZK_ConnectOptions(timeout_ms=int(timeout * 1000), arm_mode=mode, heartbeat_ms=int(heartbeat * 1000),
                                    flags=ZK_STOP_AT_EXIT * stop_at_exit | ZK_KEEP_MODEL * keep_model)
        check_process()
        _events.listen()
        given_up: list[bool] = []

        def connect() -> tuple[int, int, str]:
            out = ctypes.c_int32()
            status = lib.ZK_Connect(host, port, options, out)
            text = lib.ZK_Failure() if status else ""
            if given_up and status == ZK_OK:
                lib.ZK_Close(out.value)
            return status, out.value, text

        status, self.handle, text = interruptible(connect, lambda: given_up.append(True))
        if status != ZK_OK:
            raise error(status, "ZK_Connect", text)
        self.joint_count: int = self.connection().joint_count

    if TYPE_CHECKING:
        @property
        def c(self) -> interface.Commands: ...
    else:
        @property
        def c(self) -> _Commands:
            return _Commands(self)

    def close(self) -> None:
        """Closes the connection, as its last reference does. The arm goes on. A second close does nothing."""
        aside(partial(lib.ZK_Close, self.handle))

    def __del__(self) -> None:
        if hasattr(self, "handle"):
            self.close()

    def __enter__(self) -> Arm:
        return self

    def __exit__(self, kind: type[BaseException] | None, *_: object) -> None:
        asyncio = sys.modules.get("asyncio")  # it turns Ctrl-C into a cancelled task
        if kind and issubclass(kind, (KeyboardInterrupt, *([asyncio.CancelledError] if asyncio else []))):
            self._halt()
        self.close()

    def __repr__(self) -> str:
        record = ZK_ConnectionRecord()
        lib.ZK_Connection(self.handle, record)
        state = ("closed", "up", "lost")[record.state]
        return f"<Arm {record.address.decode()}:{record.port}, {record.joint_count} joints, {state}>"

    # ------------------------------------------------------------------------------------------------- Any command --

    def call(self, command: str, *arguments: Any) -> Any:
        """Calls a command of the C interface on this arm: ``arm.call("Set_DO_State", 1, 1, True)``.

        A status other than 0 is raised. An array may be a sequence, or an array of numpy; an array that the command
        writes to is written in place. In the place of an output stand `Out` or `Out(count)`, whose values are returned:
        ``joints, pose, *errors = arm.call("Get_Current_Arm_State", Out(7), Out, Out, Out)``.

        BadArgument is raised for too few joints, and for an array that is shorter than what was written to it. Other
        arrays that the command reads have the length that its header says, which is not checked.
        """
        if command not in COMMANDS:
            raise AttributeError(f"there is no command {command}")
        function = getattr(lib, command)
        kinds = function.argtypes[1:]
        if len(arguments) != len(kinds):
            raise TypeError(f"{command} takes {len(kinds)} arguments after the arm, not {len(arguments)}")
        if command in JOINTS:
            self._check_joints(command, arguments[JOINTS[command]])
        given: list[Any] = [self.handle]
        outputs, loans = [], []
        for kind, argument in zip(kinds, arguments):
            if argument is Out or isinstance(argument, Out):
                if not isinstance(kind, Pointer) or kind.constant:
                    raise TypeError(f"argument {len(given)} of {command} is no output")
                count = None if argument is Out else argument.count
                argument = kind.room(count or 1)
                outputs.append((kind, argument, count))
            elif isinstance(kind, Pointer) and (loan := kind.lend(argument)):
                loans.append(loan)
                argument = loan.room
            given.append(argument)
        call = function.bind(*given)
        if function.restype is not ctypes.c_int32:
            return call()
        if _AT_ONCE.fullmatch(command) or (_STREAMED.fullmatch(command) and not _events.has_frames()):
            status, text = self._with_text(call, command)
        else:
            status, text = self._blocking(call, command)
        if not all([loan.give_back() for loan in loans]):
            raise BadArgument(ZK_BAD_ARGUMENT, command, "an array is shorter than what the command writes to it")
        if status != ZK_OK:
            asked = arguments[0] if command in _STATES else None
            state = outputs[0][1][0] if asked is Out else asked
            if state is None or status != state.run_state:
                raise error(status, command, text)
        results = [kind.result(room, count) for kind, room, count in outputs]
        return tuple(results) if len(results) > 1 else results[0] if results else None

    def _check_joints(self, command: str, joint: Any) -> None:
        try:
            count = len(joint)
        except TypeError:  # a pointer
            return
        if count < self.joint_count:
            raise BadArgument(ZK_BAD_ARGUMENT, command, f"the arm has {self.joint_count} joints, not {count}")

    @staticmethod
    def _with_text(call: Callable[[], int], command: str) -> tuple[int, str]:
        """The status of a call, and what the library has to say about a failure, which it keeps for each thread."""
        status = call()
        return status, lib.ZK_Failure() if status and command in TELLING else ""

    def _blocking(self, call: Callable[[], int], command: str) -> tuple[int, str]:
        return interruptible(lambda: self._with_text(call, command), self._halt)

    def _halt(self) -> None:
        """For Ctrl-C: what has been ordered ends, what waits for it too."""
        aside(partial(lib.ZK_Stop, self.handle, ZK_STOP | ZK_DROP_QUEUED))
        lib.ZK_Cancel(self.handle)

    # -------------------------------------------------------------------------------------------------------- Moves --

    def _move(self, command: str, arguments: tuple[Any, ...], speed: int, blend: int, more: tuple[int, ...],
              joined: bool, wait: bool) -> Move:
        _check_percent(command, "speed", speed, 1)
        _check_percent(command, "blend", blend, 0)
        move = Move(self, command, joined)
        try:
            self.call(f"{command}_NonBlock", *arguments, speed, blend, *more, int(joined))
            if wait and not joined:
                move.wait()
        except KeyboardInterrupt:
            self._halt()
            raise
        return move

    def move_joints(self, joints: Floats, speed: int = 20, *, blend: int = 0, joined: bool = False,
                    wait: bool = True) -> Move:
        """Moves every joint to an angle in degrees; all arrive at the same time.

        speed: percent of the joints' limits, 1 to 100. joined: it runs as one with the next move, with a blend of 0 to
        100 percent, and is not waited for. wait: False returns at once when the controller has accepted it; wait for
        the `Move`, or await it.

        Raises Refused when the controller refuses, or the arm is stopped before it arrives.
        """
        return self._move("Movej_Cmd", (joints,), speed, blend, (), joined, wait)

    def move_pose(self, pose: PoseLike, speed: int = 20, *, blend: int = 0, joined: bool = False,
                  wait: bool = True) -> Move:
        """Moves the joints so that the tool comes to a pose in the work frame; see move_joints."""
        return self._move("Movej_P_Cmd", (Pose.of(pose),), speed, blend, (), joined, wait)

    def move_line(self, pose: PoseLike, speed: int = 20, *, blend: int = 0, joined: bool = False,
                  wait: bool = True) -> Move:
        """Moves the tool on a straight line to a pose in the work frame; see move_joints."""
        return self._move("Movel_Cmd", (Pose.of(pose),), speed, blend, (), joined, wait)

    def move_spline(self, pose: PoseLike, speed: int = 20, *, blend: int = 0, joined: bool = False,
                    wait: bool = True) -> Move:
        """Moves the tool on a spline through this and the joined poses before it; see move_joints."""
        return self._move("Moves_Cmd", (Pose.of(pose),), speed, blend, (), joined, wait)

    def move_circle(self, via: PoseLike, to: PoseLike, speed: int = 20, *, turns: int = 0, blend: int = 0,
                    joined: bool = False, wait: bool = True) -> Move:
        """Moves the tool on a circle through one pose to another, with whole turns added; see move_joints."""
        return self._move("Movec_Cmd", (Pose.of(via), Pose.of(to)), speed, blend, (turns,), joined, wait)

    def stream_joints(self, joints: Floats, *, follow: bool = True, expand: float = 0.0) -> None:
        """Writes a set-point in degrees, past the queue, at the rate of the caller's loop.

        follow: closely, else smoothed. The controller's reports come to `on_motion_report`.
        """
        self.call("Movej_CANFD", joints, int(follow), expand)

    def stream_pose(self, pose: PoseLike, *, follow: bool = True) -> None:
        """Writes a set-point of the tool in the work frame; see stream_joints."""
        self.call("Movep_CANFD", int(follow), Pose.of(pose))

    def stop(self, kind: str = "fast") -> None:
        """Stops the arm at once, ahead of all that is queued: "fast", "slow", or "emergency", with the power off."""
        if kind not in _STOPS:
            raise BadArgument(ZK_BAD_ARGUMENT, "ZK_Stop", f'a stop is "fast", "slow" or "emergency", not "{kind}"')
        self.call("ZK_Stop", _STOPS[kind] | ZK_DROP_QUEUED)

    def pause(self) -> None:
        """Halts the motion on its path."""
        self.call("ZK_Stop", ZK_PAUSE)

    def resume(self) -> None:
        """Goes on with a paused motion."""
        self.call("Move_Continue_Cmd", True)

    def cancel(self) -> None:
        """Ends the blocking calls of all threads on this arm, which raise Cancelled. The arm goes on."""
        self.call("ZK_Cancel")

    def wait_idle(self, timeout: float = 60.0) -> None:
        """Waits until the controller reports no motion. Raises Timeout after `timeout` seconds."""
        self.call("ZK_Wait_Idle", int(timeout * 1000))

    @contextmanager
    def deadline(self, seconds: float, *, stop: bool = False) -> Iterator[None]:
        """In this block the blocking calls of all threads on this arm end by then, and raise Deadline.

        The time counts for each call. stop: the arm is stopped too.
        """
        self.call("ZK_Set_Deadline", int(seconds * 1000), ZK_ALL_THREADS | ZK_STOP_AT_DEADLINE * stop)
        try:
            yield
        finally:
            lib.ZK_Set_Deadline(self.handle, 0, ZK_ALL_THREADS)

    def progress(self) -> float:
        """The share of the way of the running joint motion that is done, 0 to 1; 1 at rest.

        Raises NoState for other motions, and without the controller's push.
        """
        return float(self.call("ZK_Move_Progress", Out))

    # -------------------------------------------------------------------------------------------------------- State --

    def state(self, max_age: float = 0.0) -> State:
        """The last real-time record. It never waits, and any thread may call it.

        Raises NoState when none has come, or none within the last `max_age` seconds; 0 is any age.
        """
        record = ZK_State()
        self.call("ZK_Get_State", record, int(max_age * 1000))
        return State(record)

    def states(self, timeout: float = 1.0) -> Iterator[State]:
        """Yields each new real-time record; of those that came meanwhile the last. Raises NoState when none comes
        within `timeout` seconds."""
        sequence = -1
        while True:
            end = time.monotonic() + timeout
            record = ZK_State()
            while (status := lib.ZK_Get_State(self.handle, record, 0)) or record.sequence == sequence:
                if time.monotonic() > end or status not in (ZK_OK, interface.ZK_NO_STATE):
                    connection = ZK_ConnectionRecord()
                    lib.ZK_Connection(self.handle, connection)
                    if connection.state == interface.ZK_CONNECTION_LOST:
                        raise error(interface.ZK_LOST, "ZK_Get_State", connection.cause.decode())
                    if status in (ZK_OK, interface.ZK_NO_STATE):
                        raise NoState(interface.ZK_NO_STATE, "ZK_Get_State", f"no record came within {timeout} s")
                    raise error(status, "ZK_Get_State")
                time.sleep(0.0005)
            sequence = record.sequence
            yield State(record)

    def joints(self) -> NDArray[np.float32]:
        """Asks for the angles of the joints, in degrees."""
        joints: NDArray[np.float32] = self.call("Get_Joint_Degree", Out(self.joint_count))
        return joints

    def pose(self) -> Pose:
        """Asks for the pose of the tool in the work frame."""
        return Pose.of(self.call("Get_Current_Arm_State", Out(self.joint_count), Out, Out, Out)[1])

    def errors(self) -> tuple[int, int]:
        """Asks for the error words of the arm and of the system; 0 is none."""
        arm, system = self.call("Get_Current_Arm_State", Out(self.joint_count), Out, Out, Out)[2:]
        return arm, system

    def measurements(self) -> ArmAllState:
        """Asks for what the joints measure: temperatures, voltages, currents, and their error words."""
        record: ArmAllState = self.call("Get_Arm_All_State", Out)
        return record

    def info(self) -> dict[str, str]:
        """Asks for the model of the arm and the versions of its software."""
        record = self.call("Get_Arm_Software_Info", Out)
        return {name: getattr(record, name).decode(errors="replace") for name, *_ in ArmSoftwareInfo._fields_}

    def connection(self) -> ZK_ConnectionRecord:
        """What is known of the connection: address, model, traffic, round trips. It never waits."""
        record = ZK_ConnectionRecord()
        self.call("ZK_Connection", record)
        return record

    def model(self) -> Model:
        """A new model of this arm as its controller described it when the connection was made."""
        from ._model import Model
        return Model._of(lib.ZK_Arm_Model(self.handle), "ZK_Arm_Model")

    def clear_errors(self) -> None:
        """Clears the system error."""
        self.call("Clear_System_Err", True)

    def set_power(self, on: bool) -> None:
        """Switches the arm on or off."""
        self.call("Set_Arm_Power", int(on), True)

    def powered(self) -> bool:
        """Asks whether the arm is switched on."""
        return bool(self.call("Get_Arm_Power_State", Out))

    # ----------------------------------------------------------------------------------------------------- Families --

    @property
    def tool_frames(self) -> _families.ToolFrames:
        """The tool frames that the controller keeps."""
        return _families.ToolFrames(self)

    @property
    def work_frames(self) -> _families.WorkFrames:
        """The work frames that the controller keeps."""
        return _families.WorkFrames(self)

    @property
    def gripper(self) -> _families.Gripper:
        """The gripper."""
        return _families.Gripper(self)

    @property
    def hand(self) -> _families.Hand:
        """The hand."""
        return _families.Hand(self)

    @property
    def io(self) -> _families.Io:
        """Inputs and outputs of the controller and of the tool."""
        return _families.Io(self)

    @property
    def modbus(self) -> _families.Modbus:
        """Modbus, with the controller as its master."""
        return _families.Modbus(self)

    @property
    def force(self) -> _families.Force:
        """The force sensor, and holding a force."""
        return _families.Force(self)

    @property
    def drag(self) -> _families.Drag:
        """Drag teaching."""
        return _families.Drag(self)

    @property
    def programs(self) -> _families.Programs:
        """The programs of the controller."""
        return _families.Programs(self)

    @property
    def lift(self) -> _families.Lift:
        """The lift that carries the arm."""
        return _families.Lift(self)
