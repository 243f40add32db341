"""The real-time record of an arm."""
from __future__ import annotations

from typing import TYPE_CHECKING, Any

from .interface import ZK_State
from ._pose import Pose

if TYPE_CHECKING:
    import numpy as np
    from numpy.typing import NDArray


class State:
    """What an arm pushed last. `record` is the whole of it, as zk/control.h and zk/realtime.h describe it."""

    def __init__(self, record: ZK_State) -> None:
        self.record = record

    def _of_joints(self, values: Any) -> NDArray[np.float32]:
        import numpy as np
        return np.array(values[:self.record.joint_count], np.float32)

    @property
    def joints(self) -> NDArray[np.float32]:
        """Angles in degrees."""
        return self._of_joints(self.record.status.joint_position)

    @property
    def speeds(self) -> NDArray[np.float32]:
        """Degrees per second; zeros unless the controller is set to push them."""
        return self._of_joints(self.record.status.joint_speed)

    @property
    def currents(self) -> NDArray[np.float32]:
        """Amperes."""
        return self._of_joints(self.record.status.joint_current)

    @property
    def temperatures(self) -> NDArray[np.float32]:
        """Degrees Celsius."""
        return self._of_joints(self.record.status.joint_temperature)

    @property
    def pose(self) -> Pose:
        """The tool in the work frame."""
        return Pose(*self.record.status.position, *self.record.status.euler)

    @property
    def force(self) -> NDArray[np.float32]:
        """Newtons and newton metres, without the payload."""
        import numpy as np
        return np.array(self.record.status.zero_force, np.float32)

    @property
    def errors(self) -> tuple[int, int]:
        """The error words of the arm and of the system; 0 is none."""
        return self.record.status.arm_err, self.record.status.sys_err

    @property
    def age(self) -> float:
        """Seconds since it was received."""
        return self.record.age_ms / 1000

    @property
    def sequence(self) -> int:
        """The number of the datagram."""
        return self.record.sequence
