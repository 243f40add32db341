"""Picks an object and places it elsewhere: approach from above, grip, lift, carry, set down.

usage: 03_pick_and_place.py HOST PORT
"""
import sys

import zk_base
from zk_base import Pose

READY = [0, 20, 70, 0, 90, 0]  # the tool looks down


def approach(arm, place):
    arm.move_pose(place.shifted(z=0.08), speed=50)
    arm.move_line(place, speed=20)


with zk_base.Arm(sys.argv[1], int(sys.argv[2]), stop_at_exit=True) as arm:
    arm.move_joints(READY, speed=50)
    here = arm.pose()
    pick, place = here.shifted(z=-0.08), here.moved(rz=0.5).shifted(x=0.05, y=0.15, z=-0.08)

    arm.gripper.release(speed=500)
    approach(arm, pick)
    arm.gripper.pick(speed=500, force=200, keep=True)
    held = arm.gripper.state()
    arm.move_line(pick.shifted(z=0.08), speed=20)
    approach(arm, place)
    arm.gripper.release(speed=500)
    arm.move_line(place.shifted(z=0.08), speed=20)
    arm.move_joints(READY, speed=50)
    print("gripped at", held.actpos, "and released at", arm.gripper.state().actpos)
    sys.exit(0 if held.actpos < arm.gripper.state().actpos else "nothing was gripped")
