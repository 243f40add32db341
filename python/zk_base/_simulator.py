"""A simulated controller, for tests and for work without an arm."""
from __future__ import annotations

import json
import os
import re
import socket
import subprocess
from io import BufferedRWPair
from pathlib import Path
from typing import TYPE_CHECKING, Any

if TYPE_CHECKING:
    from ._arm import Arm


def _program() -> str:
    """Named by the environment, beside this file, under the same prefix, or on the PATH."""
    here = Path(__file__).parent
    places = [here / "zk_simulator", here / "../../../../bin/zk_simulator"]
    named = os.environ.get("ZK_SIMULATOR")
    return named if named else next((str(one) for one in places if one.exists()), "zk_simulator")


class Simulator:
    """A simulated controller in a process of its own, on free ports of 127.0.0.1, ended by `close` or a `with` block.

    model: a name such as "ZK75-6F". speed: simulated seconds in a second, 0.1 to 100, or "max". seed: of all that is
    drawn by lot. options: those of `zk_simulator --help`, with underscores: ``joints="0,20,70,0,90,0"``,
    ``silent_on="get_joint_degree"``, ``no_push=True``; a list repeats an option.
    patience: seconds to wait for its start and for its answers.
    """

    def __init__(self, model: str = "ZK65-B", *, speed: float | str | None = None, seed: int | None = None,
                 patience: float = 10.0, **options: Any) -> None:
        words = [_program(), "--port", "0", "--push-port", "0", "--until-eof", "--quiet"]
        for name, value in {"model": model, "speed": speed, "seed": seed, **options}.items():
            for one in value if isinstance(value, (list, tuple)) else [value]:
                if one is not None and one is not False:
                    words += [f"--{name.replace('_', '-')}"] + ([] if one is True else [str(one)])
        environment = dict(os.environ)
        if "/" in words[0]:  # a wheel brings what the program needs
            paths = [str(Path(words[0]).parent), environment.get("LD_LIBRARY_PATH")]
            environment["LD_LIBRARY_PATH"] = ":".join(path for path in paths if path)
        self.patience = patience
        self._process = subprocess.Popen(words, stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                                         text=True, env=environment, start_new_session=True)
        self._wire: BufferedRWPair | None = None
        try:
            ports = re.search(r" port=(\d+) push_port=(\d+)", self._first_line())
            if ports is None:
                raise RuntimeError(f"{words[0]} does not start: {(self._process.communicate()[1] or '').strip()}")
            self.port, self.push_port = int(ports[1]), int(ports[2])
        except BaseException:
            self.close()
            raise

    def _first_line(self) -> str:
        import select
        output = self._process.stdout
        assert output is not None
        if not select.select([output], [], [], self.patience)[0]:
            raise RuntimeError(f"the simulator did not start within {self.patience} s")
        return output.readline()

    def close(self) -> None:
        """Ends it. A second close does nothing."""
        if self._wire is not None:
            self._wire.close()
            self._wire = None
        for stream in (self._process.stdin, self._process.stdout, self._process.stderr):
            if stream is not None:
                stream.close()
        try:
            self._process.wait(1)
        except subprocess.TimeoutExpired:
            self._process.kill()
            self._process.wait()

    def __enter__(self) -> Simulator:
        return self

    def __exit__(self, *_: object) -> None:
        self.close()

    def connect(self, **options: Any) -> Arm:
        """A new connection to it; the options are those of Arm."""
        from ._arm import Arm
        return Arm("127.0.0.1", self.port, **options)

    def ask(self, command: str, **keys: Any) -> dict[str, Any]:
        """Sends a request and returns the first line of the answer, as docs/wire-protocol.md describes them.

        Raises RuntimeError when there is none.
        """
        request = json.dumps({"command": command, **keys}).encode() + b"\r\n"
        for attempt in (1, 2):  # a restart closes the connection that is kept
            if self._wire is None:
                with socket.create_connection(("127.0.0.1", self.port), self.patience) as client:
                    self._wire = client.makefile("rwb")
            wire = self._wire
            try:
                wire.write(request)
                wire.flush()
                line = wire.readline()
                if line:
                    answer: dict[str, Any] = json.loads(line)
                    return answer
            except ConnectionError:
                pass
            except TimeoutError:
                self._wire = None
                raise RuntimeError(f"the simulator is silent for {self.patience} s after {request!r}") from None
            self._wire = None
        raise RuntimeError(f"the simulator does not answer {request!r}")

    def _do(self, command: str, keys: dict[str, Any]) -> None:
        answer = self.ask(command, **keys)
        if not answer.get("done"):
            raise ValueError(answer.get("reason") or f"the simulator refuses {command} {keys}")

    def fault(self, **faults: Any) -> None:
        """Sets faults, by the names of docs/simulator.md: ``fault(over_temperature=2, drop=10)``; 0 ends them.

        Raises ValueError with the reason when they are refused; then none is set.
        """
        self._do("zk_sim_fault", faults)

    def world(self, what: str, **keys: Any) -> None:
        """Changes what surrounds the arm: ``world("input", kind="DI", IO_Num=3, value=1)``, also "modbus", "wall",
        "object" and "hand". Raises ValueError when it is refused."""
        self._do(f"zk_sim_{what}", keys)

    def set_speed(self, speed: float | str) -> None:
        """Simulated seconds in a second, 0.1 to 100, or "max": each request runs to rest, then time stands."""
        self._do("zk_sim_speed", {"speed": speed})
