"""Kinematics by numpy: the arrays are the caller's own, the answers those of the single calls."""
import copy
import pickle
import re
import subprocess

import numpy as np
import pytest

import zk_base
from zk_base import Model, Pose, pose_dtype
from zk_base._simulator import _program


def test_the_names_are_those_of_the_simulator():
    text = subprocess.run([_program(), "--help"], capture_output=True, text=True, check=True).stdout
    assert set(Model.names()) == set(re.findall(r"\b\w+-(?:B|ZF|6F)\b", text.split("Models:")[1]))
    with pytest.raises(ValueError, match="ZK65-B"):
        Model("ZK99-B")


@pytest.mark.parametrize("name", ["ZK75-6F", "ORB63-ZF", "62-B"])
def test_a_name_is_that_of_the_controller(name):
    with zk_base.Simulator(name) as simulator, simulator.connect() as arm:
        ours, theirs = Model(name), arm.model()
        assert ours.joint_count == arm.joint_count == theirs.joint_count
        assert arm.pose().distance(ours.forward(arm.joints())) < (1e-5, 1e-3)
        assert ours.limits[1] == pytest.approx(theirs.limits[1], abs=0.1)


def test_frames_and_limits():
    model = Model("ZK65-B")
    model.tool, model.work_frame, model.mounting = Pose(z=0.1, rx=0.2), (0.3, 0, 0, 0, 0, 1), (0, 90, 0)
    assert model.tool.rx == pytest.approx(0.2) and model.work_frame.x == pytest.approx(0.3)
    assert model.mounting == pytest.approx((0, 90, 0))
    model.limits = [-10] * 6, [10] * 6
    assert model.limit_distance([0, 0, 0, 0, 8, 0]) == (pytest.approx(2, abs=1e-4), 5)
    for other in (model.copy(), copy.copy(model), copy.deepcopy(model)):
        other.tool = Pose()
        assert model.tool.z == pytest.approx(0.1)
    with pytest.raises(TypeError, match="pickled"):
        pickle.dumps(model)


def test_one_pose():
    model = Model("ZK65-B")
    seed = np.array([10, 20, 60, 15, 40, 20])
    target = model.forward(seed + 2)
    assert model.inverse(target, seed) == pytest.approx(seed + 2, abs=1e-2)
    rows = model.inverse_all(target, seed)
    assert len(rows) > 1 and rows[0] == pytest.approx(seed + 2, abs=1e-2)
    step = model.forward(seed + 2 + np.eye(6)[0] * 0.1)
    speed = model.jacobian(seed + 2) @ np.radians(np.eye(6)[0] * 0.1)
    assert speed[:3] == pytest.approx([step.x - target.x, step.y - target.y, step.z - target.z], abs=1e-5)
    assert model.manipulability(seed) > 0
    for pose, options, cause in ((Pose(5), {}, "out of reach"), (target, {"max_step": 0.5}, "larger step")):
        with pytest.raises(zk_base.NoSolution) as caught:
            model.inverse(pose, seed, **options)
        assert caught.value.cause == cause and cause in str(caught.value)
    path = [target.shifted(z=0.004 * i) for i in range(10)]
    assert model.forward(model.follow(path, seed)[-1]).distance(path[-1]) < (1e-5, 1e-4)
    with pytest.raises(zk_base.NoSolution) as caught:
        model.follow([*path, Pose(5)], seed)
    assert caught.value.followed == 10


@pytest.mark.parametrize("name", ["ZK65-B", "ZK75-B"])
def test_batches_are_the_single_calls_without_a_copy(name):
    model, random = Model(name), np.random.default_rng(1)
    least, most = model.limits
    joints = random.uniform(least, most, (500, model.joint_count)).astype(np.float32)
    poses = np.zeros(500, pose_dtype)
    assert model.forward_batch(joints, out=poses, threads=2) is poses
    assert model._rows(joints, "joints") is joints and model._poses(poses) is poses
    assert bytes(model.forward(joints[7]).position) == poses[7]["position"].tobytes()
    poses[3]["position"] = 5
    out = np.zeros_like(joints)
    found, status = model.inverse_batch(poses, joints, out=out, threads=2)
    assert found is out and status[3] == 21 and (out[3] == 0).all() and (np.delete(status, 3) == 0).all()
    one = model.inverse(Pose.of(poses[7]), joints[7])
    assert model.forward(one).distance(Pose.of(poses[7])) < (2e-5, 2e-4)
    with pytest.raises(ValueError, match="shape"):
        model.forward_batch(joints[:, :5])
    with pytest.raises(ValueError, match="shape"):
        model.forward_batch(joints, out=poses[:10])
    with pytest.raises(zk_base.BadArgument):
        model.forward_batch(joints, threads=100)


def test_poses_compose():
    a, b = Pose(0.1, 0.2, 0.3, 0.4, 0.5, 0.6), Pose(-0.3, 0, 0.2, 1, -1, 2)
    assert (a @ b @ b.inverse()).distance(a) < (1e-6, 1e-5)
    assert (a @ b).matrix() == pytest.approx(a.matrix() @ b.matrix(), abs=1e-6)
    assert Pose.from_quaternion((1, 2, 3), [getattr(b.quaternion, one) for one in "wxyz"]).distance(
        Pose(1, 2, 3, *tuple(b)[3:])) < (1e-6, 1e-5)
    assert a.moved(z=1).distance(a)[0] == pytest.approx(1, abs=1e-6)
    assert a == Pose.of(tuple(a)) != b and a != tuple(a)
    with pytest.raises(TypeError, match="hash"):
        hash(a)
