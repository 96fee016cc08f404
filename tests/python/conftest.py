"""Shared set-up of the Python tests: the package comes from the build tree (PYTHONPATH), the
published IAPWS verification values from the source tree."""

import csv
import pathlib

import pytest
import zentropia

SOURCE_DIR = pathlib.Path(__file__).resolve().parents[2]
VERIFICATION_TABLE = SOURCE_DIR / "data" / "if97" / "verification_tables.csv"


def verification_rows(predicate):
    """The rows of the IAPWS verification tables for which predicate(row) holds."""
    with open(VERIFICATION_TABLE, newline="") as f:
        return [row for row in csv.DictReader(f) if predicate(row)]


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
