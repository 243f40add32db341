"""What people do with an arm daily, against the simulator."""
import asyncio
import gc
import logging
import os
import queue
import signal
import threading
import time

import pytest

import zk_base
from zk_base import Pose

HOME = [0, 20, 70, 0, 90, 0]
AWAY = [90, 20, 70, 0, 90, 0]


def test_moves(arm, simulator):
    arm.move_joints(HOME, 100)
    assert arm.joints() == pytest.approx(HOME, abs=0.01)
    here = arm.pose()
    assert here.distance(arm.model().forward(HOME)) < (1e-5, 1e-3)
    up = here.shifted(z=0.05)
    arm.move_line(up, 100)
    assert arm.pose().distance(up) < (1e-5, 2e-3)
    arm.move_circle(up.shifted(x=0.02, y=0.02), up.shifted(x=0.04), 100)
    assert arm.pose().x == pytest.approx(up.x + 0.04, abs=1e-4)
    joined = arm.move_pose(here.moved(z=0.02), 100, joined=True)  # the tool looks down
    with pytest.raises(zk_base.BadArgument, match="joined"):
        joined.wait()
    arm.move_pose(tuple(here), 100)
    assert arm.pose().distance(here) < (1e-4, 2e-3)
    for wrong in (lambda: arm.move_joints(HOME, 0), lambda: arm.move_joints(HOME, 20, blend=101),
                  lambda: arm.move_joints(HOME, 20.0), lambda: arm.move_joints(HOME, "fast"),
                  lambda: arm.move_joints(HOME[:5]), lambda: arm.move_pose([1, 2, 3]), lambda: arm.move_pose(None),
                  lambda: arm.stop("gentle"), lambda: arm.move_joints([float("nan")] * 6),
                  lambda: arm.work_frames.get("a\0b"), lambda: arm.work_frames.get("a long name"),
                  lambda: arm.move_line(Pose(3000)),
                  lambda: arm.stream_joints([float("inf")] * 6), lambda: arm.stream_joints(HOME, expand=float("nan")),
                  lambda: arm.stream_pose(Pose(float("nan")))):
        with pytest.raises(zk_base.BadArgument, match="units"):
            wrong()
    with pytest.raises(zk_base.Refused, match="units"):
        arm.move_line(Pose(300))  # millimetres, perhaps


@pytest.mark.zk_base(speed=1)
def test_waiting_stopping_cancelling(arm):
    move = arm.move_joints(AWAY, 5, wait=False)
    assert not move.done()
    with pytest.raises(zk_base.Timeout):
        move.wait(0.05)
    with arm.deadline(0.05), pytest.raises(zk_base.Deadline):
        move.wait()
    cancelled = threading.Event()

    def cancel():
        while not cancelled.wait(0.05):
            arm.cancel()

    threading.Thread(target=cancel).start()
    with pytest.raises(zk_base.Cancelled):
        move.wait()
    cancelled.set()
    threading.Timer(0.1, move.stop).start()
    with pytest.raises(zk_base.Refused):
        move.wait()
    with pytest.raises(zk_base.Refused):  # again
        move.wait()
    assert move.done()


@pytest.mark.zk_base(speed=1)
def test_coroutines_wait_and_a_cancelled_task_stops_only_when_asked(arm, simulator):
    async def program():
        ticks = 0
        move = arm.move_joints([5, *arm.joints()[1:]], 100, wait=False)

        async def tick():
            nonlocal ticks
            while True:
                ticks += 1
                await asyncio.sleep(0.001)

        ticking = asyncio.ensure_future(tick())
        await move
        assert ticks > 1, "the loop goes on"
        for stop in (False, True):
            arm.move_joints([150, *arm.joints()[1:]], 1, wait=False)
            task = asyncio.ensure_future(arm.move_joints([150, *arm.joints()[1:]], 1, wait=False)
                                         .end(stop_if_cancelled=stop))
            await asyncio.sleep(0.05)
            task.cancel()
            with pytest.raises(asyncio.CancelledError):
                await task
            await asyncio.sleep(0.2)
            if not stop:
                assert simulator.ask("get_arm_current_trajectory")["type"] != "none", "the arm goes on"
                arm.stop()
            arm.wait_idle()
            assert arm.joints()[0] < 100
        ticking.cancel()
        arm.move_joints([150, *arm.joints()[1:]], 1, wait=False)
        with pytest.raises(asyncio.CancelledError), arm:
            raise asyncio.CancelledError
        while simulator.ask("get_arm_current_trajectory")["type"] != "none":
            await asyncio.sleep(0.01)
        assert simulator.ask("get_joint_degree")["joint"][0] < 100_000

    asyncio.run(program())


