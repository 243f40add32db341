"""zk proxy: many programs share a controller."""
import json
import re
import signal
import socket
import struct
import subprocess
import threading
import time

import pytest

HOME = [0, 20, 70, 0, 90, 0]


class Wire:
    """A program that talks to a controller by a plain socket."""

    def __init__(self, port):
        self.socket = socket.create_connection(("127.0.0.1", port), timeout=30)
        self.stream = self.socket.makefile("rwb")

    def send(self, command, **keys):
        self.stream.write(json.dumps({"command": command, **keys}).encode() + b"\r\n")
        self.stream.flush()

    def read(self):
        return json.loads(self.stream.readline() or "null")

    def ask(self, command, **keys):
        self.send(command, **keys)
        return self.read()

    def move(self, *degrees):
        return self.ask("movej", joint=[1000 * one for one in degrees], v=50, r=0, trajectory_connect=0)

    def read_report(self):
        """Whether the arm arrived."""
        report = self.read()
        assert report["state"] == "current_trajectory_state"
        return report["trajectory_state"]

    def close(self):
        self.stream.close()
        self.socket.close()


class Proxy:
    def __init__(self, zk, *words):
        self.process = zk.start("proxy", "--port", 0, *words)
        line = self.process.stdout.readline()
        assert line, self.process.stderr.read()
        self.port = int(re.search(r" port=(\d+)", line)[1])
        self.notes = []
        self.reader = threading.Thread(target=lambda: self.notes.extend(self.process.stderr))
        self.reader.start()
        self.wires = []

    def connect(self):
        self.wires.append(Wire(self.port))
        return self.wires[-1]

    def end(self):
        """What it noted."""
        for wire in self.wires:
            wire.close()
        self.process.send_signal(signal.SIGTERM)
        assert self.process.wait(timeout=60) == 0
        self.reader.join()
        return "".join(self.notes)


@pytest.fixture
def before(zk):
    """Starts proxies before a port, or with other words."""
    proxies = []

    def start(port, *words):
        proxies.append(Proxy(zk, *([f"127.0.0.1:{port}"] if port else []), *words))
        return proxies[-1]
    yield start
    for one in proxies:
        if one.process.poll() is None:
            one.end()


@pytest.mark.zk_base(joints="0,20,70,0,90,0", speed=10)
def test_many_read_and_one_writes(before, simulator):
    proxy = before(simulator.port)
    first, second = proxy.connect(), proxy.connect()
    assert first.ask("get_joint_degree") == second.ask("get_joint_degree")
    assert first.move(10, *HOME[1:]) == {"command": "movej", "receive_state": True}
    assert second.move(20, *HOME[1:]) == {"command": "movej", "receive_state": False}
    assert not second.read_report()
    assert first.read_report() and second.read_report()  # of the arrival, which concerns both
    assert second.ask("set_arm_stop") == {"command": "set_arm_stop", "arm_stop": True}
    first.close()
    proxy.wires.remove(first)
    assert second.move(20, *HOME[1:])["receive_state"]
    assert second.read_report()
    assert "movej is refused: 127.0.0.1:" in proxy.end()


@pytest.mark.zk_base
def test_each_reply_finds_its_asker(before, simulator):
    proxy = before(simulator.port)
    writer = proxy.connect()
    names = [f"tool{i}" for i in range(4)]
    for i, name in enumerate(names):
        assert writer.ask("set_manual_tool_frame", tool_name=name, tool_pose=[i, 0, 0, 0, 0, 0], payload=0,
                          position=[0, 0, 0])["manual_tool_frame"]
    readers = [proxy.connect() for _ in names]
    for reader, name in zip(readers, names):
        for _ in range(50):
            reader.send("get_tool_frame", tool_name=name)
            reader.send("get_joint_degree")
    readers[0].send("get_tool_frame")  # is not answered, and does not stop the others
    for reader, name in zip(readers, names):
        for _ in range(50):
            assert reader.read()["tool_name"] == name
            assert reader.read()["state"] == "joint_degree"


