"""Robot descriptions and pictures of a model."""
import math
import random
import re
import subprocess
import xml.etree.ElementTree as ElementTree

import PyKDL as kdl
import pytest

import zk_base


def numbers(element, key):
    return [float(word) for word in element.get(key).split()]


def chain_of(robot, tip):
    """The KDL chain from the root of a robot description to a link."""
    joints = {joint.find("child").get("link"): joint for joint in robot.findall("joint")}
    segments = []
    while tip in joints:
        joint = joints[tip]
        origin = joint.find("origin")
        frame = kdl.Frame(kdl.Rotation.RPY(*numbers(origin, "rpy")), kdl.Vector(*numbers(origin, "xyz")))
        if joint.get("type") == "revolute":
            axis = frame.M * kdl.Vector(*numbers(joint.find("axis"), "xyz"))
            turning = kdl.Joint(tip, frame.p, axis, kdl.Joint.RotAxis)
        else:
            turning = kdl.Joint(tip, kdl.Joint.Fixed)
        segments.insert(0, kdl.Segment(turning, frame))
        tip = joint.find("parent").get("link")
    chain = kdl.Chain()
    for segment in segments:
        chain.addSegment(segment)
    return chain


@pytest.mark.parametrize("name", zk_base.Model.names())
def test_robot_description(zk, tmp_path, name):
    path = tmp_path / "arm.urdf"
    path.write_text(zk("urdf", "-m", name))
    subprocess.run(["check_urdf", path], check=True, stdout=subprocess.DEVNULL)
    robot = ElementTree.parse(path)
    chain, model = chain_of(robot, "tool"), zk_base.Model(name)
    solver, frame = kdl.ChainFkSolverPos_recursive(chain), kdl.Frame()
    choice = random.Random(1)
    low, high = model.limits
    for _ in range(20):
        degrees = [choice.uniform(*pair) for pair in zip(low, high)]
        joints = kdl.JntArray(len(degrees))
        for i, angle in enumerate(degrees):
            joints[i] = math.radians(angle)
        assert solver.JntToCart(joints, frame) >= 0
        pose = model.forward(degrees)
        there = kdl.Frame(kdl.Rotation.RPY(pose.rx, pose.ry, pose.rz), kdl.Vector(pose.x, pose.y, pose.z))
        beside = kdl.diff(frame, there)
        assert beside.vel.Norm() < 1e-6 and beside.rot.Norm() < 1e-6
    limits = [joint.find("limit") for joint in robot.findall("joint[@type='revolute']")]
    assert [numbers(limit, "upper")[0] for limit in limits] == pytest.approx([math.radians(angle) for angle in high])
    assert all(numbers(limit, "velocity")[0] > 1 for limit in limits)


def test_map(zk, tmp_path):
    path = tmp_path / "reach.svg"
    report = dict(line.split()[:2] for line in zk("map", "-m", "ZK65-B", "-o", path, "--poses", 300_000).splitlines())
    assert float(report["reach"]) == pytest.approx(0.256 + 0.21 + 0.144, abs=2e-3)  # the stretched arm
    assert float(report["highest"]) == pytest.approx(0.2405 + 0.256 + 0.21 + 0.144, abs=2e-3)
    half_plane, plane = ElementTree.parse(path).getroot().findall("{*}g")
    for picture, width in (half_plane, 120), (plane, 240):
        cells = [(int(x) + length, int(y)) for run in picture.findall("{*}g/{*}path") for x, y, length in
                 ((x, y, int(n)) for x, y, n in re.findall(r"M(\d+) (\d+)h(\d+)", run.get("d")))]
        right = max(x for x, _ in cells) - (0 if width == 120 else 120)
        assert 0.59 < right * 1.8 / 240 < 0.63  # from -0.9 to 0.9 m


@pytest.mark.parametrize("words, sentence", [
    (["urdf", "-m", "ZK66"], "no arm is called 'ZK66'"),
    (["map", "-m", "ZK65-B", "-o", "reach.gif"], "does not end in .svg"),
    (["map", "-m", "ZK65-B", "-o", "/nowhere/reach.svg"], "cannot be written"),
])
def test_refuses(zk, words, sentence):
    assert sentence in zk(*words, status=2)
