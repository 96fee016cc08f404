"""Mixtures of the cubic model through the Pythonic layer: named components, predefined blends,
the phase envelope against the quality flashes, thermodynamic identities of the interface, and bad
input."""

import numpy as np
import pytest
from zentropia import Fluid, ZentropiaError


def test_two_phase_state_balances_and_round_trips():
    gas = Fluid("Varimol", ["methane", "ethane"], [0.9, 0.1])
    state = gas.props("PT", 2e6, 170.0)
    assert state["phase"] == "two-phase" and 0.0 < state["q"] < 1.0
    # the overall composition lies on the tie line
    overall = state["q"] * state["y"] + (1.0 - state["q"]) * state["x"]
    np.testing.assert_allclose(overall, [0.9, 0.1], atol=1e-10)
    # the same state from its quality, at either end of the tie line
    assert gas.calc("T", "Pq", 2e6, state["q"]) == pytest.approx(170.0, abs=1e-7)
    bubble, dew = gas.calc("T", "Pq", 2e6, 0.0), gas.calc("T", "Pq", 2e6, 1.0)
    assert bubble < 170.0 < dew


def test_single_phase_identities_of_the_interface():
    # cp from finite differences of h, and the speed of sound from those of the density and the
    # entropy, for a compressed liquid and a gas of a refrigerant blend
    blend = Fluid("Varimol", "R410A")
    for p, t in [(3e6, 260.0), (5e5, 320.0)]:
        # transport from the library's own model, the same by props and by calc
        state = blend.props("PT", p, t)
        for name in ("eta", "lambda"):
            assert np.isfinite(state[name]) and state[name] == blend.calc(name, "PT", p, t)
        dt, dp = 1e-3, 1.0
        cp = (blend.calc("h", "PT", p, t + dt) - blend.calc("h", "PT", p, t - dt)) / (2 * dt)
        assert blend.calc("cp", "PT", p, t) == pytest.approx(cp, rel=1e-6)
        s = blend.calc("s", "PT", p, t)
        drho = blend.calc("d", "Ps", p + dp, s) - blend.calc("d", "Ps", p - dp, s)
        assert blend.calc("c", "PT", p, t) == pytest.approx(np.sqrt(2 * dp / drho), rel=1e-5)


def test_phase_envelope_meets_the_bubble_and_dew_points():
    gas = Fluid("Varimol", ["methane", "ethane"], [0.85, 0.15])
    env = gas.phase_envelope()
    assert len(env["t"]) > 10 and env["p"][0] == pytest.approx(1e5)
    assert env["p"][-1] == pytest.approx(1e5)
    # points on the bubble side carry the feed as liquid, on the dew side as vapour
    for k in range(len(env["t"])):
        if env["p"][k] > 0.8 * env["p"].max():
            continue
        on_bubble = np.allclose(env["x"][k], [0.85, 0.15], atol=1e-12)
        q = 0.0 if on_bubble else 1.0
        assert gas.calc("T", "Pq", env["p"][k], q) == pytest.approx(env["t"][k], rel=1e-8)
    with pytest.raises(ZentropiaError, match="phase envelope method for IF97"):
        Fluid("IF97", "water").phase_envelope()


@pytest.mark.parametrize("components, composition, message", [
    (["methane", "ethane"], [0.5, 0.6], "Sum of mole fractions does not equal 1"),
    (["R410A", "methane"], [0.5, 0.5], "cannot be combined with other components"),
    (["unobtainium"], [1.0], "cannot compute|error opening fluid"),
    (["methane"] * 21, [1.0 / 21] * 21, ""),
])
def test_bad_selections_are_refused_and_the_next_one_works(components, composition, message):
    with pytest.raises((ZentropiaError, ValueError), match=message):
        Fluid("Varimol", components, composition)
    gas = Fluid("Varimol", ["methane", "ethane"], [0.9, 0.1])
    with pytest.raises(ZentropiaError):
        gas.calc("T", "Pq", 2e6, 1.5)
    with pytest.raises(ZentropiaError):
        gas.calc("h", "PT", float("nan"), 300.0)
    assert np.isfinite(gas.calc("h", "PT", 1e5, 300.0))