@pytest.mark.zk_base
def test_refusals_are_those_of_the_controller(before, simulator, zk):
    all_commands = zk("simulate", "--commands").splitlines()
    before(simulator.port, "--silent-on", ",".join(all_commands))  # it knows each
    def refusal(wire, command):
        wire.send(command)
        wire.send("get_arm_power_state")
        return list(iter(wire.read, {"state": "arm_power_state", "power_state": 1}))

    direct, through = Wire(simulator.port), before(simulator.port, "--writer", "none").connect()
    compared = 0
    for command in map(str.strip, all_commands):
        queries = ("get_", "read_", "expand_get_", "given_", "zk_sim_", "set_realtime_push")
        stops = ("set_arm_stop", "set_arm_slow_stop", "set_arm_pause")
        if not command.startswith(queries) and command not in stops:
            if direct.ask("zk_sim_fault", refuse_on=[command])["done"]:  # it is acknowledged
                assert refusal(through, command) == refusal(direct, command)
                compared += 1
    assert compared > 120


@pytest.mark.zk_base(joints="0,20,70,0,90,0", speed=1)
def test_two_programs_of_a_host_get_the_states(before, simulator, zk, tmp_path):
    proxy = before(simulator.port, "-o", tmp_path / "all.mcap")
    zk.environment["ZK_ARM"] = f"127.0.0.1:{proxy.port}"
    recorders = [zk.start("record", "-o", tmp_path / f"{i}.csv", "--seconds", 2) for i in range(2)]
    zk("move", "joints", 30, *HOME[1:], "-y", "--speed", 100)
    for recorder in recorders:
        out, err = recorder.communicate(timeout=60)
        assert recorder.returncode == 0 and int(re.search(r": (\d+) states", out)[1]) > 100, (out, err)
    proxy.end()
    rows = zk("export", tmp_path / "all.mcap").splitlines()
    assert len(rows) > 200 and rows[-1].split(",")[2] == "30"


@pytest.mark.zk_base(speed=1, no_push=True)
def test_each_client_sets_its_own_push(before, simulator):
    wire = before(simulator.port).connect()
    assert not wire.ask("get_realtime_push")["enable"]
    proxy = before(simulator.port, "--subscribe")
    wire, other = proxy.connect(), proxy.connect()
    before_it = other.ask("get_realtime_push")
    assert before_it["enable"]
    listener = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
    listener.bind(("127.0.0.1", 0))
    listener.settimeout(30)
    for wrong in ({"ip": "192.0.2.1"}, {"port": 0}, {"cycle": 0}):
        assert not wire.ask("set_realtime_push", **wrong)["state"]
    port = listener.getsockname()[1]
    assert wire.ask("set_realtime_push", port=port, cycle=10, ip="127.0.0.1")["state"]
    assert [wire.ask("get_realtime_push")[key] for key in ("port", "cycle", "enable")] == [port, 10, True]
    times = [json.loads(listener.recv(2048))["time"] for _ in range(5)]
    assert all(after - time >= 50 for time, after in zip(times, times[1:]))
    assert wire.ask("set_realtime_push", enable=False)["state"]
    assert not wire.ask("get_realtime_push")["enable"] and other.ask("get_realtime_push") == before_it


@pytest.mark.zk_base
def test_clients_that_do_harm(before, simulator):
    proxy = before(simulator.port)
    half, deaf, long = (proxy.connect() for _ in range(3))
    half.stream.write(b'{"command":"get_joint_degree"')
    half.stream.flush()
    long.stream.write(b"x" * 2_000_000 + b"\r\n")
    assert long.ask("get_joint_degree")["state"] == "joint_degree"
    request = b'{"command":"get_global_waypoints_list"}\r\n' * 1000
    deaf.socket.settimeout(0.2)
    sent = 0
    try:
        while sent < 100_000_000:  # the proxy lets it wait, or ends it
            sent += deaf.socket.send(request)
    except (TimeoutError, ConnectionError):
        pass
    assert sent < 50_000_000
    assert proxy.connect().ask("get_joint_degree")["state"] == "joint_degree"
    memory = int(re.search(r"VmHWM:\s+(\d+)", open(f"/proc/{proxy.process.pid}/status").read())[1])
    assert memory < 100_000  # kB


