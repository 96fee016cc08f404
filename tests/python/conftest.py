"""Shared set-up of the Python tests: the package comes from the build tree (PYTHONPATH)."""

import pytest
import zentropia


@pytest.fixture
def water_si():
    """IF97 water in SI units on a mass basis, through the first layer."""
    assert zentropia.setunits("SI", "PerMass", "", "") == "No errors"
    assert zentropia.setfluid("IF97", 1, ["water"], [1.0]) in ("No errors", "Same fluid")
    yield
    zentropia.releaserefstate()
    zentropia.setunits("SI", "PerMass", "", "")


@pytest.fixture
def water_internal(water_si):
    """IF97 water in the internal units (bar, degrees C, kJ/kg)."""
    assert zentropia.setunits("Zentropia", "PerMass", "", "") == "No errors"
