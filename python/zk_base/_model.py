"""Models of arms: forward and inverse kinematics on this host."""
from __future__ import annotations

import ctypes
from typing import Any

import numpy as np
from numpy.typing import ArrayLike, NDArray

from . import interface
from ._errors import BadArgument, NoSolution, error
from .interface import ZK_BAD_ARGUMENT, ZK_BASE_AXES, ZK_BY_EULER, ZK_BY_QUATERNION, ZK_OK, ZK_TOOL_AXES
from ._library import lib
from ._pose import Pose, PoseLike

# The names that controllers and the simulator report, and their numbers in the interface.
_ARMS = {"ZK65": 0, "ZK75": 1, "63": 3, "ORB65": 5, "62": 6, "72": 7, "ORB63": 8}
_SENSORS = {"-B": 0, "-ZF": 1, "-6F": 2}
_CAUSES = ("", "out of reach", "beyond limits", "singular", "larger step", "bad target")

#: An element of an array of poses, laid out as the record of the C interface: position x, y, z in metres; quaternion
#: w, x, y, z; euler rx, ry, rz in radians.
pose_dtype = np.dtype([("position", np.float32, 3), ("quaternion", np.float32, 4), ("euler", np.float32, 3)])

Joints = NDArray[np.float32]


def _status(status: int, command: str) -> None:
    if status != ZK_OK:
        raise error(status, command)


