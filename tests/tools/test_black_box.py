"""The black box of the library: what it keeps, and who reads it."""
import json
import os
import re
import signal
import socket
import struct
import subprocess
import sys
import time
from pathlib import Path

import pytest

HOME = [0, 20, 70, 0, 90, 0]

# A program that uses the library: it connects, carries out its argument, and waits for a line.
PROGRAM = """
import os, sys, zk_base
arm = zk_base.Arm("127.0.0.1", {port})
{do}
print("done", flush=True)
sys.stdin.readline()
"""


@pytest.fixture
def program(simulator, tmp_path):
    """Starts programs that have done something; their black boxes are in `program.boxes`."""
    class Program:
        boxes = tmp_path / "boxes"
        started = []

        def __call__(self, do="pass", boxes=None, **options):
            process = subprocess.Popen([sys.executable, "-c", PROGRAM.format(port=simulator.port, do=do)], text=True,
                                       stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                                       env={**os.environ, "ZK_BLACK_BOX": str(boxes or self.boxes)}, **options)
            self.started.append(process)
            assert process.stdout.readline() == "done\n", process.stderr.read()
            return process

        def end(self, process):
            out = process.communicate("\n", timeout=60)
            assert process.returncode == 0, out
            return out[1]

        def files(self):
            return sorted(path.name for path in self.boxes.iterdir())
    Program.boxes.mkdir()
    yield Program()
    for process in Program.started:
        process.kill()
        process.communicate()


def wait_for(condition):
    end = time.monotonic() + 60
    while not condition():
        assert time.monotonic() < end
        time.sleep(0.01)


MOVE = "arm.move_joints([10, 20, 70, 0, 90, 0], 100)"
SEE_IT = MOVE + "\nnext(state for state in arm.states() if state.joints[0] == 10)"


@pytest.mark.zk_base(joints="0,20,70,0,90,0", speed=1)
def test_a_killed_program(program, zk, tmp_path):
    killed = program(SEE_IT)
    killed.send_signal(signal.SIGKILL)
    killed.wait()
    [name] = program.files()
    box = program.boxes / name
    rows = [row.split(",") for row in zk("export", box).splitlines()[1:]]
    assert rows[0][2] == "0" and rows[-1][2] == "10"
    zk("plot", box, "-o", tmp_path / "box.svg")
    player = zk.start("proxy", "--port", 0, "--play", box)
    port = int(re.search(r" port=(\d+)", player.stdout.readline())[1])
    with socket.create_connection(("127.0.0.1", port), timeout=60) as arm:
        arm.sendall(b'{"command":"movej"}\r\n')
        replies = map(json.loads, arm.makefile())
        assert next(replies)["receive_state"] is True
        assert next(reply for reply in replies if reply.get("state") == "current_trajectory_state")["trajectory_state"]
    player.terminate()
    player.communicate(timeout=60)

    whole = box.read_bytes()
    box.write_bytes(whole[:290_000] + bytes(1000) + whole[291_000:])  # as a record is left in the middle
    assert 0 < len(rows) - len(zk("export", box).splitlines()) + 1 < 10
    box.write_bytes(whole[:300_000])
    assert zk("export", box).count("\n") > 10
    box.write_bytes(whole[:32] + b"\xff" * 8 + whole[40:])
    assert "damaged" in zk("export", box, status=2)
    box.write_bytes(whole[:100])
    assert "is cut short" in zk("export", box, status=2)


@pytest.mark.zk_base(joints="0,20,70,0,90,0", speed=1)
def test_an_error_makes_a_copy(program, zk):
    refused = SEE_IT + """
for _ in range(2):
    try:
        arm.move_joints([400, 20, 70, 0, 90, 0], 100)
    except zk_base.Error:
        pass
"""
    process = program(refused)
    wait_for(lambda: any(name.endswith("-1-error.box") for name in program.files()))
    program.end(process)
    [copy] = program.files()  # one for both, and none of a program that ended as it should
    assert zk("export", program.boxes / copy).count("\n") > 1


@pytest.mark.zk_base(joints="0,20,70,0,90,0", speed=1)
def test_a_lost_controller_makes_a_copy(program, simulator):
    process = program()
    simulator.close()
    wait_for(lambda: any(name.endswith("-1-lost.box") for name in program.files()))
    program.end(process)


@pytest.mark.zk_base(speed=1)
def test_directories_that_do_not_serve(program, tmp_path):
    def small_files():
        import resource
        resource.setrlimit(resource.RLIMIT_FSIZE, (1_000_000, 1_000_000))
    for options in ({"boxes": tmp_path / "none"}, {"preexec_fn": small_files}):
        err = program.end(program(MOVE, **options))
        assert err.startswith("ZK_Base: no black box: ") and err.count("\n") == 1
    assert not program.files()


@pytest.mark.zk_base(speed=1)
def test_two_processes_and_a_child(program):
    first, second = program(), program("import ctypes\nif os.fork() == 0: ctypes.CDLL(None).exit(0)\nos.wait()")
    assert len(program.files()) == 2
    program.end(first)
    assert len(program.files()) == 1
    program.end(second)
    assert not program.files()


@pytest.mark.zk_base(joints="0,20,70,0,90,0", speed=1)
def test_the_ring_begins_again(program, zk):
    process = program("for _ in range(60_000): arm.stream_joints([0, 20, 70, 0, 90, 0])")
    process.kill()
    process.wait()
    [name] = program.files()
    times = [float(row.split(",")[0]) for row in zk("export", program.boxes / name).splitlines()[1:]]
    assert times == sorted(times) and len(times) > 100


@pytest.mark.zk_base(speed=1)
def test_the_last_files_of_killed_programs_stay(program):
    living, killed = program(), program()
    killed.kill()
    killed.wait()
    [left] = (path for path in program.boxes.iterdir() if path.name.endswith(f"-{killed.pid}.box"))
    head = left.read_bytes()[:4096]
    oldest = "zk-20200107T000000Z-7.box"
    for day in range(2, 8):  # the later the name, the earlier the last record, but after those of all others
        (program.boxes / f"zk-2020010{day}T000000Z-7.box").write_bytes(
            head[:48] + struct.pack("<q", 2**62 - day) + head[56:])
    for name in ("zk-20200101T000000Z-7-1-error.box", "zk-notes.box"):
        (program.boxes / name).write_bytes(head)
    (program.boxes / "zk-20200101T000000Z-7.box").write_bytes(b"no black box")
    before = set(program.files())
    program.end(program())
    assert before - set(program.files()) == {left.name, oldest}
    program.end(living)


def test_without_the_variable_nothing_is_kept(simulator, tmp_path):
    subprocess.run([sys.executable, "-c", f"import zk_base; zk_base.Arm('127.0.0.1', {simulator.port})"],
                   cwd=tmp_path, check=True, timeout=60)
    assert not list(Path(tmp_path).iterdir())
