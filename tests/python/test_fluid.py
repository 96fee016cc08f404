"""The Pythonic layer: Fluid objects over NumPy arrays, against python3-iapws, and their
exceptions."""

import iapws
import numpy as np
import pytest
import zentropia as zp
from zentropia import Fluid, ZentropiaError

def test_a_grid_of_states_against_python_iapws():
    water = Fluid("IF97", "water", units="SI")
    p = np.array([0.01e6, 0.1e6, 1e6, 5e6, 20e6, 50e6])[:, None]
    t = np.array([300.0, 400.0, 500.0, 600.0, 700.0, 900.0])[None, :]
    props = water.props("PT", p, t)
    assert props["h"].shape == (6, 6) and props["x"].shape == (6, 6, 1)
    for i, j in np.ndindex(6, 6):
        ref = iapws.IAPWS97(P=p[i, 0] / 1e6, T=t[0, j])
        expected = {"h": ref.h * 1e3, "s": ref.s * 1e3, "cp": ref.cp * 1e3, "c": ref.w,
                    "d": ref.rho, "eta": ref.mu, "lambda": ref.k}
        for name, value in expected.items():
            assert props[name][i, j] == pytest.approx(value, rel=1e-6), (name, i, j)


def test_round_trips_between_input_pairs():
    water = Fluid("IF97", "water", units="Zentropia")  # bar, degrees C, kJ/kg
    p = np.linspace(1.0, 200.0, 7)
    t = np.linspace(20.0, 550.0, 7)
    h = water.calc("h", "PT", p, t)
    s = water.calc("s", "PT", p, t)
    np.testing.assert_allclose(water.calc("T", "Ph", p, h), t, atol=1e-6)
    np.testing.assert_allclose(water.calc("T", "Ps", p, s), t, atol=1e-6)


def test_numbers_give_floats_and_not_computed_values_are_nan():
    water = Fluid("IF97", "water")
    assert isinstance(water.calc("h", "PT", 1e5, 300.0), float)
    props = water.props("PT", 1e5, 300.0)
    assert set(props) == set(zp._core._allprops_columns) | {"x", "y", "phase"}
    assert isinstance(props["h"], float) and np.isnan(props["kappa"])
    assert props["h"] == water.calc("enthalpy", "PT", 1e5, 300.0)


def test_each_fluid_keeps_its_own_units():
    water_si = Fluid("IF97", "water", units="SI")
    water_zp = Fluid("IF97", "water", units="Zentropia")
    for _ in range(2):
        assert water_si.calc("h", "PT", 1e5, 300.0) == pytest.approx(112663.823, rel=1e-8)
        assert water_zp.calc("h", "PT", 1.0, 26.85) == pytest.approx(112.663823, rel=1e-8)
    # a direct call of the first layer in between is noticed too
    assert zp.setunits("Anglo-Saxon", "PerMass", "", "") == "No errors"
    assert water_si.calc("T", "PT", 1e5, 300.0) == pytest.approx(300.0)
    assert water_si.unit("h") == "J/kg" and water_zp.unit("T") == "\u00b0C"


def test_info_with_unit_overrides():
    info = Fluid("IF97", "water", units="SI", unit_overrides={"P": "MPa", "T": "C"}).info()
    assert (info["t_crit"], info["p_crit"]) == pytest.approx((373.946, 22.064))


def test_failures_raise_with_the_library_message():
    with pytest.raises(ZentropiaError) as bad_model:
        Fluid("NoSuchModel", "water")
    assert str(bad_model.value) == "Error in Zentropia: invalid model name NoSuchModel"
    with pytest.raises(ZentropiaError, match=r'Unit set "Metric" unknown'):
        Fluid("IF97", "water", units="Metric")
    water = Fluid("IF97", "water")
    with pytest.raises(ZentropiaError) as bad_keyword:
        water.calc("nonsense", "PT", 1e5, 300.0)
    assert str(bad_keyword.value) == "Unknown property specified..."
    with pytest.raises(ZentropiaError) as bad_state:
        water.calc("h", "PT", [[1e5, -1e5], [1e5, 1e5]], 300.0)
    assert bad_state.value.message.startswith("Error in IF97") and bad_state.value.index == (0, 1)
    assert water.calc("h", "PT", 1e5, 300.0) == pytest.approx(112663.823, rel=1e-8)


def test_failed_states_as_nan():
    water = Fluid("IF97", "water")
    values = water.calc("h", "PT", [1e5, np.nan, 1e5], [300.0, 300.0, -1.0], errors="nan")
    assert values[0] == pytest.approx(112663.823, rel=1e-8)
    assert np.isnan(values[1:]).all()
    props = water.props("PT", [1e5, -1.0], 300.0, errors="nan")
    assert not np.isnan(props["h"][0]) and np.isnan(props["h"][1])


@pytest.mark.parametrize("make", [
    lambda: Fluid("IF97", ["water", "nitrogen"]),                    # no composition for two
    lambda: Fluid("IF97", "water").calc("h", "PT", 1e5, 300.0, errors="ignore"),
    lambda: Fluid("IF97", "water").calc("h", "PT", [1e5, 2e5], [300.0, 310.0, 320.0]),
    lambda: Fluid("IF97", "water").calc("h", "PT", "high", 300.0),
])
def test_wrong_arguments_raise_value_errors(make):
    with pytest.raises(ValueError):
        make()


@pytest.mark.parametrize("kwargs, message", [
    (dict(components="nitrogen"), 'model IF97 cannot compute "nitrogen"'),
    (dict(components=["water", "methane"], composition=[0.5, 0.5]), "not a mixture"),
    (dict(model="TPSI"), "back-end library not installed"),
    (dict(unit_overrides={"P": "furlong"}), 'unit "furlong" of P'),
])
def test_fluid_refuses_what_it_cannot_compute(kwargs, message):
    with pytest.raises(zp.ZentropiaError, match=message):
        Fluid(**kwargs)


@pytest.mark.parametrize("component", ["water", "Water", "H2O", "7732-18-5"])
def test_water_by_any_of_its_names(component):
    assert Fluid("if97", component).calc("h", "PT", 1e5, 300.0) == \
        Fluid("IF97", "water").calc("h", "PT", 1e5, 300.0)


def test_inputspec_letters_are_case_sensitive():
    with pytest.raises(ValueError, match="P, T, v, d, h, s, u and q"):
        Fluid("IF97", "water").calc("h", "pt", 1e5, 300.0)


@pytest.mark.parametrize("spelled, canonical", [
    (dict(units="si"), dict(units="SI")),
    (dict(units="anglo-saxon", basis="permole"), dict(units="Anglo-Saxon", basis="PerMole")),
    (dict(unit_overrides={"P": "psi", "T": "degC"}), dict(unit_overrides={"P": "psia", "T": "C"})),
    (dict(unit_overrides={"eta": "cP", "cp": "kJ/(kg K)"}),
     dict(unit_overrides={"eta": "mPa.s", "cp": "kJ/kg/K"})),
])
def test_spellings_mean_the_canonical_units(spelled, canonical):
    a, b = Fluid("IF97", "water", **spelled), Fluid("IF97", "water", **canonical)
    for prop in ("h", "s", "eta", "cp"):
        assert a.calc(prop, "PT", 100.0, 300.0) == b.calc(prop, "PT", 100.0, 300.0)
