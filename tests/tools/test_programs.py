"""Programs: checked on a model, sent, run; and waypoints."""
import json
import os
import pty
import signal

import pytest

import zk_base
from zk_base import interface

START = [0, 20, 70, 0, 90, 0]
FROM_START = ["--from", ",".join(map(str, START))]


def joints(*degrees, **keys):
    return {"command": "movej", "joint": [round(1000 * angle) for angle in degrees], **keys}


def tool(command, pose, **keys):
    return {"command": command, "pose": numbers(pose), **keys}


def numbers(pose):
    return [round(1e6 * part) for part in (pose.x, pose.y, pose.z)] + [round(1e3 * part) for part in
                                                                       (pose.rx, pose.ry, pose.rz)]


def at(*degrees):
    return zk_base.Model("ZK65-B").forward(degrees)


THERE = at(*START)
CIRCLE = {"command": "movec", "loop": 1, "v": 80,
          "pose": {"pose_via": numbers(THERE.shifted(x=-0.03, z=0.03)), "pose_to": numbers(THERE.shifted(z=0.06))}}
GOOD = [{"name": "each command"}, joints(*START), {"loop": 3}, tool("movel", THERE.shifted(z=-0.05)),
        tool("movej_p", THERE.shifted(y=0.1), v=50), {"command": "timer", "wait_time": 100}, tool("movel", THERE),
        {"end_loop": True}, CIRCLE, tool("moves", THERE.shifted(y=0.02), trajectory_connect=1),
        tool("moves", THERE.shifted(y=0.02, z=0.02))]


@pytest.fixture
def program(tmp_path):
    """Writes a program, and returns its path."""
    def write(lines, name="program.txt"):
        path = tmp_path / name
        path.write_text(lines if isinstance(lines, str) else "".join(json.dumps(line) + "\r\n" for line in lines))
        return path
    return write


def test_checks(zk, program):
    path = program(GOOD)
    report = zk.json("check", path, "-m", "ZK65-B", *FROM_START)
    assert report["ok"] and [line["line"] for line in report["lines"]] == [2, 4, 5, 6, 7, 9, 10, 11]
    movel, timer = report["lines"][1], report["lines"][3]
    # 50 mm are too short for 250 mm/s: two ramps of a mean acceleration of 0.8 m/s2, up to 200 mm/s and down.
    assert movel["time_s"] == pytest.approx(0.5)
    assert timer["time_s"] == 0.1
    once = [line for line in GOOD if line is CIRCLE or not {"loop", "end_loop"} & set(line)]
    assert report["time_s"] > zk.json("check", program(once), "-m", "ZK65-B", *FROM_START)["time_s"] + 1
    slowly = zk.json("check", program(once), "-m", "ZK65-B", *FROM_START, "--speed", 10)["lines"]
    assert slowly[1]["time_s"] > 2 and slowly[3]["time_s"] == 0.1


@pytest.mark.parametrize("model, lines, fault", [
    ("ZK65-B", [joints(0, 20, 70, 0, 140, 0)], "joint 5 beyond its limits: 140 deg"),
    ("ZK75-B", [joints(*START)], "6 joints for an arm of 7"),
    ("ZK65-B", [tool("movej_p", THERE.shifted(x=2))], "out of reach"),
    ("ZK65-B", [joints(*START), tool("movel", THERE.shifted(x=-0.5))], "out of reach, "),
    ("ZK65-B", [joints(0, 20, 70, 0, 0, 0), tool("movel", THERE)], "a singular place on the path"),
    ("ZK65-B", [joints(0, 20, 70, 0, 2, 0), tool("movel", at(0, 20, 70, 0, 2, 0).shifted(y=0.08))], "would jump, 0 %"),
    ("ZK65-B", [joints(0, 20, 70, 0, 8, 0), tool("movel", at(0, 20, 70, 0, 8, 0).shifted(y=0.08))],
     "joint 4 would turn at 340 deg/s, faster than it can"),
    ("ZK65-B", [joints(0, 20, 70, 170, 60, 0), tool("movej_p", at(0, 20, 70, 185, 60, 0))], "on another branch"),
    ("ZK65-B", [{**CIRCLE, "pose": {"pose_via": numbers(THERE.shifted(z=0.03)),
                                    "pose_to": numbers(THERE.shifted(z=0.06))}}], "they make no circle"),
])
def test_finds_faults(zk, program, model, lines, fault):
    report = zk.json("check", program(lines), "-m", model, *(FROM_START if model == "ZK65-B" else []), status=1)
    assert fault in report["lines"][-1]["fault"]
    assert all(line["fault"] is None for line in report["lines"][:-1])


