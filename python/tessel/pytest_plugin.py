"""A pytest plugin with the fixture `tessel_simulator`: a fresh simulator per test, on loopback
ports of its own. Load it with `-p tessel.pytest_plugin` or `pytest_plugins =
["tessel.pytest_plugin"]` in a conftest.py (an installed package loads it by itself).

Options for one test: `@pytest.mark.tessel_simulator(servers=1, clips=10, seed=7)`."""

from __future__ import annotations

from typing import Any, Iterator

import pytest

from ._simulator import Simulator


def pytest_configure(config: Any) -> None:
    config.addinivalue_line(
        "markers", "tessel_simulator(**options): options of the tessel_simulator fixture")


@pytest.fixture
def tessel_simulator(request: Any) -> Iterator[Simulator]:
    options = {"servers": 2, "clips": 50, "seed": 1}
    marker = request.node.get_closest_marker("tessel_simulator")
    if marker is not None:
        options.update(marker.kwargs)
    with Simulator(**options) as simulator:
        yield simulator
