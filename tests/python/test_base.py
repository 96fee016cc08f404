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
    assert zp.isinit(value) is expected
    assert zp.isnotinit(value) is not expected


@pytest.mark.parametrize("name, length, index", [
    ("IF97", 4, 3), ("zentropia", 9, -1), ("Zentropia", 9, 0), ("IF97", 0, -1), ("IF97xx", 4, 3),
])
def test_zpgetindex(name, length, index):
    assert zp.zpgetindex(name, length) == index


@pytest.mark.parametrize("name, version", [("LiBr-H2O", [-9] * 4), ("NoSuchModel", [-8] * 4)])
def test_zpgetversion(name, version):
    assert zp.zpgetversion(name) == version


def test_repeated_selection_and_getfluid(water_si):
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
    assert (p, t) == pytest.approx((30.0, 26.85))
    assert (v, h, u, s) == pytest.approx(tuple(T5.values()), rel=1e-8)
    assert d == pytest.approx(1 / T5["v"], rel=1e-8)
    assert zp.isinit(sigma)  # IF97 gives no surface tension of a single-phase state
    reference = iapws.IAPWS97(T=300.0, P=3.0)
    assert (cv, eta, lam) == pytest.approx((reference.cv, reference.mu, reference.k), rel=1e-7)


def test_calculate_getinfo_and_the_fluid_constants(water_internal):
    assert zp.calculate("PT", 30.0, 26.85, "h")[0] == pytest.approx(T5["h"], rel=1e-8)
    assert zp.getinfo("T_crit") == (pytest.approx(373.946), "No errors")
    assert zp.zp_tcrit()[0] == pytest.approx(373.946)          # IF97: Tc = 647.096 K
    assert zp.zp_pcrit()[0] == pytest.approx(220.64)           # IF97: pc = 22.064 MPa
    assert zp.zp_mmol()[0] == pytest.approx(0.018015, rel=1e-4)
    assert zp.zp_tmin()[0] == pytest.approx(0.0, abs=0.02)
    assert zp.zp_tmax()[0] == pytest.approx(2000.0)            # IF97 ends at 2273.15 K
    mmol, errormsg = zp.zp_mmolcomp()
    assert len(mmol) == 20 and mmol[0] == pytest.approx(0.018015, rel=1e-4)
    assert zp.zp_mmol_cnc([1.0])[0] == pytest.approx(mmol[0])


def test_zflow_tmd_vu_inverts_the_state(water_internal):
    result = zp.zflow_tmd_vu(T5["v"], T5["u"])  # reads v and u, writes them all
    p, t, v, h, s, u = result[:6]
    assert result[-1] == "No errors"
    assert (p, t) == pytest.approx((30.0, 26.85), rel=1e-6)
    assert (v, u) == pytest.approx((T5["v"], T5["u"]), rel=1e-12)  # the inputs come back
    assert h == pytest.approx(T5["h"], rel=1e-6)


# What IF97, a pure-water back-end, does not offer: each dispatcher answers with its own text.
@pytest.mark.parametrize("call, message", [
    (lambda: zp.alltransprops_zp(26.85, 996.5),
     "Error in Zentropia: AllTransProps method not available for this library..."),
    (lambda: zp.capeopenderiv_zp("PT", 30.0, 26.85),
     "Error in Zentropia: CapeOpenDeriv_ZP not available for IF97 ..."),
    (lambda: zp.psat_k1(1.0, 26.85), "Error in Zentropia: Psat_k1 not available for specified model"),
    (lambda: zp.xy_a_alfa(1.0, 1.0, 0.3, 1.0, 26.85),
     "Error in Zentropia: xy_A_alfa not available for specified model"),
    (lambda: zp.xy_kij(0.0, 1.0, 26.85), "Error in Zentropia: xy_kij not available for specified model"),
    (lambda: zp.hsxy_mp(1.0, 26.85, 1.0), "Error in Zentropia: hsxy_mp not available for specified model"),
    (lambda: zp.zp_saturationline(10),
     "Error in Zentropia: phase envelope method for IF97not available."),
])
def test_what_the_model_does_not_offer(water_internal, call, message):
    assert call()[-1] == message


def test_the_bundles_of_other_back_ends_leave_errormsg_alone(water_internal):
    # IF97 is a known model without these bundles: nothing is computed, errormsg stays as it was
    allphases = zp.zp_allpropsallphases("PT", 30.0, 26.85)
    assert allphases[-1] == "" and len(allphases[0]) == 3
    satext = zp.zp_allpropssatext("PT", 30.0, 26.85)
    assert satext[-1] == "" and zp.isinit(satext[13])


@pytest.mark.parametrize("procedure", [zp.liquidcmp_zp, zp.vaporcmp_zp, zp.fugacoef_zp])
def test_composition_outputs_of_the_adapter(water_internal, procedure):
    output, errormsg = procedure("PT", 30.0, 26.85)
    assert len(output) == 20 and isinstance(errormsg, str)


def test_look_up_tables_need_their_back_end(water_internal):
    assert zp.settable("t", "PT", "bilinear", "m", "hash", 1).startswith("Error in ")
    assert zp.settable_new("t", "PT", 1, 10, 0, 100, 1, "PT", "bilinear", "hash").startswith(
        "Error in ")
    assert zp.usetable("t").startswith("Error in ")
    assert zp.alltableinfo()[-1].startswith("Error in ")
    assert zp.setfluid("IF97", 1, ["water"], [1.0]) == "Same fluid"


def test_the_fluid_lists():
    assert zp.readfluidstable() == "No errors"
    nfluid, names, errormsg = zp.getfluidnames(0, "")
    assert errormsg == "No errors" and nfluid == len(names) and "water" in names
    nfluid, cas, errormsg = zp.getfluidnames(2, "")
    assert "7732-18-5" in cas  # water's CAS number
    ncomps, compset, errormsg = zp.getcompset("IF97")
    assert isinstance(compset, list) and isinstance(errormsg, str)