@pytest.mark.parametrize("lines, sentence", [
    ("", "is no program: no line of it has a command"),
    ("\0ELF", "is no program: it is no text"),
    ("move to the left\n", "line 1: the line is no JSON object"),
    (json.dumps(joints(*START))[:40], "line 1: the line is no JSON object"),
    ([{"loop": 2}, joints(*START)], "is cut short: a loop is not ended"),
    ([joints(*START), {"end_loop": True}], "line 2: no loop is open"),
    ([joints(*START, trajectory_connect=1)], "its last motion waits"),
    ([{"command": "set_arm_power"}], "line 1: a program has no command 'set_arm_power'"),
    ([joints(*START, v=200)], '"v" is no whole number from 1 to 100'),
    ([joints(400, 0, 0, 0, 0, 0)], "a joint is beyond 360 degrees"),
    ([joints(1, 2, 3)], '"joint" is no list of six or seven numbers'),
    ([tool("movel", THERE.shifted(x=300))], "more than 5 m away"),
    ([{**CIRCLE, "loop": -1}], '"loop" is no whole number'),
])
def test_refuses_what_is_no_program(zk, program, lines, sentence):
    path = program(lines)
    for words in (["check", "-m", "ZK65-B", path], ["send", "--id", 1, path], ["run", "-y", path]):
        assert sentence in zk(*words, status=2)
    assert "cannot be read" in zk("check", "/nowhere", "-m", "ZK65-B", status=2)


@pytest.mark.zk_base(joints="0,20,70,0,90,0", speed="max")
def test_sends_and_runs(zk_on, arm, program):
    path = program(GOOD)
    end = THERE.shifted(y=0.02, z=0.02)
    screen, terminal = pty.openpty()
    sending = zk_on.start("send", path, "--id", 3, stderr=terminal)
    assert sending.wait(60) == 0 and b"100 %" in os.read(screen, 100_000)
    for which in (path, 3):
        arm.move_joints(START, speed=100).wait()
        assert "ended" in zk_on("run", which, "-y", "--speed", 100)
        assert arm.pose().distance(end) < (1e-4, 2e-3)
    assert "keeps no program 4" in zk_on("run", 4, "-y", status=2)
    assert "nobody can be asked" in zk_on("run", path, status=2)
    assert "line 1: joint 5 beyond" in zk_on("run", program([joints(0, 0, 0, 0, 140, 0)]), "-y", status=2)
    assert arm.pose().distance(end) < (1e-4, 2e-3)


@pytest.mark.zk_base(joints="0,20,70,0,90,0", speed=1)
def test_ctrl_c_stops_a_program(zk_on, arm, program):
    running = zk_on.start("run", program([joints(*START[:5], 90, v=5)]), "-y", "--speed", 100)
    while arm.joints()[5] < 1:
        assert running.poll() is None
    running.send_signal(signal.SIGINT)
    running.communicate(timeout=60)
    assert running.returncode == -signal.SIGINT
    arm.wait_idle(10)
    assert arm.joints()[5] < 80


@pytest.mark.zk_base(joints="0,20,70,0,90,0", speed=1)
def test_a_program_that_does_not_come_to_its_end(zk_on, simulator, arm, program):
    path = program([joints(60, *START[1:], v=20), joints(*START, v=20)])
    for end, sentence in [(arm.stop, "ended before its end"),
                          (lambda: simulator.fault(emergency_stop=1), "the arm is in error")]:
        arm.move_joints(START, speed=100).wait()
        running = zk_on.start("run", path, "-y", "--speed", 100)
        while arm.joints()[0] < 1:
            assert running.poll() is None
        end()
        assert sentence in running.communicate(timeout=60)[1] and running.returncode == 1
    assert "the arm is in error" in zk_on("run", path, "-y", status=1)


def test_waypoints(zk_on, arm):
    assert zk_on.json("waypoints") == []
    for i in range(32):  # more than a page
        point = interface.GlobalWaypoint(point_name=f"place {i:02}".encode(), work_frame=b"World", tool_frame=b"Arm_Tip")
        point.joint[:6], point.pose.position.z = [i, *START[1:]], 0.3
        arm.call("Add_Global_Waypoint", point)
    rows = zk_on.json("waypoints")
    assert [(row["name"], row["joints_deg"][0]) for row in rows] == [(f"place {i:02}", i) for i in range(32)]
    assert rows[0]["pose"]["position_m"] == [0, 0, 0.3]
