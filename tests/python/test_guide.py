"""The code of the pages, as it stands there, against a simulated arm in the place of the one on the page."""
import re
import subprocess
import sys
from pathlib import Path

import pytest

import zk_base

SOURCES = Path(__file__).parents[2]


def blocks(page):
    return re.findall(r"^```python\n(.*?)^```$", (SOURCES / page).read_text(), re.S | re.M)


@pytest.mark.zk_base(model="ZK65-6F", speed=20)
@pytest.mark.parametrize("page", ["docs/guides/python.md", "README.md"])
def test_the_code_of_the_page_runs(page, simulator, tmp_path, capsys):
    names = {}
    assert blocks(page)
    for block in blocks(page):
        exec(compile(re.sub(r'Arm\("[\d.]+"(, \d+)?\)', f'Arm("127.0.0.1", {simulator.port})', block), page, "exec"),
             names)
        if "def test_" in block:
            (tmp_path / "test_page.py").write_text("import zk_base\n" + block)
            done = subprocess.run([sys.executable, "-m", "pytest", "-q", "-p", "no:cacheprovider", "-p",
                                   "zk_base.pytest_plugin", tmp_path], capture_output=True, text=True)
            assert "1 passed" in done.stdout, done.stdout
    for one in names.values():
        if isinstance(one, (zk_base.Arm, zk_base.Simulator)):
            one.close()


def test_the_demonstration_runs():
    done = subprocess.run([sys.executable, "-m", "zk_base.demo"], capture_output=True, text=True, timeout=120)
    assert (done.returncode, done.stderr) == (0, "")
    assert done.stdout.count("there") == 3 and "ended before its target" in done.stdout
