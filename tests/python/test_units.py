"""The unit procedures through the first layer."""

import pytest
import zentropia as zp

M_WATER = 0.018015257  # kg/mol


def test_conversion_pairs_overrides_and_the_stored_settings(water_si):
    assert zp.getunitconvfact("T") == pytest.approx((1.0, -273.15))  # K to degrees C
    assert zp.setunits("Anglo-Saxon", "PerMass", "", "") == "No errors"
    assert zp.getunitconvfact("P") == pytest.approx((6894.757e-5, 0.0))
    assert zp.setunits("SI", "PerMass", "P,T", "MPa,C") == "No errors"
    assert zp.getunits() == ("SI", "PerMass", "P,T", "MPa,C")
    assert zp.getunit("T") == ("\u00b0C", "No errors")  # the Latin-1 degree sign, decoded
    assert zp.setunits("SI", "PerMass", "T,P", "C") == (
        "Error in Zentropia: number of properties does not equal number units.")


def test_mole_basis_and_the_molar_mass(water_si):
    assert zp.setunits_mmol("SI", "PerMole", "", "", 0.018) == "No errors"
    assert zp.getunitconvfact("h")[0] == pytest.approx(1e-3 / 0.018)  # J/mol to kJ/kg
    assert zp.setunits_phase(0.036) == "No errors"
    assert zp.getunitconvfact("h")[0] == pytest.approx(1e-3 / 0.036)
    assert zp.updateunits() == "No errors"  # back to the selected fluid's molar mass
    assert zp.getunitconvfact("h")[0] == pytest.approx(1e-3 / M_WATER)


@pytest.mark.parametrize("describe, pressure_unit", [
    (zp.getunits_si, "Pa"), (zp.getunits_zp, "bar"), (zp.getunits_as, "psia"),
])
def test_unit_descriptions(describe, pressure_unit):
    n_prop, prop, power, unit = describe("PerMass")
    assert (len(n_prop), len(prop), len(power), len(unit)) == (27, 108, 108, 108)
    assert (n_prop[0], prop[0], power[0], unit[0]) == (1, "P", 1.0, pressure_unit)
    assert unit[1] == "xxxxx" and power[1] == 0.0  # an unused slot


def test_reading_unit_texts():
    assert (zp.isalfa("\u00b0"), zp.isdigit("7"), zp.isvalid(",")) == (True, True, False)
    assert zp.isdigitstr("1a") is True and zp.isdigitstr("   ") is False
    array, nelmts, errormsg = zp.strtoarr("P, T")
    assert (array[:3], nelmts, errormsg) == (["P", "T", ""], 2, "No errors")
    assert zp.strtoint("-007") == ("", -7, "string-ok")
    assert zp.strtoint("2147483648")[2] == "string-noint"
