"""Positions and orientations."""
from __future__ import annotations

import math
from collections.abc import Iterable, Iterator
from typing import TYPE_CHECKING, Any, Union

from . import interface
from ._errors import BadArgument
from ._library import lib

if TYPE_CHECKING:
    import numpy as np
    from numpy.typing import NDArray


class Pose(interface.Pose):
    """Where something is: x, y, z in metres and rx, ry, rz in radians, R = Rz(rz) Ry(ry) Rx(rx).

    It is the record of the C interface, with position, quaternion (scalar first) and euler; all three are filled.
    ``base_T_tool @ tool_T_tip`` composes, ``tuple(pose)`` is its six numbers. Poses are equal when these are. A pose can
    be changed, so it has no hash: take the tuple as a key.
    """

    __hash__ = None  # type: ignore[assignment]

    def __eq__(self, other: object) -> bool:
        if not isinstance(other, Pose):
            return NotImplemented
        return tuple(self) == tuple(other)


    def __init__(self, x: float = 0, y: float = 0, z: float = 0, rx: float = 0, ry: float = 0, rz: float = 0) -> None:
        super().__init__((x, y, z), (1, 0, 0, 0), (rx, ry, rz))
        lib.ZK_Complete_Pose(self)

    @classmethod
    def of(cls, value: PoseLike) -> Pose:
        """A pose from one, from a C record or an element of a numpy array of poses, or from six numbers.

        An orientation is taken from the Euler angles.
        """
        if isinstance(value, Pose):
            return value
        if isinstance(value, interface.Pose):
            p, e = value.position, value.euler
            return cls(p.x, p.y, p.z, e.rx, e.ry, e.rz)
        names = getattr(getattr(value, "dtype", None), "names", None)
        try:
            numbers = [*value["position"], *value["euler"]] if names else [float(one) for one in value]  # type: ignore
        except (TypeError, ValueError):
            numbers = []
        if len(numbers) != 6:
            raise BadArgument(interface.ZK_BAD_ARGUMENT, "Pose", f"a pose is six numbers x, y, z, rx, ry, rz, not {value!r}")
        return cls(*numbers)

    @classmethod
    def from_quaternion(cls, position: Iterable[float], quaternion: Iterable[float]) -> Pose:
        """A pose from x, y, z in metres and a quaternion w, x, y, z of unit length."""
        euler = lib.Algo_Quaternion2Euler(interface.Quat(*quaternion))
        x, y, z = position
        return cls(x, y, z, euler.rx, euler.ry, euler.rz)

    @classmethod
    def from_matrix(cls, matrix: Any) -> Pose:
        """A pose from a transform of 4 by 4, as `matrix` returns it."""
        record = interface.Matrix(rows=4, cols=4)
        for i in range(4):
            for j in range(4):
                record.m[i][j] = matrix[i][j]
        return cls.of(lib.algo_matrix_to_pose(record))

    def matrix(self) -> NDArray[np.float64]:
        """The transform of 4 by 4."""
        import numpy as np
        return np.array(lib.algo_pose_to_matrix(self).m, np.float64)

    def __matmul__(self, other: interface.Pose) -> Pose:
        return Pose.from_matrix(self.matrix() @ Pose.of(other).matrix())

    def inverse(self) -> Pose:
        """The pose of the frame in which this one is given, seen from this one."""
        import numpy as np
        return Pose.from_matrix(np.linalg.inv(self.matrix()))

    def moved(self, x: float = 0, y: float = 0, z: float = 0, rx: float = 0, ry: float = 0, rz: float = 0) -> Pose:
        """The pose moved by metres along its own axes, and turned by radians about them."""
        return self @ Pose(x, y, z, rx, ry, rz)

    def shifted(self, x: float = 0, y: float = 0, z: float = 0) -> Pose:
        """The pose moved by metres along the axes of the frame in which it is given."""
        return Pose(self.x + x, self.y + y, self.z + z, self.rx, self.ry, self.rz)

    def distance(self, other: interface.Pose) -> tuple[float, float]:
        """How far another pose is: metres, and radians between the orientations."""
        difference = self.inverse() @ other
        q = difference.quaternion
        way = math.hypot(difference.x, difference.y, difference.z)
        return way, 2 * math.atan2(math.hypot(q.x, q.y, q.z), abs(q.w))

    @property
    def x(self) -> float:
        return self.position.x

    @property
    def y(self) -> float:
        return self.position.y

    @property
    def z(self) -> float:
        return self.position.z

    @property
    def rx(self) -> float:
        return self.euler.rx

    @property
    def ry(self) -> float:
        return self.euler.ry

    @property
    def rz(self) -> float:
        return self.euler.rz

    def __iter__(self) -> Iterator[float]:
        return iter((self.x, self.y, self.z, self.rx, self.ry, self.rz))

    def __repr__(self) -> str:
        return "Pose(" + ", ".join(f"{name}={value:.6g}" for name, value in
                                   zip(("x", "y", "z", "rx", "ry", "rz"), self)) + ")"


PoseLike = Union[interface.Pose, Iterable[float]]
