"""Two arms in one program: both move at once, and each has its own model and its own stream.

usage: 12_two_arms_connected.py HOST PORT HOST PORT
"""
import asyncio
import sys

import zk_base


async def swing(arm, by):
    start = arm.joints()
    target = start.copy()
    target[0] += by
    await arm.move_joints(target, speed=40, wait=False).end(stop_if_cancelled=True)
    await arm.move_joints(start, speed=40, wait=False).end(stop_if_cancelled=True)
    return arm.model().forward(start).distance(arm.pose())


async def main(left, right):
    try:
        return await asyncio.gather(swing(left, 20), swing(right, -20))
    except zk_base.Error:
        left.stop()  # when one fails, both stop
        right.stop()
        raise


host, port, other_host, other_port = sys.argv[1:]
with zk_base.Arm(host, int(port)) as left, zk_base.Arm(other_host, int(other_port), keep_model=True) as right:
    for arm, (metres, radians) in zip((left, right), asyncio.run(main(left, right))):
        print(arm, f"is back within {metres:.1e} m and {radians:.1e} rad of its computed pose")
        if metres > 1e-4:
            sys.exit("it is elsewhere")
