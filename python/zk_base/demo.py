"""An arm at work: ``python3 -m zk_base.demo`` with a simulated one, with HOST and PORT behind it your own.

With a real arm: it moves, so keep clear.
"""
from __future__ import annotations

import sys
from contextlib import ExitStack

import zk_base


def watched(arm: zk_base.Arm, move: zk_base.Move) -> None:
    """Prints the joints while the arm moves."""
    while True:
        try:
            move.wait(0.5)
            break
        except zk_base.Timeout:
            print(f"    {move.progress():4.0%}", *(f"{angle:8.2f}" for angle in arm.state(1).joints))
    print("    there", *(f"{angle:8.2f}" for angle in arm.joints()))


def show(arm: zk_base.Arm) -> None:
    """Compares the controller's pose with the computed one, moves, and stops a move on its way."""
    print(f"ZK Base {zk_base.__version__}, {arm.info()['product_version']}, {arm!r}")
    model, start = arm.model(), arm.joints()
    print("reported pose  ", arm.pose())
    print("computed pose  ", model.forward(start))

    target = start.copy()
    target[0] += 30
    print("joint 1 by 30 degrees; Ctrl-C stops the arm")
    watched(arm, arm.move_joints(target, 20, wait=False))
    pose = arm.pose()
    try:
        joints = model.inverse(pose.moved(z=-0.03), target)
    except zk_base.NoSolution as failure:
        print("3 cm back:", failure)
    else:
        print("3 cm back along the tool, computed here")
        watched(arm, arm.move_joints(joints, 20, wait=False))

    print("back to the start, stopped on its way")
    move = arm.move_joints(start, 10, wait=False)
    try:
        move.wait(0.8)
    except zk_base.Timeout:
        arm.stop()
    try:
        move.wait()
    except zk_base.Refused as failure:
        print("   ", failure.text)
    arm.wait_idle()
    watched(arm, arm.move_joints(start, 30, wait=False))


def main(arguments: list[str]) -> None:
    """Connects, to a simulated arm without arguments."""
    with ExitStack() as stack:
        if arguments:
            arm = zk_base.Arm(arguments[0], *map(int, arguments[1:2]))
        else:
            arm = stack.enter_context(zk_base.Simulator("ZK65-6F", joints="0,20,70,0,90,0")).connect()
        show(stack.enter_context(arm))


if __name__ == "__main__":
    main(sys.argv[1:])
