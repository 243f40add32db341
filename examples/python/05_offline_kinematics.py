"""Kinematics without an arm: poses, joints, a path, and what the arm can reach in a plane.

usage: 05_offline_kinematics.py [MODEL]
"""
import sys

import numpy as np

import zk_base

model = zk_base.Model(sys.argv[1] if len(sys.argv) > 1 else "ZK65-B")
model.tool = zk_base.Pose(z=0.12)
joints = np.array([10, 20, 60, 15, 40, 20, 0])[:model.joint_count]
here = model.forward(joints)
print(model, "holds its tool at", here)

again = model.inverse(here, seed=joints + 2)
assert model.forward(again).distance(here) < (2e-5, 2e-4)
print(len(model.inverse_all(here, seed=joints)), "postures bring it there")

path = [here.shifted(z=0.001 * i) for i in range(50)]
rows = model.follow(path, seed=joints)
print("up by 5 cm the joints turn by at most", np.abs(np.diff(rows, axis=0)).max(), "degrees a millimetre")

try:
    model.inverse(here.shifted(x=5), seed=joints)
except zk_base.NoSolution as failure:
    print("5 m further:", failure.cause)

side = np.linspace(-0.8, 0.8, 33, dtype=np.float32)
targets = np.zeros((side.size, side.size), zk_base.pose_dtype)
targets["position"][..., 0], targets["position"][..., 1] = np.meshgrid(side, side)
targets["position"][..., 2] = 0.2
targets["euler"] = 3.14159, 0, 0  # looking down
seeds = np.tile(joints.astype(np.float32), (targets.size, 1))
_, status = model.inverse_batch(targets.ravel(), seeds, threads=2)
for row in (status == 0).reshape(targets.shape)[::2]:
    print("".join("#" if reached else "." for reached in row))
