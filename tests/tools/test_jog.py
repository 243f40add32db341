"""Jogging by keys, the question before a move, and the completion of shells."""
import os
import pty
import signal
import subprocess
import termios
import time

import pytest

HOME = [0, 20, 70, 0, 90, 0]


class Terminal:
    """A command on a terminal of its own."""

    def __init__(self, zk, *words):
        self.keyboard, self.screen = pty.openpty()
        self.before = termios.tcgetattr(self.screen)
        os.set_blocking(self.keyboard, False)
        self.process = zk.start(*words, stdin=self.screen, stdout=self.screen, stderr=self.screen,
                                start_new_session=True)
        self.text = ""

    def read(self):
        try:
            self.text += os.read(self.keyboard, 65536).decode()
        except BlockingIOError:
            pass

    def wait_for(self, is_true):
        end = time.monotonic() + 60
        while not is_true():
            assert time.monotonic() < end, self.text
            self.read()
            time.sleep(0.005)

    def hold(self, key, is_true):
        """Types a key again and again, as a keyboard does, until something is true."""
        def press():
            os.write(self.keyboard, key)
            time.sleep(0.02)
            return is_true()
        self.wait_for(press)

    def end(self):
        self.wait_for(lambda: self.process.poll() is not None)
        self.read()
        assert termios.tcgetattr(self.screen) == self.before
        return self.process.returncode


@pytest.fixture
def jog(zk_on):
    terminal = Terminal(zk_on, "jog", "--speed", 20)
    terminal.wait_for(lambda: "joint 1 " in terminal.text)
    yield terminal
    terminal.process.kill()
    terminal.process.wait()


def is_at_rest(arm):
    before = arm.joints()
    return list(arm.joints()) == list(before) == list(arm.joints())


@pytest.mark.zk_base(joints="0,20,70,0,90,0", speed=1)
def test_letting_go_stops(jog, arm):
    os.write(jog.keyboard, b"6+")  # one press is a short step
    jog.wait_for(lambda: arm.joints()[5] > 0.2)
    jog.wait_for(lambda: is_at_rest(arm))
    assert arm.joints()[5] < 15
    jog.hold(b"\x1b[D", lambda: arm.joints()[5] < -20)  # the arrow to the left
    jog.wait_for(lambda: is_at_rest(arm))
    assert -60 < arm.joints()[5] and list(arm.joints()[:5]) == pytest.approx([0, 20, 70, 0, 90], abs=0.01)
    os.write(jog.keyboard, b"q")
    assert jog.end() == 0


@pytest.mark.zk_base(joints="0,20,70,0,126,0", speed=1)
def test_stays_within_the_limits(jog, arm):
    os.write(jog.keyboard, b"5")
    jog.hold(b"+", lambda: "at its limit" in jog.text)
    jog.wait_for(lambda: is_at_rest(arm))
    assert arm.joints()[4] == pytest.approx(128, abs=0.2)


@pytest.mark.parametrize("end, status", [(signal.SIGINT, 130), (signal.SIGTERM, 130), (signal.SIGHUP, 130),
                                         (signal.SIGKILL, -9), ("loss", 3), ("error", 1)])
@pytest.mark.zk_base(joints="0,20,70,0,90,0", speed=1)
def test_every_end_stops_the_arm(jog, simulator, arm, end, status):
    jog.hold(b"+", lambda: arm.joints()[0] > 5)
    if end == "loss":
        simulator.ask("zk_sim_restart", pause_ms=100)
        assert jog.end() == status and "the connection is lost" in jog.text
        return
    if end == "error":
        simulator.fault(emergency_stop=1)
        jog.hold(b"+", lambda: jog.process.poll() is not None)
    else:
        jog.process.send_signal(end)
    if end == signal.SIGKILL:
        jog.process.wait()
    else:
        assert jog.end() == status
    assert end != "error" or "does not follow" in jog.text
    jog.wait_for(lambda: is_at_rest(arm))
    assert arm.joints()[0] < 90


@pytest.mark.zk_base(joints="0,20,70,0,90,0", speed="max")
def test_asks_before_it_moves(zk_on, arm):
    for answer, elsewhere, sentence in [("n", HOME, "not moved"), ("y", [*HOME[:5], 40], "has left the place")]:
        terminal = Terminal(zk_on, "move", "joints", 10, *HOME[1:])
        terminal.wait_for(lambda: "[y/N]" in terminal.text)
        arm.move_joints(elsewhere)
        os.write(terminal.keyboard, f"{answer}\n".encode())
        assert terminal.end() == 1 and sentence in terminal.text
        assert arm.joints() == pytest.approx(elsewhere, abs=0.01)


def test_needs_a_terminal(zk_on):
    assert "needs a terminal" in zk_on("jog", status=2)


@pytest.mark.parametrize("shell", ["bash", "zsh", "fish"])
@pytest.mark.parametrize("words, offered", [
    (["sto"], ["stop"]), (["move", ""], ["joints", "line", "pose"]), (["move", "line", "--dry"], ["--dry-run"]),
    (["doctor", "--js"], ["--json"]), (["plot", "x"], [])])
def test_completion(zk, shell, words, offered, tmp_path):
    ask = (f"complete -C 'zk {' '.join(words)}'" if shell == "fish" else
           f"COMP_WORDS=(zk {' '.join(map(repr, words))}); COMP_CWORD={len(words)}; _zk; printf '%s\\n' ${{COMPREPLY[@]}}")
    if shell == "zsh":  # as bashcompinit calls the function, without a terminal
        ask = f"setopt ksharrays; {ask}"
    script = f"compdef() {{ :; }}\n{zk('completion', shell)}{ask}" if shell == "zsh" else zk("completion", shell) + ask
    out = subprocess.run([shell, *(["-f"] if shell == "zsh" else []), "-c", script], capture_output=True, text=True,
                         check=False, cwd=tmp_path, env={**os.environ, "HOME": str(tmp_path)})
    found = sorted(line.split("\t")[0] for line in out.stdout.splitlines() if line)
    assert not out.stderr
    # Without a terminal zsh compares no prefix.
    assert found == offered if shell != "zsh" else set(offered) <= set(found) and bool(found) == bool(offered)
