"""Looking, moving, computing."""
import signal

import pytest

HOME = [0, 20, 70, 0, 90, 0]


@pytest.mark.zk_base(model="ZK75-6F", joints="0,20,30,70,0,90,0")
def test_looks_at_an_arm(zk_on, simulator):
    info = zk_on.json("info")
    assert (info["model"], info["joints"], info["port"]) == ("ZK75-6F", 7, simulator.port)
    state = zk_on.json("state")
    assert [joint["position_deg"] for joint in state["joints"]] == pytest.approx([0, 20, 30, 70, 0, 90, 0], abs=0.01)
    assert state["powered"] and not state["errors"]
    assert "joint  position [deg]" in zk_on("state")


def test_names_of_arms(zk_on, simulator, tmp_path):
    names = tmp_path / "arms.json"
    names.write_text(f'{{"left": "127.0.0.1:{simulator.port}", "right": "127.0.0.1:1"}}')
    zk_on.environment["ZK_ARMS"] = str(names)
    left, right = zk_on.json("list", status=1)
    assert (left["arm"], left["model"], left["answer"]) == ("left", "ZK65-B", "ok")
    assert right["model"] is None and "refused" in right["answer"]
    assert zk_on.json("info", "--arm", "left")["port"] == simulator.port
    names.write_text("[1")
    assert "is no list of arms" in zk_on("list", status=2)


def test_computes(zk, arm):
    forward = zk.json("fk", "-m", "ZK65-B", *HOME)
    pose = arm.model().forward(HOME)
    assert forward["pose"]["position_m"] == pytest.approx([pose.x, pose.y, pose.z], abs=1e-5)
    target = [*forward["pose"]["position_m"], *forward["pose"]["euler_deg"]]
    solutions = zk.json("ik", "-m", "ZK65-B", *target)["solutions"]
    assert any(one["joints_deg"] == pytest.approx(HOME, abs=0.01) for one in solutions)
    for one in solutions:
        again = zk.json("fk", "-m", "ZK65-B", *one["joints_deg"])
        assert again["pose"]["position_m"] == pytest.approx(target[:3], abs=1e-5)
    assert zk.json("ik", "-m", "ZK65-B", 2, 0, 0, 0, 0, 0, status=1)["cause"] == "no posture brings the tool there"


def test_says_that_its_output_is_lost(zk):
    with open("/dev/full", "w") as full:
        process = zk.start("urdf", "-m", "ZK65-B", stdout=full)
        assert "zk: standard output cannot be written: No space" in process.communicate(timeout=60)[1]
    assert process.returncode == 1


def test_explains(zk):
    assert zk.json("explain", -12) == zk.json("explain", "ZK_LOST") == zk.json("explain", "lost")
    assert [error["of"] for error in zk.json("explain", "0x1001")["errors"]] == ["arm", "system"]
    assert zk.json("explain", 4097) == zk.json("explain", "0x1001")


@pytest.mark.zk_base(joints="0,20,70,0,90,0", speed="max")
def test_moves(zk_on, arm):
    before = arm.joints()
    assert "joint 6 by 40 degrees" in zk_on("move", "joints", *HOME[:5], 40, "--dry-run")
    assert list(arm.joints()) == list(before)
    assert "arrived" in zk_on("move", "joints", *HOME[:5], "0.5rad", "--yes", "--speed", 100)
    assert arm.joints()[5] == pytest.approx(28.648, abs=0.01)
    there = arm.pose().shifted(z=0.02)
    turned = [f"{angle}rad" for angle in (there.rx, there.ry, there.rz)]
    zk_on("move", "line", there.x, there.y, f"{1000 * there.z}mm", *turned, "-y")
    assert arm.pose().distance(there) < (1e-4, 2e-3)
    assert "not moved" not in zk_on("home", "-y", "--max-step", 180)
    assert arm.joints() == pytest.approx([0] * 6, abs=0.01)
    assert "is at its initial position" in zk_on("home")


