"""The guide to zk: each of its commands does what it says, in the order of the page."""
import json
import re
import shlex
from pathlib import Path

import pytest

GUIDE = Path(__file__).parents[2] / "docs" / "guides" / "command-line.md"
BLOCKS = re.findall(r"^```\n(.*?)^```$", GUIDE.read_text(), re.MULTILINE | re.DOTALL)


@pytest.mark.zk_base(joints="0,20,70,0,90,0", speed=1)
def test_the_commands_of_the_guide(zk_on, simulator, tmp_path, monkeypatch):
    monkeypatch.chdir(tmp_path)
    for line in "".join(BLOCKS).replace("192.168.1.18:8080", "192.168.1.18").splitlines():
        words = shlex.split(line.replace("192.168.1.18", f"127.0.0.1:{simulator.port}"))
        if line.startswith("{"):
            assert set(json.loads(line)) == {"left", "right"}
        elif words[0] == "export":
            name, _, value = words[1].partition("=")
            zk_on.environment[name] = value
        else:
            program, command, *rest = words
            assert program == "zk"
            output = rest.pop(rest.index(">") + 1) if ">" in rest else None
            rest = [word for word in rest if word != ">"]
            asks = command in ("move", "replay") and "--dry-run" not in rest
            ends = ["--yes"] if asks else ["--seconds", "2"] if command == "record" else []
            out = zk_on(command, *rest, *ends)
            if output:
                Path(output).write_text(out)
    assert {path.name for path in tmp_path.iterdir()} == {"arm.urdf", "map.svg", "run.mcap", "run.svg", "run.csv"}
    assert all(path.stat().st_size > 1000 for path in tmp_path.iterdir())
