"""The program `zk` as its users run it."""
import json
import os
import subprocess
from pathlib import Path

import jsonschema
import pytest

SCHEMAS = Path(__file__).parents[2] / "tools" / "schemas"


class Program:
    """Runs zk, with ZK_ARM naming the simulated arm if there is one."""

    def __init__(self, simulator=None):
        self.path = os.environ["ZK_TOOL"]
        self.environment = {**os.environ, "XDG_CONFIG_HOME": "/nowhere"}
        if simulator:
            self.environment["ZK_ARM"] = f"127.0.0.1:{simulator.port}"

    def start(self, *words, **options):
        """A process whose streams are pipes of text."""
        options = {"stdin": subprocess.DEVNULL, "stdout": subprocess.PIPE, "stderr": subprocess.PIPE, **options}
        return subprocess.Popen([self.path, *map(str, words)], text=True, env=self.environment, **options)

    def __call__(self, *words, status=0):
        """Standard output of a command that ends with this status. With another one than 0: standard error, which is
        one sentence."""
        process = self.start(*words)
        out, err = process.communicate(timeout=120)
        assert process.returncode == status, (words, out, err)
        if status == 0:
            return out
        assert err.startswith("zk: ") and err.count("\n") == 1, err
        return err

    def json(self, name, *words, status=0):
        """The report of a command, as its schema describes it."""
        process = self.start(name, *words, "--json")
        out, err = process.communicate(timeout=120)
        assert process.returncode == status, (words, out, err)
        report = json.loads(out)
        common = json.loads((SCHEMAS / "common.json").read_text())
        resolver = jsonschema.RefResolver("", {}, store={"common.json": common})
        jsonschema.validate(report, json.loads((SCHEMAS / f"{name}.json").read_text()), resolver=resolver)
        return report


@pytest.fixture
def zk():
    """The program without an arm."""
    return Program()


@pytest.fixture
def zk_on(simulator):
    """The program with a simulated arm."""
    return Program(simulator)
