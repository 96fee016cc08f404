"""Hostile arguments through the Python package (Hypothesis, a bounded number of examples): wrong
types, lengths, dtypes and shapes, NaN and infinities, over-long texts, for every Fluid method and
the procedures. Only ZentropiaError, TypeError or ValueError may come out; any other exception
(SystemError above all) fails the test, a crash ends the run. After each example a known good
call must still answer rightly."""

import math

import numpy as np
import pytest
import zentropia as zp
from hypothesis import HealthCheck, given, settings
from hypothesis import strategies as st
from hypothesis.extra import numpy as hnp

ALLOWED = (zp.ZentropiaError, TypeError, ValueError)
EXAMPLES = settings(max_examples=60, deadline=None, derandomize=True, database=None,
                    suppress_health_check=[HealthCheck.function_scoped_fixture,
                                           HealthCheck.too_slow])

words = st.sampled_from([
    "IF97", "if97", "Varimol", "RefProp", "water", "H2O", "SI", "Zentropia", "Anglo-Saxon",
    "PerMass", "PerMole", "PT", "Ph", "Pq", "PT liq", "PTjunk", "h", "enthalpy", "cp", "gamma",
    "sigma", "q", "P", "T", "MPa", "C", "", " ", "\x00", "é", "\xb0C"])
texts = st.one_of(words, st.text(max_size=30),
                  st.integers(200, 5000).map(lambda n: "x" * n))
reals = st.one_of(st.floats(), st.sampled_from([1e5, 300.0, 3e6, 0.5, -8888.8, 1e308]),
                  st.integers(-2**70, 2**70))
dtypes = st.sampled_from([np.float64, np.float32, np.int64, np.int8, np.bool_, np.complex128,
                          np.uint64, "U4", "O"])
arrays = st.builds(lambda dtype, shape, seed: _array(dtype, shape, seed), dtypes,
                   hnp.array_shapes(min_dims=0, max_dims=3, min_side=0, max_side=4),
                   st.integers(0, 99))
values = st.one_of(reals, arrays, st.lists(reals, max_size=5), st.none(), texts,
                   st.just(b"\x01\x02"), st.just({"P": 1}))
anything = st.one_of(values, st.lists(texts, max_size=3), st.booleans(), st.just(object()),
                     st.integers(-3, 25))


def _array(dtype, shape, seed):
    """An array of the given dtype and shape, with NaN, infinities and real states in it."""
    rng = np.random.default_rng(seed)
    base = rng.choice([1e5, 300.0, 3e6, math.nan, math.inf, -math.inf, 0.0, -1.0, 1e300],
                      size=shape)
    if dtype == "U4":
        return base.astype(str).astype("U4")
    if dtype == "O":
        return base.astype(object)
    with np.errstate(all="ignore"):
        return base.astype(dtype)


def attempt(function, *args, **kwargs):
    """Calls function; a failure of the allowed kinds is an answer, any other propagates."""
    try:
        return function(*args, **kwargs)
    except ALLOWED:
        return None


def known_good():
    assert zp.setunits("SI", "PerMass", "", "") == "No errors"
    assert zp.setfluid("IF97", 1, ["water"], [1.0]) in ("No errors", "Same fluid")
    h, errormsg = zp.calcprop("h", "PT", 3e6, 300.0)
    assert errormsg == "No errors" and h == pytest.approx(115331.273, rel=1e-8)


@pytest.fixture
def water():
    return zp.Fluid("IF97", "water", units="SI")


@EXAMPLES
@given(model=anything, components=anything, composition=anything, units=anything,
       basis=anything, overrides=anything)
def test_fluid_construction(model, components, composition, units, basis, overrides):
    fluid = attempt(zp.Fluid, model, components, composition, units, basis, overrides)
    if fluid is not None:
        repr(fluid)
        attempt(fluid.calc, "h", "PT", 1e5, 300.0)
    known_good()


@EXAMPLES
@given(prop=anything, inputspec=anything, input1=values, input2=values,
       errors=st.sampled_from(["raise", "nan", "ignore", None]))
def test_fluid_methods(water, prop, inputspec, input1, input2, errors):
    attempt(water.calc, prop, inputspec, input1, input2, errors)
    attempt(water.props, inputspec, input1, input2, errors)
    attempt(water.unit, prop)
    attempt(water.info)
    assert water.calc("h", "PT", 3e6, 300.0) == pytest.approx(115331.273, rel=1e-8)


@EXAMPLES
@given(inputspec=st.sampled_from(["PT", "Ph", "Pq", "Td"]), input1=arrays, input2=arrays)
def test_fluid_arrays_of_any_dtype_and_shape(water, inputspec, input1, input2):
    if np.iscomplexobj(input1) or np.iscomplexobj(input2):  # not silently cut to real
        with pytest.raises(TypeError):
            water.calc("h", inputspec, input1, input2, "nan")
        return
    result = attempt(water.calc, "h", inputspec, input1, input2, "nan")
    if result is not None:
        assert np.shape(result) == np.broadcast_shapes(np.shape(input1), np.shape(input2))
    attempt(water.props, inputspec, input1, input2, "nan")


PROCEDURES = sorted(name for name in dir(zp) if not name.startswith("_") and callable(
    getattr(zp, name)) and name not in ("Fluid", "ZentropiaError"))


@settings(max_examples=150, deadline=None, derandomize=True, database=None)
@given(name=st.sampled_from(PROCEDURES), args=st.lists(anything, max_size=8))
def test_procedures_with_any_arguments(name, args):
    attempt(getattr(zp, name), *args)
    zp.releaserefstate()
    known_good()
