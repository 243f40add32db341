"""Ctrl-C in a blocking call, as a real signal in a process of its own; the simulator is the witness."""
import signal
import subprocess
import sys
import time

import pytest

CHILD = """
import sys, threading, time, traceback, zk_base
def tell():  # when the main thread is within a blocking call
    frame_of = lambda: sys._current_frames()[threading.main_thread().ident]
    while not {{"interruptible", "doze"}} & {{one.name for one in traceback.extract_stack(frame_of())}}:
        time.sleep(0.01)
    print("ready", flush=True)
def doze():
    time.sleep(60)
arm = zk_base.Arm("127.0.0.1", {port})
{before}
try:
    threading.Thread(target=tell).start()
    {call}
except KeyboardInterrupt:
    print("interrupted", flush=True)
"""
MOVE = "arm.move_joints([170, 0, 0, 0, 0, 0], 1)"
MOVE_ON = "move = arm.move_joints([170, 0, 0, 0, 0, 0], 1, wait=False)"


@pytest.mark.zk_base(speed=1)
@pytest.mark.parametrize("before, call, faults", [
    ("", MOVE, {}),
    ("", "arm.call('Movej_Cmd', [170, 0, 0, 0, 0, 0], 1, 0, 0, True)", {}),
    (MOVE_ON, "move.wait()", {}),
    (MOVE_ON, "arm.joints()", {"silent_on": ["get_joint_degree"]}),
    ("", MOVE, {"silent_on": ["movej"]}),
    (MOVE_ON, "with arm: doze()", {}),
], ids=["move", "C call", "wait", "query", "no acknowledgement", "with"])
def test_stops_the_arm_and_raises(simulator, before, call, faults):
    simulator.fault(**faults)
    child = subprocess.Popen([sys.executable, "-c", CHILD.format(port=simulator.port, before=before, call=call)],
                             stdout=subprocess.PIPE, text=True)
    assert child.stdout.readline() == "ready\n"
    while simulator.ask("get_arm_current_trajectory")["type"] == "none" and "silent_on" not in faults:
        time.sleep(0.01)
    begin = time.monotonic()
    child.send_signal(signal.SIGINT)
    assert child.stdout.readline().startswith("interrupted")
    took = time.monotonic() - begin
    child.wait()
    simulator.fault(silent_on=[])
    while simulator.ask("get_arm_current_trajectory")["type"] != "none":
        time.sleep(0.01)
    assert simulator.ask("get_joint_degree")["joint"][0] < 100_000
    print(f"{took * 1000:.0f} ms")