def test_state(arm):
    state = next(arm.states())
    assert state.joints == pytest.approx(arm.joints(), abs=0.01)
    assert state.pose.distance(arm.pose()) < (1e-4, 1e-2)
    assert 0 <= state.age < 1 and state.errors == (0, 0)
    assert next(arm.states()).sequence >= state.sequence
    arm.close()
    with pytest.raises(zk_base.NotConnected):
        arm.state()


@pytest.mark.zk_base(object="300,0.5")
def test_families(arm, simulator, tmp_path):
    arm.tool_frames.create("finger", Pose(z=0.1), 0.5)
    arm.tool_frames.select("finger")
    assert "finger" in arm.tool_frames.names()
    assert arm.tool_frames.current().pose.z == pytest.approx(0.1)
    arm.work_frames.create("table", Pose(0.3, 0, 0.1, rz=0.5))
    assert arm.work_frames.get("table").rz == pytest.approx(0.5, abs=1e-3)
    arm.gripper.pick()
    assert arm.gripper.state().actpos < 1000
    arm.gripper.release()
    arm.io.set_digital(2, True)
    simulator.world("input", kind="DI", IO_Num=3, value=1)
    assert arm.io.outputs()[0][1] and arm.io.inputs()[0][2]
    simulator.world("modbus", port=1, device=2, kind="holding_register", address=7, values=[258, 3])
    arm.modbus.open(1, 115200)
    assert arm.modbus.holding_registers(1, 7, 2, device=2) == [258, 3]
    arm.modbus.write_registers(1, 7, [65535], device=2)
    assert arm.modbus.holding_registers(1, 7, device=2) == [65535]
    project = tmp_path / "swing.txt"
    project.write_text('{"command":"movej","joint":[5000,0,0,0,0,0]}\n{"command":"movej","joint":[0,0,0,0,0,0]}\n')
    arm.programs.send(project, save_as=3)
    assert [one.id for one in arm.programs.list()] == [3]
    arm.programs.run(3)
    assert arm.programs.state().run_state == 0 and arm.joints()[0] == pytest.approx(0, abs=0.01)
    project.write_text("nonsense\n")
    with pytest.raises(zk_base.FileError, match="line 1"):
        arm.programs.send(project)
    arm.lift.move_to(100)
    assert arm.lift.height() == 100
    assert arm.powered() and arm.info()["product_version"] == "ZK65-B"


def test_callbacks_come_in_a_thread_of_python_and_may_fail(simulator, caplog):
    caplog.set_level(logging.DEBUG, "zk_base")
    seen = queue.Queue()

    def watch(arm, state, cause):
        seen.put((state, threading.current_thread().name))
        raise SystemExit("of the callback")

    with zk_base.on_connection(watch), simulator.connect() as arm:
        assert seen.get(timeout=10) == ("up", "zk_base callbacks")
        with zk_base.on_motion_report(seen.put):
            arm.stream_joints(arm.joints())
            assert seen.get(timeout=10).result == 0
        simulator.close()
        assert seen.get(timeout=10)[0] == "lost"
        for call in (arm.joints, lambda: list(arm.states())):
            with pytest.raises(zk_base.Lost):
                call()
    while not {logging.DEBUG, logging.INFO, logging.ERROR} <= {record.levelno for record in caplog.records}:
        time.sleep(0.01)
    assert "SystemExit: of the callback" in caplog.text and '"joint"' in caplog.text


def test_the_last_reference_closes(simulator):
    gc.disable()  # a cycle of references would keep all 20 connections
    for _ in range(21):
        one = simulator.connect()
        one.gripper, one.io, one.c.ZK_Cancel, one.move_joints(one.joints())
    gc.enable()


def test_a_forked_process_is_refused(arm, simulator):
    child = os.fork()
    if child == 0:
        signal.alarm(20)
        try:
            simulator.connect()
        except RuntimeError:
            os._exit(0)
        os._exit(1)
    assert os.waitpid(child, 0)[1] == 0


def test_no_callback_of_the_library_comes_in_the_main_thread(simulator, caplog, monkeypatch):
    caplog.set_level(logging.DEBUG, "zk_base")
    threads = set()

    class Queue:
        def put(self, item):
            threads.add(threading.current_thread())

    arm = simulator.connect()
    monkeypatch.setattr(zk_base._events, "_queue", Queue())  # Ctrl-C within a callback of ctypes is lost
    arm.stream_joints(arm.joints())
    arm.pause()
    arm.stop()
    arm.close()
    assert len(threads) > 1 and threading.main_thread() not in threads


def test_the_simulator_shows_faults_and_refuses_nonsense(arm, simulator):
    simulator.fault(over_temperature=2)
    with pytest.raises(ValueError, match="6 joints"):
        simulator.fault(over_temperature=7)
    while arm.errors() == (0, 0) and arm.measurements().err_flag[1] == 0:
        pass
    with pytest.raises(zk_base.Refused):
        arm.move_joints(AWAY)
    with pytest.raises(RuntimeError, match="unknown model"):
        zk_base.Simulator("ZK99-B")