def test_fluidfile_selects_the_chosen_equation_of_state(tmp_path):
    import os
    import zentropia
    # PRSV with the database's kij is the mixture selected by its names; SRK is another fluid
    named = Fluid("Varimol", ["methane", "ethane"], [0.9, 0.1])
    written = []
    try:
        for name, eos in [("zp-py-prsv", "PRSV"), ("zp-py-srk", "SRK")]:
            path = zentropia.fluidfile(name, ["methane", "ethane"], np.array([0.9, 0.1]), eos=eos,
                                       replace=True)
            written.append(path)
            assert os.path.basename(path) == name + ".vmx"
        h_named = named.calc("h", "PT", 2e6, [170.0, 250.0])
        np.testing.assert_array_equal(Fluid("Varimol", "zp-py-prsv").calc("h", "PT", 2e6,
                                                                          [170.0, 250.0]), h_named)
        h_srk = Fluid("Varimol", "zp-py-srk").calc("h", "PT", 2e6, [170.0, 250.0])
        assert np.all(np.abs(h_srk - h_named) > 1.0)
        with pytest.raises(ZentropiaError, match="not with SRK"):
            zentropia.fluidfile("zp-py-x", ["methane", "ethane"], [0.9, 0.1], eos="SRK",
                                mixing="WS")
    finally:
        for path in written:
            os.remove(path)


def test_isoline_inserts_the_bubble_and_dew_points_and_solve_inverts_h():
    import zentropia as zp
    gas = Fluid("Varimol", ["methane", "ethane"], [0.9, 0.1])
    bubble, dew = gas.calc("T", "Pq", 2e6, 0.0), gas.calc("T", "Pq", 2e6, 1.0)
    h_mid = gas.calc("h", "PT", 2e6, 0.5 * (bubble + dew))
    # the isobar across the dome: evenly spaced temperatures and both saturation points, with h
    # rising through the two-phase region
    runval, calcval, errormsg = zp.isoline("P", 2e6, "T", "h", 150.0, 250.0, 6)
    assert errormsg == "No errors" and runval == sorted(runval)
    assert any(abs(t - bubble) < 1e-6 for t in runval)
    assert any(abs(t - dew) < 1e-6 for t in runval)
    assert all(b > a for a, b in zip(calcval, calcval[1:]))
    # the temperature of a two-phase enthalpy, found by the library's inverse solver
    t, errormsg = zp.solve("Enthalpy", h_mid, "PT", 2, 2e6, bubble, dew)
    assert errormsg == "No errors"
    assert t == pytest.approx(0.5 * (bubble + dew), rel=1e-8)
    assert gas.calc("T", "Ph", 2e6, h_mid) == pytest.approx(t, rel=1e-8)


def _mole_fractions(model, names, mass_fractions):
    """Mole fractions from mass fractions and the pure fluids' molar masses."""
    moles = [w / Fluid(model, name).info()["m_mol"] for name, w in zip(names, mass_fractions)]
    return [n / sum(moles) for n in moles]


@pytest.mark.parametrize("model", ["Varimol", "liteVarimol"])
@pytest.mark.parametrize("state", [("Tq", 250.0, 0.5), ("Pq", 1e6, 0.0), ("Pq", 1e6, 1.0),
                                   ("PT", 1e5, 300.0), ("PT", 3e6, 250.0)])
def test_one_name_blend_reports_the_compositions_of_its_pure_fluids(model, state):
    # R410A is R32/R125 at 50/50 mass %: selected by its one name or by its pure fluids at the
    # same mole fractions, props gives the same phase compositions, one entry per pure fluid
    blend = Fluid(model, "R410A")
    names = Fluid(model, ["R32", "R125"], _mole_fractions(model, ["R32", "R125"], [0.5, 0.5]))
    a, b = blend.props(*state), names.props(*state)
    assert a["phase"] == b["phase"]
    for key in ("x", "y"):
        assert a[key].shape == (2,) and a[key].sum() == pytest.approx(1.0, abs=1e-12)
        np.testing.assert_allclose(a[key], b[key], rtol=0, atol=1e-9)
    if state[0] == "Tq":  # the tie line passes through the overall composition
        assert a["x"][0] < names.composition[0] < a["y"][0]