def test_a_controller_that_dies(before, zk):
    controller = zk.start("simulate", "--port", 0, "--push-port", 0, "--quiet")
    port = int(re.search(r" port=(\d+)", controller.stdout.readline())[1])
    proxy = before(port)
    wires = [proxy.connect() for _ in range(2)]
    assert wires[0].move(0, 0, 0, 0, 0, 0)["receive_state"] and wires[1].ask("get_joint_degree")
    controller.kill()
    controller.communicate()
    for wire in wires:
        while wire.read() is not None:
            pass
    assert proxy.connect().read() is None
    controller = zk.start("simulate", "--port", port, "--push-port", 0, "--quiet")
    controller.stdout.readline()
    assert proxy.connect().ask("get_joint_degree")["state"] == "joint_degree"
    controller.kill()
    controller.communicate()
    assert "cannot be reached" in zk("proxy", f"127.0.0.1:{port}", status=3)


@pytest.mark.zk_base(speed=10)
def test_a_file_on_its_way(before, simulator):
    proxy = before(simulator.port)
    sender, reader = proxy.connect(), proxy.connect()
    program = b'{"command":"movej","joint":[0,0,0,0,0,0]}\r\n'
    reply = sender.ask("run_project", project_name="a", file_size=len(program), plan_speed=50, save_id=1, only_save=1)
    assert reply["project_state"]
    sender.stream.write(program[:10])
    sender.stream.flush()
    assert reader.ask("set_arm_stop")["arm_stop"]  # meanwhile
    sender.stream.write(program[10:])
    sender.stream.flush()
    assert sender.read() == {"command": "download_project", "project_state": True}
    assert sender.ask("get_program_trajectory_list")["total_size"] == 1


@pytest.mark.zk_base
def test_faults_on_the_way(before, simulator):
    proxy = before(simulator.port, "--fault", "double=100", "--refuse-on", "set_arm_stop")
    wire = proxy.connect()
    assert wire.ask("get_joint_degree") == wire.read()
    assert not wire.ask("set_arm_stop")["arm_stop"] and not wire.read()["arm_stop"]
    assert wire.ask("zk_sim_fault", double=0, drop=100)["done"]
    wire.send("get_joint_degree")
    assert "no fault of the wire" in wire.ask("zk_sim_fault", emergency_stop=1)["reason"]
    assert wire.ask("zk_sim_fault", drop=0, garbage=100)["done"]
    wire.send("get_joint_degree")
    assert not wire.stream.readline().startswith(b"{") and wire.read()["state"] == "joint_degree"
    other = proxy.connect()
    assert wire.ask("zk_sim_disconnect")["done"] and other.read() is None


@pytest.mark.zk_base(joints="0,20,70,0,90,0", speed=1)
def test_a_recording_is_a_controller(before, simulator, zk, tmp_path):
    path = tmp_path / "run.mcap"
    proxy = before(simulator.port, "-o", path)
    wire = proxy.connect()
    for angle in (5, 10):
        assert wire.move(angle, *HOME[1:])["receive_state"] and wire.read_report()
    asked = [wire.ask("get_joint_degree"), wire.ask("get_work_frame", frame_name="Base"),
             wire.ask("get_tool_frame", tool_name="none")]
    zk.environment["ZK_ARM"] = f"127.0.0.1:{proxy.port}"
    info = zk("info")
    proxy.end()

    played = before(None, "--play", path)
    wire = played.connect()
    for angle in (5, 10):
        begin = time.monotonic()
        assert wire.move(angle, *HOME[1:])["receive_state"] and wire.read_report()
        assert time.monotonic() - begin > 0.1  # as long as it was
    assert [wire.ask("get_joint_degree"), wire.ask("get_work_frame", frame_name="Base"),
            wire.ask("get_tool_frame", tool_name="none")] == asked
    assert wire.ask("get_joint_degree") == asked[0]  # once more than it was recorded
    wire.send("get_arm_power_state")
    zk.environment["ZK_ARM"] = f"127.0.0.1:{played.port}"

    def without_port(text):
        return [line for line in text.splitlines() if not line.startswith("port ")]
    assert without_port(zk("info")) == without_port(info)
    assert "states" in zk("record", "-o", tmp_path / "again.csv", "--seconds", 1)
    assert "'get_arm_power_state' was never recorded: it is not answered" in played.end()


