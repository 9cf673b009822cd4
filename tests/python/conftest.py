"""Rules, sessions and paths that the tests of the package share. The tests run in the root of the project."""

import os
import pathlib

import pytest
from hypothesis import settings

import tarn

HOUSE = pathlib.Path(__file__).resolve().parents[2]
FLOW = HOUSE / "examples" / "flow"
HEATING = HOUSE / "examples" / "heating"

# A loaded machine must not fail a test, so no example has a deadline.
settings.register_profile("tests", deadline=None)
settings.load_profile("tests")


@pytest.fixture(scope="session")
def flow() -> tarn.Rules:
    """The rules of a flow simulation."""
    return tarn.load_rules(FLOW / "rules")


@pytest.fixture(scope="session")
def heating() -> tarn.Rules:
    """The rules of the heating of a building."""
    return tarn.load_rules(HEATING / "rules")


@pytest.fixture
def heat_sink(flow: tarn.Rules) -> tarn.Session:
    """A session on the sound flow model."""
    return tarn.Session(flow, FLOW / "models" / "sound.tdf")


@pytest.fixture
def house(heating: tarn.Rules) -> tarn.Session:
    """A session on the heating of a house."""
    return tarn.Session(heating, HEATING / "models" / "house.tdf")


@pytest.fixture(scope="session")
def zev() -> str:
    """The program, to compare with."""
    return os.environ["TARN_ZEV"]