class Model:
    """An arm's geometry, tool, work frame, mounting and limits, by a name such as "ZK65-B": see Model.names.

    Joints are degrees, lengths metres, Euler angles radians. Poses are those of the tool in the work frame. Any number
    of threads may compute with one model while none changes it. Methods raise BadArgument for what is not finite.
    """

    _record: Any = None

    def __init__(self, name: str) -> None:
        for suffix, sensor in _SENSORS.items():
            arm = name[:-len(suffix)]
            if name.endswith(suffix) and arm in _ARMS:
                self._take(lib.ZK_Model_New(_ARMS[arm], sensor), "ZK_Model_New")
                return
        raise BadArgument(ZK_BAD_ARGUMENT, "ZK_Model_New",
                          f"there is no model {name!r}; there are {', '.join(Model.names())}")

    @classmethod
    def _of(cls, record: Any, command: str) -> Model:
        model = cls.__new__(cls)
        model._take(record, command)
        return model

    def _take(self, record: Any, command: str) -> None:
        if not record:
            raise error(ZK_BAD_ARGUMENT, command, "there is no such model")
        self._record = record
        self.joint_count: int = lib.ZK_Model_Joint_Count(record)

    def __del__(self) -> None:
        if self._record:
            lib.ZK_Model_Free(self._record)
            self._record = None

    def __repr__(self) -> str:
        return f"<Model {lib.ZK_Model_Name(self._record)}, {self.joint_count} joints>"

    @staticmethod
    def names() -> list[str]:
        """The names of all models."""
        names = []
        for arm, number in _ARMS.items():
            for suffix, sensor in _SENSORS.items():
                record = lib.ZK_Model_New(number, sensor)
                if record:
                    names.append(arm + suffix)
                lib.ZK_Model_Free(record)
        return names

    def copy(self) -> Model:
        """A model of its own that is the same now."""
        return Model._of(lib.ZK_Model_Clone(self._record), "ZK_Model_Clone")

    __copy__ = copy

    def __deepcopy__(self, _: object) -> Model:
        return self.copy()

    def __reduce__(self) -> Any:
        raise TypeError("a model cannot be pickled")

    # --------------------------------------------------------------------------------------------- What it describes --

    def _get_pose(self, function: Any, name: str) -> Pose:
        record = interface.Pose()
        _status(function(self._record, record), name)
        return Pose.of(record)

    @property
    def tool(self) -> Pose:
        """The tool in the flange frame; may be set."""
        return self._get_pose(lib.ZK_Model_Get_Tool, "ZK_Model_Get_Tool")

    @tool.setter
    def tool(self, pose: PoseLike) -> None:
        _status(lib.ZK_Model_Set_Tool(self._record, Pose.of(pose)), "ZK_Model_Set_Tool")

    @property
    def work_frame(self) -> Pose:
        """The work frame in the world; may be set."""
        return self._get_pose(lib.ZK_Model_Get_Work_Frame, "ZK_Model_Get_Work_Frame")

    @work_frame.setter
    def work_frame(self, pose: PoseLike) -> None:
        _status(lib.ZK_Model_Set_Work_Frame(self._record, Pose.of(pose)), "ZK_Model_Set_Work_Frame")

    @property
    def mounting(self) -> tuple[float, float, float]:
        """Rotation of the base in the world: angles x, y, z in degrees; may be set."""
        angles = [ctypes.c_float() for _ in range(3)]
        _status(lib.ZK_Model_Get_Mounting(self._record, *angles), "ZK_Model_Get_Mounting")
        return angles[0].value, angles[1].value, angles[2].value

    @mounting.setter
    def mounting(self, angles: tuple[float, float, float]) -> None:
        _status(lib.ZK_Model_Set_Mounting(self._record, *angles), "ZK_Model_Set_Mounting")

    def _pair(self, function: Any, name: str) -> tuple[Joints, Joints]:
        first, second = np.empty(self.joint_count, np.float32), np.empty(self.joint_count, np.float32)
        _status(function(self._record, first, second), name)
        return first, second

    @property
    def limits(self) -> tuple[Joints, Joints]:
        """The least and the largest angle of each joint, degrees; may be set."""
        return self._pair(lib.ZK_Model_Get_Joint_Limits, "ZK_Model_Get_Joint_Limits")

    @limits.setter
    def limits(self, limits: tuple[ArrayLike, ArrayLike]) -> None:
        _status(lib.ZK_Model_Set_Joint_Limits(self._record, *[self._joints(one) for one in limits]),
                "ZK_Model_Set_Joint_Limits")

    @property
    def speed_limits(self) -> tuple[Joints, Joints]:
        """The largest speed and acceleration of each joint: degrees per second, per second squared."""
        return self._pair(lib.ZK_Model_Get_Speed_Limits, "ZK_Model_Get_Speed_Limits")

    def _joints(self, joints: ArrayLike) -> Joints:
        array = np.ascontiguousarray(joints, np.float32)
        if array.shape != (self.joint_count,):
            raise BadArgument(ZK_BAD_ARGUMENT, "Model", f"the arm has {self.joint_count} joints; the shape is {array.shape}")
        return array

    # ------------------------------------------------------------------------------------------------------ One pose --

    def forward(self, joints: ArrayLike) -> Pose:
        """The pose of the tool. Limits are not checked."""
        pose = interface.Pose()
        _status(lib.ZK_Model_Forward(self._record, self._joints(joints), pose), "ZK_Model_Forward")
        return Pose.of(pose)

    def jacobian(self, joints: ArrayLike, *, tool_axes: bool = False) -> NDArray[np.float64]:
        """6 rows of one value a joint: from radians a second to the velocity of the tool tip in metres a second and its
        angular velocity in radians a second, in the axes of the base or of the tool."""
        jacobian = np.empty((6, self.joint_count))
        _status(lib.ZK_Model_Jacobian(self._record, self._joints(joints), ZK_TOOL_AXES if tool_axes else ZK_BASE_AXES,
                                      jacobian), "ZK_Model_Jacobian")
        return jacobian

    def manipulability(self, joints: ArrayLike) -> float:
        """The root of det(J J'), 0 at a singular posture."""
        value = ctypes.c_double()
        _status(lib.ZK_Model_Manipulability(self._record, self._joints(joints), value), "ZK_Model_Manipulability")
        return value.value

    def limit_distance(self, joints: ArrayLike) -> tuple[float, int]:
        """How far the joint nearest to one of its limits is from it, in degrees, below 0 beyond; its number from 1."""
        degrees, which = ctypes.c_float(), ctypes.c_int32()
        _status(lib.ZK_Model_Limit_Distance(self._record, self._joints(joints), degrees, which),
                "ZK_Model_Limit_Distance")
        return degrees.value, which.value

    @staticmethod
    def _options(by_quaternion: bool, max_step: float, joint_weight: ArrayLike | None, min_manipulability: float,
                 circle_step: float = 0.0) -> interface.ZK_InverseOptions:
        options = interface.ZK_InverseOptions(orientation=ZK_BY_QUATERNION if by_quaternion else ZK_BY_EULER,
                                               max_step=max_step, min_manipulability=min_manipulability,
                                               circle_step=circle_step)
        if joint_weight is not None:
            weights = np.ones(7, np.float32)
            given = np.asarray(joint_weight, np.float32)
            weights[:given.size] = given
            options.joint_weight[:] = weights.tolist()
        return options

    @staticmethod
    def _refuse(status: int, command: str, result: interface.ZK_InverseResult, followed: int = 0) -> None:
        if status == ZK_OK:
            return
        failure = error(status, command)
        if isinstance(failure, NoSolution):
            failure.cause, failure.joint, failure.followed = _CAUSES[result.cause], result.joint, followed
            failure.text += f": {failure.cause}" + (f", joint {failure.joint}" if failure.joint else "")
        raise failure

    def inverse(self, target: PoseLike, seed: ArrayLike, *, max_step: float = 0.0,
                joint_weight: ArrayLike | None = None, min_manipulability: float = 0.0) -> Joints:
        """The joints nearest to `seed`, within the limits, that bring the tool to the target.

        max_step: the largest way of a joint from the seed, degrees; 0 is no bound. joint_weight: weight of each joint's
        square in the distance. min_manipulability: answers below are refused. Raises NoSolution with its cause.
        """
        joints, result = np.empty(self.joint_count, np.float32), interface.ZK_InverseResult()
        status = lib.ZK_Model_Inverse(self._record, Pose.of(target), self._joints(seed),
                                      self._options(False, max_step, joint_weight, min_manipulability), joints, result)
        self._refuse(status, "ZK_Model_Inverse", result)
        return joints

    def inverse_all(self, target: PoseLike, seed: ArrayLike, *, max_step: float = 0.0,
                    joint_weight: ArrayLike | None = None, min_manipulability: float = 0.0,
                    circle_step: float = 0.0) -> Joints:
        """Every posture within the limits that brings the tool to the target, a row each, nearest to the seed first.

        With seven joints those at each `circle_step` degrees of the free circle, by default 5. No row when there is
        none.
        """
        options = self._options(False, max_step, joint_weight, min_manipulability, circle_step)
        pose, start, count, room = Pose.of(target), self._joints(seed), ctypes.c_int32(), 64
        while True:
            rows = np.empty((room, self.joint_count), np.float32)
            _status(lib.ZK_Model_Inverse_All(self._record, pose, start, options, rows, room, count),
                    "ZK_Model_Inverse_All")
            if count.value <= room:
                return rows[:count.value]
            room = count.value

    # -------------------------------------------------------------------------------------------------- Many at once --

    def _rows(self, joints: Any, name: str) -> Joints:
        """The caller's own array where it has the type and the shape: no copy is made."""
        array = np.ascontiguousarray(joints, np.float32)
        if array.ndim != 2 or array.shape[1] != self.joint_count:
            raise BadArgument(ZK_BAD_ARGUMENT, "Model",
                              f"{name} has a row of {self.joint_count} joints for each pose; its shape is {array.shape}")
        return array

    @staticmethod
    def _poses(poses: Any) -> NDArray[Any]:
        if isinstance(poses, np.ndarray) and poses.dtype.names:
            if poses.dtype != pose_dtype:
                raise BadArgument(ZK_BAD_ARGUMENT, "Model", f"poses need the type zk_base.pose_dtype, not {poses.dtype}")
            return np.ascontiguousarray(poses)
        records = [Pose.of(one) for one in poses]
        return np.frombuffer(b"".join(bytes(one) for one in records), pose_dtype)

    @staticmethod
    def _output(out: NDArray[Any] | None, shape: tuple[int, ...], dtype: Any) -> NDArray[Any]:
        if out is None:
            return np.zeros(shape, dtype)
        if out.shape != shape or out.dtype != dtype or not out.flags.c_contiguous or not out.flags.writeable:
            raise BadArgument(ZK_BAD_ARGUMENT, "Model",
                              f"the output needs the shape {shape} and the type {np.dtype(dtype)}, in one piece")
        return out

    def follow(self, poses: Any, seed: ArrayLike, *, max_step: float = 0.0, joint_weight: ArrayLike | None = None,
               min_manipulability: float = 0.0, by_quaternion: bool = False) -> Joints:
        """Joints for a sequence of poses, a row each, without a jump: see ZK_Model_Follow.

        poses: an array of `pose_dtype`, or a sequence of poses. Raises NoSolution, whose `followed` says how many poses
        could be followed.
        """
        array = self._poses(poses)
        rows, result = np.zeros((array.size, self.joint_count), np.float32), interface.ZK_FollowResult()
        status = lib.ZK_Model_Follow(self._record, array, array.size, self._joints(seed),
                                     self._options(by_quaternion, max_step, joint_weight, min_manipulability), rows,
                                     result)
        self._refuse(status, "ZK_Model_Follow", result.refusal, result.followed)
        return rows

    def forward_batch(self, joints: ArrayLike, *, out: NDArray[Any] | None = None, threads: int = 1) -> NDArray[Any]:
        """The poses of the tool, an array of `pose_dtype`, for rows of joints.

        An array of float32 in one piece is not copied. out: an array to write to. threads: 1 to 64.
        """
        rows = self._rows(joints, "joints")
        poses = self._output(out, (len(rows),), pose_dtype)
        _status(lib.ZK_Model_Forward_Batch(self._record, rows, len(rows), poses, threads), "ZK_Model_Forward_Batch")
        return poses

    def inverse_batch(self, targets: Any, seeds: ArrayLike, *, out: Joints | None = None,
                      status: NDArray[np.int32] | None = None, threads: int = 1, by_quaternion: bool = False,
                      max_step: float = 0.0, joint_weight: ArrayLike | None = None,
                      min_manipulability: float = 0.0) -> tuple[Joints, NDArray[np.int32]]:
        """The joints nearest to each row of `seeds` for each target, and a status for each: 0, 19 or 21.

        targets: an array of `pose_dtype`, or a sequence of poses. Rows whose status is not 0 are not written: zeros
        without `out`. Arrays of the right type in one piece are not copied. The other arguments are those of `inverse`
        and `forward_batch`.
        """
        poses, rows = self._poses(targets), self._rows(seeds, "seeds")
        if len(poses) != len(rows):
            raise BadArgument(ZK_BAD_ARGUMENT, "Model", f"there are {len(poses)} targets and {len(rows)} seeds")
        joints = self._output(out, rows.shape, np.float32)
        statuses = self._output(status, (len(rows),), np.int32)
        result = lib.ZK_Model_Inverse_Batch(self._record, poses, rows, len(rows),
                                            self._options(by_quaternion, max_step, joint_weight, min_manipulability),
                                            joints, statuses, threads)
        if result == ZK_BAD_ARGUMENT and not (statuses == ZK_BAD_ARGUMENT).any():
            raise error(result, "ZK_Model_Inverse_Batch")
        return joints, statuses
