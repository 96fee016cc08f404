"""The property interface through the first layer, in SI units. Reference values: IAPWS R7-97(2012)
Table 5 (T = 300 K, p = 3 MPa) and python3-iapws, an independent IF97 implementation."""

import iapws
from iapws._iapws import _Tension
import pytest
import zentropia as zp

NOT_SET = -8888.8
P5, T5 = 3e6, 300.0
TABLE5 = {"v": 0.00100215168, "h": 115331.273, "u": 112324.818, "s": 392.294792,
          "cp": 4173.01218, "c": 1507.73921}
REF = iapws.IAPWS97(T=T5, P=P5 / 1e6)


def test_input_and_output_conversions(water_si):
    assert zp.inputconversion("PT", 1e5, 300.0) == pytest.approx((1.0, 26.85))
    assert zp.outputconversion("T", 26.85) == pytest.approx(300.0)
    assert zp.outputconversion("h", NOT_SET) == NOT_SET  # the sentinel passes unconverted
    assert zp.outputconversion_cnc("PTliq", [1.0], "h", 112.66) == pytest.approx(112660.0)


# Each entry point against calcprop with its long keyword, at the same state.
@pytest.mark.parametrize("entry, keyword", [
    (zp.pressure, "pressure"), (zp.temperature, "temperature"), (zp.specvolume, "specvolume"),
    (zp.density, "density"), (zp.enthalpy, "enthalpy"), (zp.entropy, "entropy"),
    (zp.intenergy, "intenergy"), (zp.heatcapv, "heatcapv"), (zp.heatcapp, "heatcapp"),
    (zp.soundspeed, "soundspeed"), (zp.vaporqual, "q"), (zp.viscosity, "viscosity"),
    (zp.thermcond, "thermcond"),
])
def test_entry_points_agree_with_calcprop(water_si, entry, keyword):
    assert entry("PT", P5, T5) == zp.calcprop(keyword, "PT", P5, T5)


def test_surface_tension_and_the_fundamental_derivative(water_si):
    # asked alone, both are computed although the state bundle has neither (calcprop)
    assert zp.surftens("PT", P5, T5) == (pytest.approx(_Tension(T5), rel=1e-9), "No errors")
    value, errormsg = zp.gamma("PT", P5, T5)
    assert errormsg == "No errors" and 1.0 < value < 10.0


def derivatives_from_iapws():
    """The derivative properties of the verification state from python3-iapws: (dp/dT)_v from
    the expansion coefficient and the isothermal compressibility."""
    dpdt = REF.alfav / (REF.xkappa * 1e-6)  # Pa/K
    cv, v = REF.cv * 1e3, REF.v
    return {"alpha": REF.w ** 2 - P5 * dpdt / cv * v * v,  # (dp/drho)_u, m2/s2
            "beta": dpdt / cv,                              # (dp/du)_v, kg/m3
            "chi": -v * v * P5 / T5, "fi": 1 / T5,
            "zeta": (P5 - dpdt * T5) / cv}


def test_derivative_entry_points(water_si):
    for entry in (zp.alpha, zp.beta, zp.chi, zp.fi, zp.zeta):
        value, errormsg = entry("PT", P5, T5)
        assert errormsg == "No errors"
        assert value == pytest.approx(derivatives_from_iapws()[entry.__name__], rel=1e-7)
    for entry in (zp.ksi, zp.psi, zp.theta, zp.kappa):  # IF97 does not give them
        value, errormsg = entry("PT", P5, T5)
        assert zp.isinit(value) and errormsg.endswith("not available.")


def test_energies_and_allprops_at_the_verification_state(water_si):
    h, s, u = TABLE5["h"], TABLE5["s"], TABLE5["u"]
    assert zp.gibbsenergy("PT", P5, T5)[0] == pytest.approx(h - T5 * s, rel=1e-6)
    assert zp.helmholtzenergy("PT", P5, T5)[0] == pytest.approx(u - T5 * s, rel=1e-6)
    (p, t, v, d, h, s, u, q, x, y, cv, cp, c, *derivatives, eta, lam,
     errormsg) = zp.allprops("PT", P5, T5)
    assert errormsg == "No errors"
    assert (p, t) == pytest.approx((P5, T5))
    assert (v, h, u, s, cp, c) == pytest.approx(
        tuple(TABLE5[k] for k in ("v", "h", "u", "s", "cp", "c")), rel=1e-8)
    assert (cv, eta, lam) == pytest.approx((REF.cv * 1e3, REF.mu, REF.k), rel=1e-7)
    assert len(derivatives) == 10 and len(x) == len(y) == 20
    su2 = zp.allpropssu2("PT", P5, T5)
    assert su2[:6] == pytest.approx((p, t, d, s, u, cv)) and su2[6] == pytest.approx(c * c)
    assert zp.allpropstarn("PT", P5, T5)[:10] == pytest.approx((p, t, v, d, h, s, u, cv, cp, c))
    # the transport interface reads the inputs as they are given, in bar and degrees C
    eta1, *_, errormsg = zp.alltransprops("PT", 30.0, 26.85)
    assert errormsg == "No errors" and eta1 == pytest.approx(eta, rel=1e-9)


