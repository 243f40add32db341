"""The first hour with an arm: what it is, where it stands, three moves, and a stop half way.

usage: 01_first_move.py HOST PORT
"""
import sys

import zk_base

with zk_base.Arm(sys.argv[1], int(sys.argv[2])) as arm:
    info = arm.info()
    print(info["product_version"], "with", info["ctrl_version"], "at", arm.joints())
    metres, radians = arm.pose().distance(arm.model().forward(arm.joints()))
    print(f"the reported pose and the computed one differ by {metres:.1e} m and {radians:.1e} rad")

    for joints in ([30, 20, 60, 10, 40, 0], [-30, 35, 45, -20, 60, 90], [0, 10, 80, 0, 60, 0]):
        arm.move_joints(joints + [0] * (arm.joint_count - 6), speed=40)
        print("at", arm.pose())

    far = arm.move_joints([90, -20, 30, 40, 20, 0] + [0] * (arm.joint_count - 6), speed=20, wait=False)
    while far.progress() < 0.3:
        pass
    arm.stop()
    try:
        far.wait()
        sys.exit("the stop came too late")
    except zk_base.Refused as failure:
        print(failure.text)
