"""The unit procedures through the first layer."""

import pytest
import zentropia as zp

M_WATER = 0.018015257  # kg/mol


@pytest.mark.parametrize("unitset, symbol, pair", [
    ("SI", "P", (1e-5, 0.0)),          # Pa to bar
    ("SI", "T", (1.0, -273.15)),       # K to degrees C
    ("SI", "h", (1e-3, 0.0)),          # J/kg to kJ/kg
    ("Zentropia", "T", (1.0, 0.0)),    # the internal units
    ("Anglo-Saxon", "P", (6894.757e-5, 0.0)),
])
def test_conversion_pairs(water_si, unitset, symbol, pair):
    assert zp.setunits(unitset, "PerMass", "", "") == "No errors"
    assert zp.getunitconvfact(symbol) == pytest.approx(pair)


def test_overrides_and_the_stored_settings(water_si):
    assert zp.setunits("SI", "PerMass", "P,T", "MPa,C") == "No errors"
    assert zp.getunits() == ("SI", "PerMass", "P,T", "MPa,C")
    assert zp.getunit("P") == ("MPa", "No errors")
    assert zp.getunit("T") == ("\u00b0C", "No errors")  # the Latin-1 degree sign, decoded
    assert zp.setunits("SI", "PerMass", "T,P", "C") == (
        "Error in Zentropia: number of properties does not equal number units.")


def test_mole_basis_and_the_molar_mass(water_si):
    assert zp.setunits_mmol("SI", "PerMole", "", "", 0.018) == "No errors"
    assert zp.getunitconvfact("h")[0] == pytest.approx(1e-3 / 0.018)  # J/mol to kJ/kg
    assert zp.getunit("h") == ("J/mol", "No errors")
    assert zp.setunits_phase(0.036) == "No errors"
    assert zp.getunitconvfact("h")[0] == pytest.approx(1e-3 / 0.036)
    assert zp.updateunits() == "No errors"  # back to the selected fluid's molar mass
    assert zp.getunitconvfact("h")[0] == pytest.approx(1e-3 / M_WATER, rel=1e-4)
    h_mole = zp.calcprop("h", "PT", 1e5, 300.0)[0]
    zp.setunits("SI", "PerMass", "", "")
    assert h_mole == pytest.approx(zp.calcprop("h", "PT", 1e5, 300.0)[0] * M_WATER, rel=1e-4)


@pytest.mark.parametrize("describe, pressure_unit", [
    (zp.getunits_si, "Pa"), (zp.getunits_zp, "bar"), (zp.getunits_as, "psia"),
])
def test_unit_descriptions(describe, pressure_unit):
    n_prop, prop, power, unit = describe("PerMass")
    assert (len(n_prop), len(prop), len(power), len(unit)) == (27, 108, 108, 108)
    assert (n_prop[0], prop[0], power[0], unit[0]) == (1, "P", 1.0, pressure_unit)
    assert unit[1] == "xxxxx" and power[1] == 0.0  # an unused slot
    enthalpy = slice(4 * 4, 4 * 4 + n_prop[4])
    assert "mol" in describe("PerMole")[3][enthalpy]


def test_unit_descriptions_through_their_named_procedures():
    assert zp.getunits_si("PerMass")[3][0] == "Pa"
    assert zp.getunits_zp("PerMass")[3][0] == "bar"
    assert zp.getunits_as("PerMass")[3][0] == "psia"


@pytest.mark.parametrize("c, alfa, digit, valid", [
    ("A", True, False, True), (" ", True, False, True), ("\u00b0", True, False, True),
    ("7", False, True, True), ("^", False, False, True), (",", False, False, False),
])
def test_character_classes(c, alfa, digit, valid):
    assert (zp.isalfa(c), zp.isdigit(c), zp.isvalid(c)) == (alfa, digit, valid)


def test_reading_unit_texts():
    assert zp.isdigitstr("1a") is True and zp.isdigitstr("   ") is False
    array, nelmts, errormsg = zp.strtoarr("P, T")
    assert (array[:3], nelmts, errormsg) == (["P", "T", ""], 2, "No errors")
    assert zp.strtoarr("P,,T")[2] == "Error in Zentropia: unable to convert string into an array"
    assert zp.strtoint("-007") == ("", -7, "string-ok")
    assert zp.strtoint("2147483648")[2] == "string-noint"
