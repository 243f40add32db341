"""The code of the pages, as it stands there, against a simulated arm in the place of the one on the page."""
import re
import subprocess
import sys
import zipfile
from pathlib import Path

import pytest

import zk_base

SOURCES = Path(__file__).parents[2]


def blocks(page):
    return re.findall(r"^```python\n(.*?)^```$", (SOURCES / page).read_text(), re.S | re.M)


PAGES = [page for page in ["README.md", *(f"docs/guides/{one.name}" for one in (SOURCES / "docs/guides").glob("*.md"))]
         if blocks(page)]


@pytest.mark.zk_base(model="ZK65-6F", speed=20)
@pytest.mark.parametrize("page", PAGES)
def test_the_code_of_the_page_runs(page, simulator, tmp_path, capsys):
    names = {}
    for block in blocks(page):
        exec(compile(re.sub(r'Arm\("[\d.]+"(, \d+)?\)', f'Arm("127.0.0.1", {simulator.port})', block), page, "exec"),
             names)
        if "def test_" in block:
            (tmp_path / "test_page.py").write_text("import zk_base\n" + block)
            done = subprocess.run([sys.executable, "-m", "pytest", "-q", "-p", "no:cacheprovider",
                                   tmp_path], capture_output=True, text=True)
            assert "1 passed" in done.stdout, done.stdout
    for one in names.values():
        if isinstance(one, (zk_base.Arm, zk_base.Simulator)):
            one.close()


def test_the_demonstration_runs():
    done = subprocess.run([sys.executable, "-m", "zk_base.demo"], capture_output=True, text=True, timeout=120)
    assert (done.returncode, done.stderr) == (0, "")
    assert done.stdout.count("there") == 3 and "ended before its target" in done.stdout


def test_the_wheel_needs_nothing_else(tmp_path):
    build = Path(zk_base.__file__).parents[1]
    subprocess.run([sys.executable, SOURCES / "python" / "make_wheel.py", build, zk_base.__version__, "py3-none-any",
                    tmp_path], check=True)
    with zipfile.ZipFile(tmp_path / f"zk_base-{zk_base.__version__}-py3-none-any.whl") as wheel:
        for entry in wheel.infolist():
            (tmp_path / "site" / entry.filename).parent.mkdir(parents=True, exist_ok=True)
            (tmp_path / "site" / entry.filename).write_bytes(wheel.read(entry))
            (tmp_path / "site" / entry.filename).chmod(entry.external_attr >> 16)
        record = wheel.read(f"zk_base-{zk_base.__version__}.dist-info/RECORD").decode()
        assert {line.split(",")[0] for line in record.splitlines()} == set(wheel.namelist())
    program = "import zk_base; arm = zk_base.Simulator().connect(); print(open('/proc/self/maps').read())"
    done = subprocess.run([sys.executable, "-c", program], capture_output=True, text=True,
                          env={"PYTHONPATH": str(tmp_path / "site")})
    assert done.returncode == 0, done.stderr
    for library in ("libZK_Base.so.1", "libcjson.so.1"):
        assert f"{tmp_path}/site/zk_base/{library}" in done.stdout
