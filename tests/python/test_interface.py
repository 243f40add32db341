"""The interface that is made from the headers: all of it, with the right types, and not more than C can express."""
import ctypes
import os
import subprocess
import sys
from pathlib import Path

import numpy as np
import pytest

import zk_base
from zk_base import Out, interface, lib

SOURCES = Path(__file__).parents[2]


def exported():
    """Names of functions and of data, from the library itself."""
    lines = subprocess.run(["nm", "-D", "--defined-only", os.environ["ZK_LIBRARY_TO_READ"]], text=True,
                           capture_output=True, check=True).stdout.splitlines()
    names = {line.split()[-1].split("@")[0]: line.split()[-2] for line in lines}
    return ({name for name, kind in names.items() if kind in "TWi"} - {"_init", "_fini"},
            {name for name, kind in names.items() if kind in "BDRV"})


def test_every_exported_name_is_there():
    functions, data = exported()
    assert set(interface.FUNCTIONS) == functions
    assert set(interface.DATA) == data
    for name in functions | data:
        getattr(lib, name)


def test_values_of_all_kinds_pass():
    assert (interface.ZK_LOST, interface.ZK_SLOTS, interface.ZK_INVERSE_METRES) == (-12, 20, 1e-5)
    assert lib.API_Version() == interface.ZK_VERSION_STRING == zk_base.__version__
    euler = lib.Algo_Quaternion2Euler(lib.Algo_Euler2Quaternion(interface.Euler(0.1, 0.2, 0.3)))
    assert (euler.rx, euler.ry, euler.rz) == pytest.approx((0.1, 0.2, 0.3), abs=1e-6)
    lib.m_nOutTime = 1234
    assert lib.m_nOutTime == 1234
    lib.m_nOutTime = 3000
    assert lib.SockInfo[0].reserved[183] == 0
    assert lib.libalgo_set_robot_and_sensor_type(0, 0) == 0
    assert lib.robot.dof == 6
    limits = np.full(8, 1, np.float64)
    lib.libalgo_set_jointlim_max(np.zeros((8, 2), np.float32)[:, 0])  # an array in pieces is copied
    lib.libalgo_set_jointlim_max(limits)  # and one of another type
    lib.libalgo_get_jointlim_max(back := np.zeros(8, np.float32))
    assert (back == 1).all()


@pytest.mark.parametrize("call", [
    lambda: lib.libalgo_set_safety_level(65536),
    lambda: lib.libalgo_get_jointlim_max(np.zeros(8)),
    lambda: lib.libalgo_get_jointlim_max(np.zeros((8, 2), np.float32)[:, 0]),
    lambda: lib.libalgo_get_jointlim_max([0] * 8),
    lambda: lib.libalgo_get_jointlim_max(np.zeros(7, np.float32)),
    lambda: lib.libalgo_set_jointlim_max([0] * 7),
    lambda: lib.libalgo_set_jointlim_max("12345678"),
    lambda: lib.ZK_Set_Log(print, None, 1),
    lambda: lib.Set_Hand_Angle_NonBlock(0, np.array([1.7] * 6)),
    lambda: lib.Set_Hand_Angle_NonBlock(0, np.array([2**33] * 6)),
    lambda: lib.Set_Hand_Angle_NonBlock(0, [2**33] * 6),
    lambda: lib.Movej_CANFD_NonBlock(0, np.zeros(6, complex), 0, 0),
    lambda: lib.Movej_CANFD_NonBlock(0, np.ma.masked_array(np.zeros(6), [1] * 6), 0, 0),
    lambda: lib.ZK_Model_Set_Tool(None, np.zeros(1, [(name, "f4", 5) for name in ("euler", "position")])),
    lambda: lib.ZK_Model_Set_Tool(None, np.zeros(40, np.int8)),
    lambda: lib.ZK_Model_Set_Tool(None, np.zeros(2, {
        "names": zk_base.pose_dtype.names, "formats": ["3f4", "4f4", "3f4"], "offsets": [0, 12, 28], "itemsize": 44})),
], ids=["number too large", "output of another type", "output in pieces", "output to a list", "short output", "short list", "text", "function",
        "fractions for integers", "large integers", "large integers in a list", "complex", "mask",
        "other fields", "bytes for a record", "records with gaps"])
