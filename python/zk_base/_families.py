"""The families of commands that people use daily. `Arm.call` reaches all others."""
from __future__ import annotations

import ctypes
import os
from collections.abc import Iterable, Sequence
from typing import TYPE_CHECKING, Any

from . import interface
from ._errors import BadArgument, FileError
from .interface import (ZK_BAD_ARGUMENT, ZK_FRAME_NAMES, ZK_MODBUS_VALUES, ForcePositionNew, FrameRec, GripperState, ProgramEntry,
                         ProgramList, ProgramRunState, ProjectSendParams)
from ._types import Out
from ._pose import Pose, PoseLike
from ._waiting import Program

if TYPE_CHECKING:
    import numpy as np
    from numpy.typing import NDArray

    from ._arm import Arm


def _text(command: str, text: str, most: int) -> bytes:
    raw = text.encode()
    if b"\0" in raw or len(raw) > most:
        raise BadArgument(ZK_BAD_ARGUMENT, command, f"{text!r} is no text of at most {most} bytes")
    return raw


class Family:
    """Commands about one subject, on one arm."""

    def __init__(self, arm: Arm) -> None:
        self._call = arm.call
        self._arm = arm


class Frame:
    """A frame: name, pose, and of a tool its mass in kilograms and its centre of gravity in metres."""

    def __init__(self, record: FrameRec) -> None:
        self.name = record.frame_name.decode(errors="replace")
        self.pose = Pose.of(record.pose)
        self.mass = record.payload
        self.centre = (record.x, record.y, record.z)

    def __repr__(self) -> str:
        return f"Frame({self.name!r}, {self.pose!r})"


class ToolFrames(Family):
    """Tool frames, by names of at most ten bytes."""

    def names(self) -> list[str]:
        """Asks for the names of all."""
        names, count = self._call("Get_All_Tool_Frame", Out(ZK_FRAME_NAMES), Out)
        return [name.text.decode(errors="replace") for name in names[:count]]

    def current(self) -> Frame:
        """Asks for the one in use."""
        return Frame(self._call("Get_Current_Tool_Frame", Out))

    def get(self, name: str) -> Frame:
        """Asks for one by its name. Raises Refused when there is none."""
        return Frame(self._call("Get_Given_Tool_Frame", name, Out))

    def create(self, name: str, pose: PoseLike, mass: float = 0.0, centre: Sequence[float] = (0.0, 0.0, 0.0)) -> None:
        """Stores a new one: its pose in the flange frame, its mass in kilograms, its centre of gravity in metres."""
        self._call("Manual_Set_Tool_Frame", name, Pose.of(pose), mass, *centre, True)

    def update(self, name: str, pose: PoseLike, mass: float = 0.0, centre: Sequence[float] = (0.0, 0.0, 0.0)) -> None:
        """Changes one."""
        self._call("Update_Tool_Frame", name, Pose.of(pose), mass, *centre)

    def select(self, name: str) -> None:
        """Makes it the one in use."""
        self._call("Change_Tool_Frame", name, True)

    def delete(self, name: str) -> None:
        """Deletes one."""
        self._call("Delete_Tool_Frame", name, True)


class WorkFrames(Family):
    """Work frames, by names of at most ten bytes."""

    def names(self) -> list[str]:
        """Asks for the names of all."""
        names, count = self._call("Get_All_Work_Frame", Out(ZK_FRAME_NAMES), Out)
        return [name.text.decode(errors="replace") for name in names[:count]]

    def current(self) -> Frame:
        """Asks for the one in use."""
        return Frame(self._call("Get_Current_Work_Frame", Out))

    def get(self, name: str) -> Pose:
        """Asks for the pose of one in the world. Raises Refused when there is none."""
        text = ctypes.create_string_buffer(_text("Get_Given_Work_Frame", name, 10), 16)
        return Pose.of(self._call("Get_Given_Work_Frame", text, Out))

    def create(self, name: str, pose: PoseLike) -> None:
        """Stores a new one: its pose in the world."""
        self._call("Manual_Set_Work_Frame", name, Pose.of(pose), True)

    def update(self, name: str, pose: PoseLike) -> None:
        """Changes one."""
        self._call("Update_Work_Frame", name, Pose.of(pose))

    def select(self, name: str) -> None:
        """Makes it the one in use."""
        self._call("Change_Work_Frame", name, True)

    def delete(self, name: str) -> None:
        """Deletes one."""
        self._call("Delete_Work_Frame", name, True)


class Gripper(Family):
    """A gripper of two fingers. Speeds, forces and openings are the device's own numbers; times are whole seconds."""

    def pick(self, speed: int = 500, force: int = 200, *, keep: bool = False, timeout: int = 10) -> None:
        """Closes until it grips with a force; keep: and keeps the force. Raises Timeout without a report."""
        self._call("Set_Gripper_Pick_On" if keep else "Set_Gripper_Pick", speed, force, True, timeout)

    def release(self, speed: int = 500, *, timeout: int = 10) -> None:
        """Opens."""
        self._call("Set_Gripper_Release", speed, True, timeout)

    def move_to(self, position: int, *, timeout: int = 10) -> None:
        """Goes to an opening."""
        self._call("Set_Gripper_Position", position, True, timeout)

    def set_range(self, least: int, most: int) -> None:
        """Sets the range of openings in use."""
        self._call("Set_Gripper_Route", least, most, True)

    def state(self) -> GripperState:
        """Asks for the opening, the force, the mode and the errors."""
        record: GripperState = self._call("Get_Gripper_State", Out)
        return record


