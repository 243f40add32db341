"""Recording an arm; and recordings read by others, drawn, and replayed."""
import csv
import json
import math
import os
import signal
import subprocess
import xml.etree.ElementTree as ElementTree

import pytest

HOME = [0, 20, 70, 0, 90, 0]


def read_by_others(path):
    return json.loads(subprocess.run(["node", os.environ["ZK_FOREIGN_READER"], path], check=True, capture_output=True,
                                     timeout=120).stdout)


def states_of(path):
    return read_by_others(path)["topics"]["/arm_state"]["messages"]


@pytest.fixture
def run(zk_on, tmp_path):
    """A recording of a motion of joint 1 from 0 to 40 degrees, with its frames."""
    path = tmp_path / "run.mcap"
    recorder = zk_on.start("record", "-o", path, "--wire", stderr=subprocess.STDOUT)
    while not path.exists():  # it is connected, and has the port of the states
        assert recorder.poll() is None, recorder.stdout.read()
    while path.stat().st_size < 400_000:  # two chunks of states, of which a cut leaves one
        for angle in (0, 40):
            zk_on("move", "joints", angle, *HOME[1:], "-y", "--speed", 100)
    recorder.send_signal(signal.SIGINT)
    out, _ = recorder.communicate(timeout=60)
    assert recorder.returncode == 0
    numbers = [state["sequence"] for state in states_of(path)]
    assert f": {len(numbers)} states, {numbers[-1] - numbers[0] + 1 - len(numbers)} missed" in out
    return path


@pytest.mark.zk_base(joints="0,20,70,0,90,0", speed=1)
def test_others_read_a_recording(run, arm):
    recording = read_by_others(run)
    assert recording["metadata"][0]["model"] == "ZK65-B"
    topics = {name: topic["messages"] for name, topic in recording["topics"].items()}
    assert recording["count"] == sum(map(len, topics.values()))
    states, joints, transforms = topics["/arm_state"], topics["/joint_states"], topics["/tf"]
    assert len(states) == len(joints) == len(transforms) > 10
    assert {round(state["position_deg"][0]) for state in states} > {0, 40}
    model = arm.model()
    for state, joint, moved in zip(states, joints, transforms):
        assert joint["name"] == [f"joint{i}" for i in range(1, 7)]
        assert joint["position"] == pytest.approx([math.radians(one) for one in state["position_deg"]], abs=1e-9)
        assert joint["header"] == state["header"]
        transform = moved["transforms"][0]["transform"]
        pose = model.forward(state["position_deg"])
        place = [transform["translation"][axis] for axis in "xyz"]
        assert place == pytest.approx([pose.x, pose.y, pose.z], abs=1e-4)
        turn = [transform["rotation"][part] for part in "wxyz"]
        assert turn == pytest.approx(state["tool_quaternion_wxyz"], abs=1e-6)
    assert any(line["name"] == "wire" and '"command"' in line["msg"] for line in topics["/rosout"])


@pytest.mark.zk_base(joints="0,20,70,0,90,0", speed=1)
def test_what_becomes_of_a_recording(run, zk_on, arm, tmp_path):
    recorded = [state["position_deg"] for state in states_of(run)]
    rows = list(csv.DictReader(zk_on("export", run).splitlines()))
    assert [float(row["joint1_position_deg"]) for row in rows] == pytest.approx([one[0] for one in recorded], abs=1e-4)
    picture = tmp_path / "run.svg"
    zk_on("plot", run, "-o", picture)
    lines = [one for one in ElementTree.parse(picture).iter() if one.tag.endswith("polyline")]
    assert len(lines) == 3 * 6 + 6 + 3 + 2 and all(one.get("points") for one in lines)
    arm.move_joints([10, *HOME[1:]], 100)
    assert "replayed" in zk_on("replay", run, "--yes", "--speed", 100)
    assert arm.joints() == pytest.approx(recorded[-1], abs=0.1)

    replaying = zk_on.start("replay", run, "--yes", "--speed", 100)
    while "arrived" not in replaying.stdout.readline():
        assert replaying.poll() is None
    arm.stop()
    assert "the arm does not follow" in replaying.communicate(timeout=60)[1] and replaying.returncode == 1

    whole = run.read_bytes()
    run.write_bytes(whole[:50_000] + bytes([whole[50_000] ^ 1]) + whole[50_001:])
    assert "is damaged" in zk_on("replay", run, "-y", status=2)
    run.write_bytes(whole[:-len(whole) // 3])  # as a recorder leaves it that was killed
    assert "is cut short: nothing is moved" in zk_on("replay", run, "-y", status=2)


@pytest.mark.zk_base(joints="0,20,70,0,90,0", speed=1)
def test_a_recording_for_another_arm(run, zk, tmp_path):
    import zk_base
    with zk_base.Simulator(model="ZK75-B") as other:
        zk.environment["ZK_ARM"] = f"127.0.0.1:{other.port}"
        assert "6 joints, this arm has 7" in zk("replay", run, "-y", status=2)
    assert "6 joints, not of a 75" in zk("view", run, "--model", "ZK75-B", status=2)


def test_files_that_are_no_recording(zk_on, tmp_path):
    text = tmp_path / "text.mcap"
    text.write_text("hello")
    magic = tmp_path / "magic.mcap"
    magic.write_bytes(b"\x89MCAP0\r\n")
    for words, sentence in [(["plot", text, "-o", "x.svg"], "is no MCAP file"),
                            (["plot", magic, "-o", "x.svg"], "is cut short before its first state"),
                            (["replay", tmp_path / "none.mcap"], "cannot be read: No such file"),
                            (["export", tmp_path], "is no MCAP file"),
                            (["view", text], "is no MCAP file"),
                            (["view", text, "127.0.0.1"], "a recording is played alone"),
                            (["view", text, "--control"], "a recording has nothing"),
                            (["record", "-o", "run.txt"], "neither in .mcap nor in .csv"),
                            (["record", "-o", "run.csv", "--wire"], "a table has no room")]:
        assert sentence in zk_on(*words, status=2)
    assert "cannot be written" in zk_on("record", "-o", tmp_path / "no" / "run.mcap", "--seconds", 1, status=1)


@pytest.mark.zk_base(speed=1)
def test_an_arm_that_dies(zk_on, simulator, tmp_path):
    path = tmp_path / "run.mcap"
    recorder = zk_on.start("record", "-o", path)
    while not path.exists() or path.stat().st_size < 100_000:
        assert recorder.poll() is None
    simulator.close()
    _, err = recorder.communicate(timeout=60)
    assert recorder.returncode == 3 and "the arm is lost after" in err
    assert len(states_of(path)) > 100  # the file is whole


@pytest.mark.zk_base(no_push=True)
def test_an_arm_that_pushes_nothing(zk_on, tmp_path):
    for seconds in (0.1, 0):
        assert "The controller pushes no state" in zk_on("record", "-o", tmp_path / "run.csv", "--seconds", seconds,
                                                            status=1)
