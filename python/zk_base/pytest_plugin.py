"""Fixtures for pytest: `simulator`, a simulated controller, and `arm`, a connection to it.

Each test has its own. ``@pytest.mark.zk_base(model="ZK75-6F", speed="max")`` chooses its options, those of Simulator.
"""
from __future__ import annotations

from collections.abc import Iterator
from typing import Any

import pytest

from . import Arm, Simulator


def pytest_configure(config: pytest.Config) -> None:
    """Makes the mark known."""
    config.addinivalue_line("markers", "zk_base(model, ...): options of the simulated controller")


@pytest.fixture
def simulator(request: pytest.FixtureRequest) -> Iterator[Simulator]:
    """A simulated controller, ZK65-B at speed 20 unless the mark `zk_base` says else."""
    mark = request.node.get_closest_marker("zk_base")
    options: dict[str, Any] = {"speed": 20, "seed": 1, **(mark.kwargs if mark else {})}
    with Simulator(**options) as one:
        yield one


@pytest.fixture
def arm(simulator: Simulator) -> Iterator[Arm]:
    """A connection to the simulated controller."""
    with simulator.connect() as one:
        yield one
