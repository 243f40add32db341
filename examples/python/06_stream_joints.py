"""Streams set-points: joint 1 swings by five degrees for two periods, at 50 set-points a second.

usage: 06_stream_joints.py HOST PORT
"""
import math
import queue
import sys
import time

import zk_base
from zk_base.interface import ZK_SET_POINT_FOLLOWED

PERIOD, SWINGS, CYCLE = 2.0, 2, 0.02  # seconds

with zk_base.Arm(sys.argv[1], int(sys.argv[2])) as arm:
    reports: queue.Queue = queue.Queue()
    start = arm.joints()
    begin, sent = time.monotonic(), 0
    with zk_base.on_motion_report(reports.put):
        while (now := time.monotonic() - begin) < PERIOD * SWINGS:
            target = start.copy()
            target[0] += 5 * math.sin(2 * math.pi * now / PERIOD)
            arm.stream_joints(target)
            sent += 1
            time.sleep(max(0.0, begin + sent * CYCLE - time.monotonic()))
        results = [reports.get(timeout=5).result for _ in range(sent)]
    refused = sum(result != ZK_SET_POINT_FOLLOWED for result in results)
    print(f"{sent} set-points, {refused} of them not followed; joint 1 is {arm.joints()[0] - start[0]:+.2f} degrees off")
    sys.exit(1 if refused else 0)
