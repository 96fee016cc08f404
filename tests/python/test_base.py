"""The selection and dispatch procedures through the first layer, in internal units (bar, degrees
C, kJ/kg). Reference state: IAPWS R7-97(2012) Table 5, T = 300 K, p = 3 MPa."""

import iapws
import pytest
import zentropia as zp

NOT_SET = -8888.8
# (internal units) t = 26.85 C, p = 30 bar
T5 = {"v": 0.00100215168, "h": 115.331273, "u": 112.324818, "s": 0.392294792}


@pytest.mark.parametrize("value, expected", [
    (NOT_SET, True), (NOT_SET + 0.09, True), (NOT_SET - 0.11, False), (0.0, False),
])
def test_isinit_and_isnotinit(value, expected):
    assert zp.isinit(value) is expected and zp.isnotinit(value) is not expected


def test_model_names_and_the_selection(water_si):
    assert (zp.zpgetindex("IF97", 4), zp.zpgetindex("IF97xx", 4), zp.zpgetindex("IF97", 0)) == (
        3, 3, -1)
    assert zp.zpgetversion("LiBr-H2O") == [-9] * 4 and zp.zpgetversion("NoSuchModel") == [-8] * 4
    assert zp.setfluid("if97", 1, ["water"], [1.0], "No errors") == "Same fluid"
    model, ncomp, comp, conc = zp.getfluid()
    assert (model, ncomp, conc[:2]) == ("IF97", 1, [1.0, 0.0])
    zp.releaseobjects()  # releases the back-ends, keeps the selection
    assert zp.getfluid()[0] == "IF97"


@pytest.mark.parametrize("dispatcher", [zp.allthermophys, zp.allthermophyssu2])
def test_the_dispatchers_evaluate_in_internal_units(water_internal, dispatcher):
    (p, t, v, d, h, s, u, q, x, y, cv, dpdt, dpdv, d2pdt2, d2pdv2, d2pdtdv, dcvdt, eta, lam,
     sigma, errormsg) = dispatcher("PT", 30.0, 26.85)
    assert errormsg == "No errors"
    assert (p, t, v, h, u, s) == pytest.approx((30.0, 26.85, *T5.values()), rel=1e-8)
    assert d == pytest.approx(1 / T5["v"], rel=1e-8) and zp.isinit(sigma)
    reference = iapws.IAPWS97(T=300.0, P=3.0)
    assert (cv, eta, lam) == pytest.approx((reference.cv, reference.mu, reference.k), rel=1e-7)


def test_calculate_and_the_fluid_constants(water_internal):
    assert zp.calculate("PT", 30.0, 26.85, "h")[0] == pytest.approx(T5["h"], rel=1e-8)
    assert zp.getinfo("T_crit") == (pytest.approx(373.946), "No errors")  # IF97: 647.096 K
    constants = (zp.zp_tcrit, zp.zp_pcrit, zp.zp_mmol, zp.zp_tmin, zp.zp_tmax)
    assert [f()[0] for f in constants] == pytest.approx([373.946, 220.64, 0.018015257, 0.01, 2000],
                                                        rel=1e-6)
    mmol, errormsg = zp.zp_mmolcomp()
    assert len(mmol) == 20 and zp.zp_mmol_cnc([1.0])[0] == mmol[0]


def test_zflow_tmd_vu_inverts_the_state(water_internal):
    p, t, v, h, s, u, *_, errormsg = zp.zflow_tmd_vu(T5["v"], T5["u"])  # reads v and u
    assert errormsg == "No errors"
    assert (p, t, h) == pytest.approx((30.0, 26.85, T5["h"]), rel=1e-6)
    assert (v, u) == pytest.approx((T5["v"], T5["u"]), rel=1e-12)  # the inputs come back


# What IF97 does not offer: each call crosses the binding and answers with a text (the texts
# themselves are the dispatch tests' business). The bundles of other back-ends leave errormsg.
@pytest.mark.parametrize("call, message", [
    (lambda: zp.alltransprops_zp(26.85, 996.5), "Error in Zentropia: AllTransProps"),
    (lambda: zp.capeopenderiv_zp("PT", 30.0, 26.85), "Error in Zentropia: CapeOpenDeriv_ZP"),
    (lambda: zp.psat_k1(1.0, 26.85), "Error in Zentropia: Psat_k1"),
    (lambda: zp.xy_a_alfa(1.0, 1.0, 0.3, 1.0, 26.85), "Error in Zentropia: xy_A_alfa"),
    (lambda: zp.xy_kij(0.0, 1.0, 26.85), "Error in Zentropia: xy_kij"),
    (lambda: zp.hsxy_mp(1.0, 26.85, 1.0), "Error in Zentropia: hsxy_mp"),
    (lambda: zp.zp_saturationline(10), "Error in Zentropia: phase envelope"),
    (lambda: zp.liquidcmp_zp("PT", 30.0, 26.85), "Error in Zentropia: liquid composition"),
    (lambda: zp.vaporcmp_zp("PT", 30.0, 26.85), "Error in Zentropia: vapour composition"),
    (lambda: zp.fugacoef_zp("PT", 30.0, 26.85), "Error in Zentropia: fugacity coefficients"),
    (lambda: zp.settable("t", "PT", "bilinear", "m", "hash", 1), "Error in Mesheq"),
    (lambda: zp.settable_new("t", "PT", 1, 10, 0, 100, 1, "PT", "bilinear", "hash"),
     "Error in Mesheq"),
    (lambda: zp.usetable("t"), "Error in Mesheq"),
    (lambda: zp.alltableinfo(), "Error in Mesheq"),
    (lambda: zp.zp_allpropsallphases("PT", 30.0, 26.85), ""),
    (lambda: zp.zp_allpropssatext("PT", 30.0, 26.85), ""),
])
def test_what_the_model_does_not_offer(water_internal, call, message):
    result = call()
    assert (result if isinstance(result, str) else result[-1]).startswith(message)
    assert message or result[-1] == ""


def test_the_fluid_lists():
    assert zp.readfluidstable() == "No errors"
    nfluid, names, errormsg = zp.getfluidnames(0, "")
    assert errormsg == "No errors" and nfluid == len(names) and "water" in names
    assert "7732-18-5" in zp.getfluidnames(2, "")[1]  # water's CAS number
    assert zp.getcompset("IF97") == (1, ["H2O"], "No errors")
