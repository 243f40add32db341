"""The examples, against simulated arms. They check what they show."""
import subprocess
import sys
from pathlib import Path

import pytest

import zk_base

SOURCES = Path(__file__).parents[2]


@pytest.mark.parametrize("example, arms, speed", [
    ("01_first_move", 1, 3), ("03_pick_and_place", 1, 10), ("05_offline_kinematics", 0, 1), ("06_stream_joints", 1, 1),
    ("12_two_arms_connected", 2, 5)])
def test_an_example_does_what_it_shows(example, arms, speed):
    started = [zk_base.Simulator(model, speed=speed, joints="0,20,70,0,90,0" + ",0" * (model[:4] == "ZK75"),
                                 object="300,0.5")
               for model in ("ZK65-6F", "ZK75-B")[:arms]]
    words = [word for one in started for word in ("127.0.0.1", str(one.port))]
    done = subprocess.run([sys.executable, SOURCES / "examples" / "python" / f"{example}.py", *words],
                          capture_output=True, text=True, timeout=200)
    for one in started:
        one.close()
    assert (done.returncode, done.stderr) == (0, "")