class Hand(Family):
    """A hand of six fingers' joints, in the device's own numbers."""

    def posture(self, number: int) -> None:
        """Brings it into a posture, and waits for its report."""
        self._call("Set_Hand_Posture", number, True)

    def sequence(self, number: int) -> None:
        """Runs a sequence, and waits for its report."""
        self._call("Set_Hand_Seq", number, True)

    def set_angles(self, angles: Sequence[int]) -> None:
        """Sends the angles of the six joints."""
        if len(angles) != 6:
            raise BadArgument(ZK_BAD_ARGUMENT, "Set_Hand_Angle", f"a hand has six joints, not {len(angles)}")
        self._call("Set_Hand_Angle", angles, True)

    def set_speed(self, speed: int) -> None:
        """Sets the speed of the fingers."""
        self._call("Set_Hand_Speed", speed, True)

    def set_force(self, force: int) -> None:
        """Sets the force of the fingers."""
        self._call("Set_Hand_Force", force, True)


class Io(Family):
    """Inputs and outputs, by the controller's numbers."""

    def inputs(self) -> tuple[list[bool], list[float]]:
        """Asks for all inputs: four digital ones, four analogue ones in volts."""
        digital, analogue = self._call("Get_IO_Input", Out(4), Out(4))
        return [bool(one) for one in digital], [float(one) for one in analogue]

    def outputs(self) -> tuple[list[bool], list[float]]:
        """Asks for all outputs: four digital ones, four analogue ones in volts."""
        digital, analogue = self._call("Get_IO_Output", Out(4), Out(4))
        return [bool(one) for one in digital], [float(one) for one in analogue]

    def set_digital(self, number: int, on: bool) -> None:
        """Sets a digital output."""
        self._call("Set_DO_State", number, int(on), True)

    def set_analogue(self, number: int, volts: float) -> None:
        """Sets an analogue output."""
        self._call("Set_AO_State", number, volts, True)

    def set_tool_digital(self, number: int, on: bool) -> None:
        """Sets a digital output of the tool."""
        self._call("Set_Tool_DO_State", number, int(on), True)

    def set_tool_voltage(self, kind: int) -> None:
        """Sets the supply of the tool, by the controller's number of its type."""
        self._call("Set_Tool_Voltage", kind, True)


