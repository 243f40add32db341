"""Watching, examining, measuring."""
import json
import re
import signal
import socket

import pytest
from zk_base import Simulator


def findings(report):
    return {check["check"]: check for check in report["checks"]}


@pytest.mark.zk_base(speed=1)
def test_doctor_finds_nothing_wrong(zk_on):
    report = zk_on.json("doctor")
    assert report["ok"] and report["measured"]["free_connections"] == 3
    assert all(value is not None for value in report["measured"].values())
    assert "errors            Neither arm" in zk_on("doctor")


@pytest.mark.parametrize("options, check, verdict, finding", [
    ({"fault": "emergency_stop=1"}, "errors", "fault", "0x0001"),
    ({"fault": "power_loss=1"}, "power", "warn", "is off"),
    ({"fault": "push_drop=30"}, "push stream", "fault", "% are lost"),
    ({"no_push": True}, "push stream", "warn", "pushes no state"),
    ({"fault": "max_clients=1"}, "free connections", "warn", "accepts no further program"),
    ({"joints": "0,20,70,0,127.5,0"}, "limits", "warn", "Joint 5, at 127.5 degrees"),
    ({"speed": 5}, "clock", "warn", "times as fast"),
    ({"silent_on": "get_arm_software_info"}, "reachable", "fault", "No reply"),
    ({"silent_on": "get_realtime_push", "no_push": True}, "push stream", "unknown", "does not say"),
])
def test_doctor_finds(zk, options, check, verdict, finding):
    with Simulator(**{"speed": 1, **options}) as simulator:
        zk.environment["ZK_ARM"] = f"127.0.0.1:{simulator.port}"
        status = 3 if check == "reachable" else 1 if verdict == "fault" else 0
        found = findings(zk.json("doctor", status=status))[check]
        assert found["verdict"] == verdict and finding in found["finding"]
        assert found["remedy"] or verdict == "unknown"


def test_clears_an_error_whose_cause_is_gone(zk_on, simulator):
    simulator.fault(emergency_stop=1)
    assert "run zk clear" in findings(zk_on.json("doctor", status=1))["errors"]["remedy"]
    assert "an error is left" in zk_on("clear", status=1)
    simulator.fault(emergency_stop=0)
    assert "no error is left" in zk_on("clear")
    assert findings(zk_on.json("doctor"))["errors"]["verdict"] == "ok"


@pytest.mark.zk_base(speed=1)
def test_a_second_program_is_told_who_has_the_states(zk_on, simulator, tmp_path):
    watching = zk_on.start("watch")
    assert watching.stdout.readline()
    remedy = f"connect both to zk proxy 127.0.0.1:{simulator.port}"
    assert remedy in zk_on("record", "-o", tmp_path / "run.csv", status=1)
    watching.kill()
    watching.communicate()


@pytest.mark.parametrize("address, sentence", [
    ("nowhere.invalid", "Name or service not known"), ("127.0.0.1:1", "Connection refused"), (None, "The peer sends")])
def test_doctor_without_an_arm(zk, address, sentence):
    with socket.create_server(("127.0.0.1", 0)) as other:
        doctor = zk.start("doctor", "--arm", address or f"127.0.0.1:{other.getsockname()[1]}")
        if address is None:
            visitor = other.accept()[0]
            visitor.sendall(b"220 mail.example ESMTP\r\n")
        out, _ = doctor.communicate(timeout=60)
    assert doctor.returncode == 3 and sentence in out and "-> " in out


def test_latency(zk_on):
    report = zk_on.json("latency", "-n", 20)
    assert report["queries"] == 20 and report["unanswered"] == 0
    assert sum(bin["count"] for bin in report["histogram"]) == 20
    assert report["least_ms"] <= report["p50_ms"] <= report["most_ms"]
    assert "####" in zk_on("latency", "-n", 5)


@pytest.mark.zk_base(speed=1)
def test_watch_comes_back_with_the_arm(zk_on, simulator):
    watching = zk_on.start("watch", "--json", "--rate", 50)

    def read_until(is_true):
        while not is_true(json.loads(watching.stdout.readline())["sequence"]):
            pass
    read_until(lambda sequence: sequence > 400)
    simulator.ask("zk_sim_restart", pause_ms=300)
    assert any("is lost" in line for line in watching.stderr)  # a loaded machine says before that the stream stalls
    read_until(lambda sequence: sequence < 400)  # a new connection counts anew
    watching.send_signal(signal.SIGINT)
    watching.communicate(timeout=60)
    assert watching.returncode == 0


def test_watch_says_that_the_stream_stalls(zk_on, simulator):
    watching = zk_on.start("watch")
    assert re.match(r"\d+ ", watching.stdout.readline())
    simulator.ask("set_realtime_push", cycle=1, enable=False, port=simulator.push_port, ip="127.0.0.1")
    assert "the stream stalls" in watching.stderr.readline()
    watching.kill()
    watching.communicate()
