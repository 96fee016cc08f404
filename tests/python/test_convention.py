"""The calling convention of the first layer: arguments read are positional, what a procedure
writes comes back (result first, errormsg last), texts without trailing blanks, composition
vectors as lists of 20; wrong types and lengths raise clear Python errors."""

import math
import pathlib
import re

import numpy as np
import pytest
import zentropia as zp

# The programming interface, module by module.
PROCEDURES = {
    "zentropia_base": """isinit isnotinit zpgetindex zpgetversion releaseobjects setfluid getfluid
        allthermophys allthermophyssu2 calculate getinfo zp_mmol zp_tcrit zp_pcrit zp_tmin zp_tmax
        zp_mmolcomp zp_mmol_cnc zflow_tmd_vu zp_allpropsallphases zp_allpropssatext
        alltransprops_zp capeopenderiv_zp psat_k1 xy_a_alfa xy_kij hsxy_mp zp_saturationline
        liquidcmp_zp vaporcmp_zp fugacoef_zp settable settable_new usetable alltableinfo
        getfluidnames getcompset readfluidstable tolower""",
    "zentropia_main": """inputconversion outputconversion outputconversion_cnc calcprop allprops
        allpropssat allpropssatext allpropssu2 allpropstarn alltransprops alltransprops_old
        zflow_vu alloutputconv alloutputconvsu2 alloutputconvtarn alloutputconvext modelica_p
        modelica_p_mix pressure temperature specvolume density enthalpy entropy intenergy
        gibbsenergy helmholtzenergy heatcapv heatcapp soundspeed alpha beta chi fi ksi psi zeta
        theta kappa gamma vaporqual viscosity thermcond surftens liquidcmp vaporcmp fugacoef mmol
        tcrit pcrit tmin tmax allinfo solve isoline saturation_line""",
    "zentropia_units": """setunits setunits_mmol setunits_phase updateunits getunits getunit
        getunitconvfact getunits_si getunits_zp getunits_as isalfa isdigit isvalid isdigitstr
        strtoarr strtoint""",
    "zentropia_refstate": """setrefstate setrefstate_nondim updaterefstate updaterefstate_nondim
        getrefstate isrefstateset releaserefstate dimnondimconvfact""",
}
ALL = sorted(name for names in PROCEDURES.values() for name in names.split())


def test_every_procedure_is_exposed():
    missing = [name for name in ALL if not callable(getattr(zp, name, None))]
    assert missing == []


def test_every_procedure_is_called_by_the_tests():
    # the tests call procedures as zp.<name>(...) or through tables of zp.<name>
    here = pathlib.Path(__file__).parent
    called = set()
    for source in here.glob("test_*.py"):
        called |= set(re.findall(r"\bzp\.(\w+)", source.read_text()))
    assert sorted(set(ALL) - called) == []


@pytest.mark.parametrize("call, shape", [
    (lambda: zp.releaseobjects(), None),                       # writes nothing
    (lambda: zp.zp_mmol(), (float, str)),                      # a result and errormsg
    (lambda: zp.readfluidstable(), str),                       # errormsg alone
    (lambda: zp.getunits(), (str, str, str, str)),             # several outputs, no errormsg
    (lambda: zp.getfluid(), (str, int, list, list)),
    (lambda: zp.allinfo(), (float,) * 5 + (str,)),
    (lambda: zp.liquidcmp("PT", 1e5, 300.0), (list, str)),
])
def test_the_shape_of_what_comes_back(water_si, call, shape):
    result = call()
    if shape is None:
        assert result is None
    elif isinstance(shape, tuple):
        assert tuple(type(r) for r in result) == shape
    else:
        assert isinstance(result, shape)


def test_composition_vectors_have_their_full_length(water_si):
    model, ncomp, comp, conc = zp.getfluid()
    assert len(comp) == len(conc) == 20 and conc[0] == 1.0
    usr_x, usr_y = zp.allthermophys("PT", 1.0, 26.85)[8:10]
    assert len(usr_x) == len(usr_y) == 20


def test_texts_come_back_without_trailing_blanks(water_si):
    assert zp.tolower("WaTeR   ") == "water"
    assert zp.getunit("T") == ("K", "No errors")


def test_array_inputs_accept_lists_and_numpy_arrays(water_si):
    as_list = zp.zp_mmol_cnc([1.0])
    assert as_list == zp.zp_mmol_cnc(np.array([1.0]))
    assert as_list[0] == pytest.approx(0.018015257, rel=1e-9)
    assert zp.setfluid("IF97", 1, np.array(["water"]).tolist(), np.ones(1)) == "Same fluid"


@pytest.mark.parametrize("call, error", [
    (lambda: zp.calcprop("h", "PT", "1e5", 300.0), TypeError),   # a text where a number goes
    (lambda: zp.calcprop(1, "PT", 1e5, 300.0), TypeError),       # a number where a text goes
    (lambda: zp.calcprop("h", "PT", 1e5), TypeError),            # an argument missing
    (lambda: zp.zpgetindex("IF97", 2.5), TypeError),             # a real where an integer goes
    (lambda: zp.setfluid("IF97", 1, "water", [1.0]), TypeError),  # a text where a list goes
    (lambda: zp.zp_mmol_cnc([1.0, "x"]), TypeError),
    (lambda: zp.outputconversion_cnc("PTliq", [0.0] * 21, "h", 1.0), ValueError),  # 21 > 20
])
def test_wrong_types_and_lengths_raise(water_si, call, error):
    with pytest.raises(error) as info:
        call()
    assert str(info.value)  # a message the user can read


@pytest.mark.parametrize("args, message", [
    (("NoSuchModel", 1, ["water"], [1.0]), "Error in Zentropia: invalid model name NoSuchModel"),
    (("IF97", 25, ["water"] * 25, [1.0] * 25), "Error in Zentropia: "),
    (("IF97", 3, ["water"], [1.0, 1.0, 1.0]), "Error in Zentropia: "),
    (("IF97", 1, ["w" * 300], [1.0]), "Error in Zentropia: "),
    (("IF97", 1, ["water"], [math.nan]), "Error in Zentropia: "),
])
def test_bad_selections_give_texts_and_the_library_stays_usable(water_si, args, message):
    assert zp.setfluid(*args).startswith(message)
    assert zp.setfluid("IF97", 1, ["water"], [1.0]) in ("No errors", "Same fluid")
    h, errormsg = zp.calcprop("h", "PT", 1e5, 300.0)
    assert errormsg == "No errors" and h == pytest.approx(112663.823, rel=1e-8)


@pytest.mark.parametrize("state", [(math.nan, 300.0), (1e5, math.inf), (-1e5, 300.0)])
def test_bad_states_give_texts(water_si, state):
    value, errormsg = zp.calcprop("h", "PT", *state)
    assert errormsg.startswith("Error in ")
    assert zp.calcprop("h", "PT", 1e5, 300.0)[1] == "No errors"


def test_unknown_keywords_and_symbols(water_si):
    assert zp.calcprop("nonsense", "PT", 1e5, 300.0)[1] == "Unknown property specified..."
    assert zp.getunit("nonsense") == ("", 'Error in Zentropia: property symbol "nonsense" unknown.')
    assert zp.setunits("Metric", "PerMass", "", "") == 'Error in Zentropia: Unit set "Metric" unknown'