class Modbus(Family):
    """Devices on the controller's ports. Refused also means that a device does not answer."""

    def open(self, port: int, baudrate: int, timeout: float = 1.0) -> None:
        """Makes a serial port a Modbus RTU master. timeout: seconds to wait for a device, to a tenth."""
        self._call("Set_Modbus_Mode", port, baudrate, max(1, round(timeout * 10)), True)

    def close(self, port: int) -> None:
        """Ends that."""
        self._call("Close_Modbus_Mode", port, True)

    def connect(self, address: str, port: int = 502, timeout: float = 2.0) -> None:
        """Connects the controller to a Modbus TCP server."""
        self._call("Set_Modbustcp_Mode", address, port, int(timeout * 1000))

    def disconnect(self) -> None:
        """Ends that."""
        self._call("Close_Modbustcp_Mode")

    def coils(self, port: int, address: int, count: int, device: int = 1) -> list[bool]:
        """Reads up to eight coils."""
        return self._bits("Get_Read_Coils", port, address, count, device)

    def discrete_inputs(self, port: int, address: int, count: int, device: int = 1) -> list[bool]:
        """Reads up to eight discrete inputs."""
        return self._bits("Get_Read_Input_Status", port, address, count, device)

    def _bits(self, command: str, port: int, address: int, count: int, device: int) -> list[bool]:
        if not 1 <= count <= 8:
            raise BadArgument(ZK_BAD_ARGUMENT, command, f"one to eight are read at once, not {count}")
        bits = self._call(command, port, address, count, device, Out)
        return [bool(bits >> i & 1) for i in range(count)]

    def holding_registers(self, port: int, address: int, count: int = 1, device: int = 1) -> list[int]:
        """Reads holding registers, numbers of 16 bits."""
        if count == 1:
            return [self._call("Get_Read_Holding_Registers", port, address, device, Out)]
        return self._words("Read_Multiple_Holding_Registers", port, address, count, device)

    def input_registers(self, port: int, address: int, count: int = 1, device: int = 1) -> list[int]:
        """Reads input registers, numbers of 16 bits."""
        if count == 1:
            return [self._call("Get_Read_Input_Registers", port, address, device, Out)]
        return self._words("Read_Multiple_Input_Registers", port, address, count, device)

    def _words(self, command: str, port: int, address: int, count: int, device: int) -> list[int]:
        data = [int(one) for one in self._call(command, port, address, count, device, Out(ZK_MODBUS_VALUES))]
        return [data[2 * i] << 8 | data[2 * i + 1] for i in range(count)]

    def write_coil(self, port: int, address: int, on: bool, device: int = 1) -> None:
        """Switches a coil."""
        self._call("Write_Single_Coil", port, address, int(on), device, True)

    def write_registers(self, port: int, address: int, values: Iterable[int], device: int = 1) -> None:
        """Sets holding registers."""
        data = b"".join(value.to_bytes(2, "big") for value in values)
        self._call("Write_Registers", port, address, len(data) // 2, data, device, True)


class Force(Family):
    """The six-axis force sensor. Forces are newtons, moments newton metres; directions are x, y, z, rx, ry, rz."""

    def read(self) -> NDArray[np.float32]:
        """Asks for forces and moments at the flange, without the payload."""
        forces: NDArray[np.float32] = self._call("Get_Force_Data", Out(6), Out(6), Out(6), Out(6))[1]
        return forces

    def set_zero(self) -> None:
        """Takes the present reading as zero."""
        self._call("Clear_Force_Data", True)

    def hold(self, forces: Sequence[float | None], *, tool: bool = False,
             limits: Sequence[float] | None = None) -> None:
        """Holds a force in each direction of six, the position where it is None, until `end`.

        tool: the directions are those of the tool, else of the work frame. limits: speeds while the arm yields, metres
        and radians a second.
        """
        if len(forces) != 6 or (limits is not None and len(limits) != 6):
            raise BadArgument(ZK_BAD_ARGUMENT, "Set_Force_Postion_New", "there are six directions")
        wanted = ForcePositionNew(sensor=interface.ZK_SENSOR_SIX_AXIS, mode=int(tool))
        wanted.control_mode[:] = [0 if one is None else 1 for one in forces]
        wanted.desired_force[:] = [one or 0.0 for one in forces]
        wanted.limit_vel[:] = list(limits) if limits else [0.05, 0.05, 0.05, 0.2, 0.2, 0.2]
        self._call("Set_Force_Postion_New", wanted)

    def end(self) -> None:
        """Ends holding a force."""
        self._call("Stop_Force_Postion", True)


class Drag(Family):
    """Drag teaching: the arm is led by hand, the controller records the path, and replays it."""

    def start(self) -> None:
        """Lets the arm be led, and records."""
        self._call("Start_Drag_Teach", True)

    def stop(self) -> None:
        """Ends that; the recording stays in the controller."""
        self._call("Stop_Drag_Teach", True)

    def go_to_start(self) -> None:
        """Moves the arm to the start of the recording."""
        self._call("Drag_Trajectory_Origin", True)

    def replay(self) -> None:
        """Replays the recording, and waits for its end."""
        self._call("Run_Drag_Trajectory", True)

    def save(self, path: str | os.PathLike[str]) -> int:
        """Saves the recording to a file of this host, a point a line, and returns how many points come."""
        return int(self._call("Save_Trajectory", os.path.abspath(path), Out))


class Programs(Family):
    """Programs by their ids, 1 to 200."""

    def list(self, search: str = "", page: int = 1, page_size: int = 100) -> list[ProgramEntry]:
        """Asks for a page of those with a part of a name."""
        found = ProgramList(page_num=page, page_size=page_size, vague_search=search.encode())
        self._call("Get_Program_Trajectory_List", found)
        return [one for one in found.list[:page_size] if one.id]

    def send(self, path: str | os.PathLike[str], *, save_as: int = 0, speed: int = 100, run: bool = False) -> None:
        """Sends a project of this host, a text with one instruction a line. save_as: the id to store it under.

        Raises FileError, with the number of the line, when the controller rejects a line.
        """
        text = os.path.abspath(path).encode()
        params = ProjectSendParams(project_path=text, project_path_len=len(text), plan_speed=speed,
                                   only_save=int(not run), save_id=save_as)
        line = (ctypes.c_int32 * 1)()
        try:
            self._call("Send_TrajectoryFile", line, params)
        except FileError as error:
            if line[0]:
                error.text += f"; line {line[0]}"
            raise

    def run(self, number: int, speed: int = 100, *, wait: bool = True) -> Program:
        """Runs one, at a speed in percent. wait: False returns when it has begun; wait for the `Program`, or await it.
        """
        program = Program(self._arm, "Set_Program_ID_Start")
        try:
            self._call("Set_Program_ID_Start_NonBlock", number, speed)
            if wait:
                program.wait()
        except KeyboardInterrupt:
            self._arm._halt()
            raise
        return program

    def state(self) -> ProgramRunState:
        """Asks for the program in progress."""
        record: ProgramRunState = self._call("Get_Program_Run_State", Out)
        return record

    def delete(self, number: int) -> None:
        """Deletes one."""
        self._call("Delete_Program_Trajectory", number)


class Lift(Family):
    """The lift that carries the arm; heights are millimetres."""

    def move_to(self, height: int, speed: int = 50) -> None:
        """Moves it, and waits for its report."""
        self._call("Set_Lift_Height", height, speed, True)

    def height(self) -> int:
        """Asks for its height."""
        return int(self._call("Get_Lift_State", Out, Out, Out, Out)[0])
