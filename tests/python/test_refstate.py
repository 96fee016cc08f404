"""The reference state through the first layer: reduced values while it is set."""

import pytest
import zentropia as zp


def test_reduced_values_while_a_reference_state_is_set(water_si):
    v_ref = zp.specvolume("PT", 1e5, 300.0)[0]
    h = zp.calcprop("h", "PT", 2e5, 350.0)[0]
    assert zp.setrefstate(300.0, 1e5) == "No errors"
    assert zp.isrefstateset() is True
    *reference, errormsg = zp.getrefstate()
    assert reference == pytest.approx([300.0, 1e5, v_ref]) and errormsg == "No errors"
    assert (zp.dimnondimconvfact("T"), zp.dimnondimconvfact("P")) == pytest.approx((300.0, 1e5))
    # 2 x the reference pressure, 350/300 of the reference temperature; energies per P_ref v_ref
    h_reduced, errormsg = zp.calcprop("h", "PT", 2.0, 350.0 / 300.0)
    assert errormsg == "No errors"
    assert h_reduced == pytest.approx(h / (1e5 * v_ref), rel=1e-9)
    # new units replace the reduced ones; updaterefstate brings them back (the reference values
    # it sets again are read in the units of that moment)
    assert zp.setunits("SI", "PerMass", "", "") == "No errors"
    assert zp.isrefstateset() is True
    assert zp.calcprop("h", "PT", 2e5, 350.0)[0] == pytest.approx(h)
    assert zp.updaterefstate() == "No errors"
    assert zp.calcprop("h", "PT", 2.0, 350.0 / 300.0)[0] == pytest.approx(h_reduced)


def test_release_and_the_given_specific_volume(water_si):
    zp.releaserefstate()
    assert zp.isrefstateset() is False
    assert zp.dimnondimconvfact("T") == 1.0
    assert zp.getrefstate()[-1] == "Zentropia warning: reference state not set."
    # acts only when errormsg reads "No errors" on entry
    assert zp.setrefstate_nondim(300.0, 1e5, 0.002) == ""
    assert zp.isrefstateset() is False
    assert zp.setrefstate_nondim(300.0, 1e5, 0.002, "No errors") == "No errors"
    assert zp.getrefstate()[:3] == pytest.approx((300.0, 1e5, 0.002))
    zp.setunits("SI", "PerMass", "", "")
    # the update, too, acts only on "No errors"; another text releases the reference state
    assert zp.updaterefstate_nondim("No errors") == "No errors"
    assert zp.isrefstateset() is True
    assert zp.getrefstate()[:3] == pytest.approx((300.0, 1e5, 0.002))
    assert zp.updaterefstate_nondim() == ""
    assert zp.isrefstateset() is False
    # without a reference state there is nothing to update: the text comes back as passed
    assert zp.updaterefstate("No errors") == "No errors"
    assert zp.updaterefstate_nondim("Error in Zentropia: earlier") == "Error in Zentropia: earlier"