def test_allpropssat_and_modelica_p_at_one_bar(water_si):
    # saturated liquid and vapour at 0.1 MPa against python3-iapws
    liquid, vapour = iapws.IAPWS97(P=0.1, x=0.0), iapws.IAPWS97(P=0.1, x=1.0)
    line = zp.modelica_p(1e5)
    assert line[-1] == "No errors"
    assert line[:5] == pytest.approx((liquid.rho, vapour.rho, liquid.h * 1e3, vapour.h * 1e3,
                                      liquid.T), rel=1e-7)
    sat = zp.allpropssat("PT", 1e5, 300.0)
    assert sat[-11:] == pytest.approx(line[:-1] + ("No errors",))


def test_what_water_does_not_offer(water_si):
    assert zp.modelica_p_mix(1e5, 300.0)[-1].startswith("Error in Zentropia: ")
    assert zp.alltransprops_old(300.0, 996.5)[-1].startswith("Error in Zentropia: AllTransProps")
    assert zp.allpropssatext("PT", P5, T5)[-1] != "No errors"  # no coexisting phases from IF97
    assert zp.saturation_line(10)[-1].startswith("Error in Zentropia: phase envelope")
    output, errormsg = zp.fugacoef("PT", P5, T5)
    assert len(output) == 20 and errormsg.startswith("Error in IF97")


def test_zflow_vu_inverts_the_state(water_si):
    p, t, h, s, alpha, beta, chi, fi, zeta, gamma, errormsg = zp.zflow_vu(TABLE5["v"], TABLE5["u"])
    assert errormsg == "No errors"
    assert (p, t, h, s) == pytest.approx((P5, T5, TABLE5["h"], TABLE5["s"]), rel=1e-6)


def test_the_converters_work_in_place(water_si):
    internal = (30.0, 26.85, 0.001, 1000.0, 115.331273, 0.392294792, 112.324818)
    converted = zp.alloutputconv(*internal, *[NOT_SET] * 14)
    assert converted[:7] == pytest.approx((3e6, 300.0, 0.001, 1000.0, 115331.273, 392.294792,
                                           112324.818))
    assert converted[7:] == (NOT_SET,) * 14  # the sentinel passes unconverted
    su2 = zp.alloutputconvsu2(30.0, 26.85, 1000.0, 0.39, 112.3, 4.12, 1e6, NOT_SET, NOT_SET)
    assert su2[:6] == pytest.approx((3e6, 300.0, 1000.0, 390.0, 112300.0, 4120.0))
    assert zp.alloutputconvtarn(30.0, 26.85, *[NOT_SET] * 13)[:2] == pytest.approx((3e6, 300.0))
    ext = zp.alloutputconvext(30.0, 26.85, 0.001, 1000.0, 115.3, 0.39, 112.3, [1.0], [1.0],
                              *[1.0] * 10)
    assert ext[:2] == pytest.approx((3e6, 300.0))


@pytest.mark.parametrize("procedure, first", [(zp.liquidcmp, 1.0), (zp.vaporcmp, 0.0)])
def test_phase_compositions_of_a_liquid(water_si, procedure, first):
    output, errormsg = procedure("PT", P5, T5)
    assert errormsg == "No errors" and output[:2] == [first, 0.0] and len(output) == 20


def test_the_fluid_constants_in_caller_units(water_si):
    m_mol, t_crit, p_crit, t_min, t_max, errormsg = zp.allinfo()
    assert errormsg == "No errors"
    assert (t_crit, p_crit) == pytest.approx((647.096, 22.064e6))  # IF97 critical point
    assert (zp.mmol()[0], zp.tcrit()[0], zp.pcrit()[0], zp.tmin()[0], zp.tmax()[0]) == (
        m_mol, t_crit, p_crit, t_min, t_max)


def test_solve_isoline_and_saturation_points(water_si):
    t, errormsg = zp.solve("Enthalpy", TABLE5["h"], "PT", 2, P5, 280.0, 350.0)
    assert errormsg == "No errors" and t == pytest.approx(T5, rel=1e-9)
    runval, calcval, errormsg = zp.isoline("P", 1e5, "T", "h", 300.0, 500.0, 6)
    assert errormsg == "No errors" and len(runval) == len(calcval) == 6
    assert runval == sorted(runval) and (runval[0], runval[-1]) == (300.0, 500.0)
    t_sat = iapws.IAPWS97(P=0.1, x=0.0).T
    assert sum(abs(r - t_sat) < 1e-5 for r in runval) == 2  # bubble and dew points inserted