def test_what_c_would_misread_is_refused(call):
    with pytest.raises(zk_base.BadArgument, match="argument [1-4] of the function in C") as caught:
        call()
    assert caught.value.advice


@pytest.mark.parametrize("declaration", [
    "ZK_API int Print_All(const char* text, ...);",
    "typedef struct Bits { int low : 3; } Bits;",
    "ZK_API int Find(char** name);",
    "static const int kTen = 10;",
    "#define ZK_TWICE (2 * 3)",
    "typedef struct Packed { char a; int b; } __attribute__((packed)) Packed;",
])
def test_the_generator_fails_on_what_it_cannot_express(tmp_path, declaration):
    header = tmp_path / "include" / "zk" / "export.h"
    header.parent.mkdir(parents=True)
    header.write_text(f"#define ZK_API extern\n{declaration}\n")
    done = subprocess.run([sys.executable, SOURCES / "python" / "generate_interface.py", os.environ.get("CC", "cc"),
                           tmp_path / "include", tmp_path], capture_output=True, text=True)
    assert done.returncode != 0 and "generate_interface.py:" in done.stderr
    assert not (tmp_path / "interface.py").exists()


def test_importing_prints_nothing_and_loads_little():
    done = subprocess.run([sys.executable, "-c", "import zk_base, sys; sys.exit('numpy' in sys.modules or "
                           "'asyncio' in sys.modules or '_dll' in vars(zk_base.lib))"], capture_output=True)
    assert (done.returncode, done.stdout, done.stderr) == (0, b"", b"")


def test_every_status_has_its_exception(arm):
    statuses = {value for name, value in vars(interface).items()
                if lib.ZK_Status_Text(value if isinstance(value, int) else 99) != "unknown status" and
                name not in ("ZK_LARGEST_STATUS",) and isinstance(value, int)} - {0}
    plain = {status for status in statuses if type(zk_base._errors.error(status, "x")) is zk_base.Error}
    assert plain == {-23, -24}, "an unknown code, and no memory"
    with pytest.raises(zk_base.Refused) as caught:
        arm.tool_frames.get("nothing")
    failure = caught.value
    assert (failure.status, failure.command) == (1, "Get_Given_Tool_Frame")
    assert failure.advice and failure.text in str(failure) and failure.advice in str(failure)
    with pytest.raises(zk_base.NotConnected, match="nothing listens|refused"):
        zk_base.Arm("127.0.0.1", 1)


def test_commands_take_the_arm_and_return_outputs(arm):
    joints, pose, arm_err, sys_err = arm.c.Get_Current_Arm_State(Out(6), Out, Out, Out)
    assert joints.dtype == np.float32 and joints.shape == (6,) and (arm_err, sys_err) == (0, 0)
    assert arm.call("Get_Arm_Power_State", Out) == 1
    written = np.zeros(7, np.float32)
    assert arm.c.Get_Joint_Degree(written) is None
    assert (written[:6] == joints).all()
    with pytest.raises(TypeError, match="5 arguments"):
        arm.c.Movej_Cmd([0] * 6)
    with pytest.raises(AttributeError):
        arm.c.Movej_Command
    for wrong in (lambda: arm.c.Set_DO_State(1, Out, True), lambda: arm.c.Movej_Cmd(Out(6), 20, 0, 0, True)):
        with pytest.raises(TypeError, match="Set_DO_State|Movej_Cmd"):
            wrong()
    for wrong in (lambda: arm.c.Set_DO_State(1, 256, True), lambda: arm.c.Movej_Cmd([0] * 5, 20, 0, 0, True),
                  lambda: arm.c.Get_Joint_Degree(np.zeros(6)),
                  lambda: arm.c.Get_Joint_Degree(np.zeros(5, np.float32)),
                  lambda: arm.c.Get_Joint_Degree((ctypes.c_float * 5)()),
                  lambda: arm.c.Get_Arm_Power_State(np.zeros(0, np.int32)),
                  lambda: arm.c.Change_Tool_Frame("a\0b", True)):
        with pytest.raises(zk_base.BadArgument, match="Set_DO_State|Movej_Cmd|Get_Joint_Degree|Power|Frame"):
            wrong()