@pytest.mark.zk_base(joints="0,20,70,0,90,0", speed=1)
def test_what_a_program_recorded_itself_is_played(before, zk_on, tmp_path):
    path = tmp_path / "run.mcap"
    zk_on("record", "-o", path, "--wire", "--seconds", 1)
    port = before(None, "--play", path).port
    zk_on.environment["ZK_ARM"] = f"127.0.0.1:{port}"
    zk_on("record", "-o", tmp_path / "again.csv", "--seconds", 0.5)
    last = (tmp_path / "again.csv").read_text().splitlines()[-1].split(",")
    assert [float(one) for one in last[2:8]] == HOME


def write_black_box(path, frames):
    """What a program sent (">") and received ("<"), a millisecond apart, in the order in which it wrote it down."""
    def check_of(text):
        check = 0x9e3779b97f4a7c15 + len(text)
        for i in range(0, len(text), 8):
            check = (check ^ int.from_bytes(text[i:i + 8], "little")) * 0xff51afd7ed558ccd % 2**64
            check ^= check >> 32
        return check % 2**32
    ring = b""
    for i, frame in enumerate(frames):
        text = frame[1:].encode()
        kind = 2 if frame[0] == ">" else 3
        ring += struct.pack("<QqiIII", len(ring) + 8, i * 1_000_000, 1, kind, len(text), check_of(text))
        ring += text + bytes(-len(text) % 8)
    path.write_bytes(struct.pack("<8s5Q", b"ZKBOX1\r\n", 0, 2**16, 0, len(ring), 1).ljust(4096, b"\0") + ring)


def test_messages_that_stand_before_a_request(before, tmp_path):
    degree, stop = {"state": "joint_degree", "joint": [1]}, {"command": "set_arm_stop", "arm_stop": True}
    accepted, unasked = {"command": "movej", "receive_state": True}, {"state": "a_lamp_went_out"}
    write_black_box(tmp_path / "run.box", [
        '>{"command":"movej"}', "<" + json.dumps(accepted),
        "<" + json.dumps(degree), '>{"command":"get_joint_degree"}',  # another thread wrote the request down
        "<" + json.dumps(unasked), '>{"command":"set_arm_stop"}', "<" + json.dumps(stop)])
    wire = before(None, "--play", tmp_path / "run.box").connect()
    assert wire.ask("get_joint_degree") == degree
    assert [wire.ask("movej"), wire.read()] == [accepted, unasked]
    assert [wire.ask("set_arm_stop"), wire.ask("get_joint_degree")] == [stop, degree]


def test_words_that_cannot_be(zk, tmp_path):
    for words, sentence in [(["--fault", "drop=101"], "drop: 0 to 100 (percent)"),
                            (["--fault", "power_loss=1"], "'power_loss' is no fault of the wire"),
                            (["--fault", "drop"], "'drop' is no fault such as"),
                            (["--silent-on", "movej,move_j"], "unknown command 'move_j'"),
                            (["--refuse-on", "move_j"], "unknown command 'move_j'"),
                            (["--listen", "here"], "is no IPv4 address"),
                            (["-o", "run.csv"], "does not end in .mcap"),
                            (["--play", "run.mcap"], "--play needs no controller")]:
        assert sentence in zk("proxy", "127.0.0.1:1", *words, status=2)