@pytest.mark.zk_base(joints="0,20,70,0,90,0", speed=1)
def test_ctrl_c_and_stop_end_a_move(zk_on, arm):
    for end in (lambda process: process.send_signal(signal.SIGINT), lambda _: zk_on("stop")):
        start = arm.joints()[5]
        moving = zk_on.start("move", "joints", *HOME[:5], 90, "-y", "--speed", 5)
        while arm.joints()[5] < start + 1:
            assert moving.poll() is None
        end(moving)
        moving.communicate(timeout=60)
        assert moving.returncode in (-signal.SIGINT, 1)
        arm.wait_idle(10)
        assert arm.joints()[5] < 80


@pytest.mark.zk_base(joints="0,20,70,0,90,0", speed=1)
def test_a_stop_waits_for_no_answer(zk_on, simulator, arm):
    arm.move_joints([*HOME[:5], 90], 5, wait=False)
    simulator.fault(silent_on=["get_current_work_frame"])
    assert "a stop was sent" in zk_on("stop", status=3)
    simulator.fault(silent_on=[])
    arm.wait_idle(10)
    assert arm.joints()[5] < 80


@pytest.mark.parametrize("words, status, sentence", [
    (["state"], 2, "no arm is named"),
    (["state", "--arm", "127.0.0.1:1"], 3, "zk: 127.0.0.1 port 1: Connection refused. Wait"),
    (["state", "--arm", "127.0.0.1:x"], 2, "no port"),
    (["state", "--arm", "nowhere.invalid"], 3, "Name or service not known"),
    (["fk", "-m", "ZK66", *HOME], 2, "no arm is called 'ZK66'"),
    (["fk", "-m", "ZK65-B", 1, 2, 3], 2, "3 joints for an arm of 6"),
    (["fk", "-m", "ZK65-B", 400, 0, 0, 0, 0, 0], 2, "joint 1 is 400"),
    (["ik", "-m", "ZK65-B", 300, 0, 0, 0, 0, 0], 2, "write 300mm"),
    (["ik", "-m", "ZK65-B", "nan", 0, 0, 0, 0, 0], 2, "'nan' is no length"),
    (["explain", "nothing"], 2, "'nothing' is no status"),
    (["explain", "0x12345"], 2, "no error word"),
    (["bogus"], 2, "no command 'bogus'"),
    (["move", "sideways"], 2, "A subcommand is required"),
    (["move", "joints", *HOME, "--speed", "200"], 2, "--speed: Value 200 not in range 1 to 100"),
    (["state", "--colour"], 2, "--colour"),
])
def test_refuses_before_anything_is_sent(zk, words, status, sentence):
    assert sentence in zk(*words, status=status)


@pytest.mark.parametrize("words, sentence", [
    (["joints", *HOME[:5], 170], "joint 6 would turn 170 degrees, further than --max-step"),
    (["joints", *HOME[:4], 140, 0], "joint 5 would go to 140 degrees, beyond its limits"),
    (["pose", 2, 0, 0, 0, 0, 0], "the pose cannot be reached: no posture"),
    (["line", -0.9, 0, 0.3, 180, 0, 0], "the line cannot be followed: pose"),
    (["joints", *HOME], "nobody can be asked here"),
])
@pytest.mark.zk_base(joints="0,20,70,0,90,0")
def test_refuses_to_move(zk_on, arm, words, sentence):
    before = arm.joints()
    assert sentence in zk_on("move", *words, status=2)
    assert list(arm.joints()) == list(before)


@pytest.mark.parametrize("option, sentence", [("emergency_stop=1", "in error"), ("power_loss=1", "is off")])
def test_an_arm_that_may_not_move(zk, option, sentence):
    import zk_base
    with zk_base.Simulator(fault=option) as simulator:
        zk.environment["ZK_ARM"] = f"127.0.0.1:{simulator.port}"
        assert sentence in zk("move", "joints", 0, 0, 0, 0, 0, 0, "--dry-run", status=1)
