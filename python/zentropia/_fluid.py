"""The Pythonic layer: Fluid objects whose methods loop over NumPy arrays in C++ and raise
ZentropiaError instead of returning error texts."""

import numpy as np

from . import _core

_SUCCESS = ("No errors", "Same fluid")
_NOT_SET = -8888.8

# the unit symbol of each property of Fluid.props; q and gamma are dimensionless
_UNIT_SYMBOLS = {
    "p": "P", "t": "T", "v": "v", "d": "d", "h": "h", "s": "s", "u": "u", "cv": "cv", "cp": "cp",
    "c": "c", "alpha": "alpha", "beta": "beta", "chi": "chi", "fi": "fi", "ksi": "ksi",
    "psi": "psi", "zeta": "zeta", "theta": "theta", "kappa": "kappa", "eta": "eta",
    "lambda": "lambda", "sigma": "sigma",
}
# the letters an inputspec names its two inputs by: the input symbols of the unit sets and q
_INPUT_LETTERS = "PTvdhsuq"


def _same(a, b):
    return a.lower() == b.lower()


def _check_components(model, components):
    """Raises ZentropiaError unless model can compute every component: a model without its
    back-end library says so; a model that computes one fluid (IF97: water) refuses other names
    and mixtures. A name counts by any of its names in the fluid table (long, short, CAS)."""
    _, offered, errormsg = _core.getcompset(model)
    if "not installed" in errormsg:
        raise ZentropiaError(errormsg)
    if errormsg not in _SUCCESS or not offered:
        return  # setfluid tells what is wrong
    if len(offered) == 1 and len(components) > 1:
        raise ZentropiaError("Error in Zentropia: model %s computes %s alone, not a mixture of %d "
                             "components" % (model, offered[0], len(components)))
    table = [_core.getfluidnames(k, "")[1] for k in range(3)]
    of_model = [_core.getfluidnames(k, model)[1] for k in range(3)]
    rows = list(zip(*table))
    for name in components:
        known = any(_same(name, n) for n in offered) or \
            any(_same(name, n) for names in of_model for n in names)
        known = known or any(any(_same(name, n) for n in row) and
                             any(_same(n, o) for n in row for o in offered) for row in rows)
        if not known:
            raise ZentropiaError('Error in Zentropia: model %s cannot compute "%s"; it computes %s'
                                 % (model, name if len(name) <= 64 else name[:64] + "...",
                                    ", ".join(offered[:12])))


def _check_inputspec(inputspec):
    if (isinstance(inputspec, str) and len(inputspec) >= 2 and inputspec[0] in _INPUT_LETTERS
            and inputspec[1] in _INPUT_LETTERS and inputspec[0] != inputspec[1]):
        return
    raise ValueError("inputspec %r: its two letters name the inputs by the symbols P, T, v, d, "
                     "h, s, u and q (quality), in this case: 'PT', 'Ph', 'Ps', 'Td', 'Pq' ..."
                     % (inputspec,))


class ZentropiaError(Exception):
    """A failure reported by the library. str(error) is the library's message; for arrays of
    states, ``index`` is the index of the first state that failed (None for a single call)."""

    def __init__(self, message, index=None):
        super().__init__(message)
        self.message = message
        self.index = index


def _check(errormsg):
    if errormsg not in _SUCCESS:
        raise ZentropiaError(errormsg)


class Fluid:
    """A fluid of one model, its components and composition, in one unit set.

    Fluid(model="IF97", components=("water",), composition=None, units="SI",
          basis="PerMass", unit_overrides=None)

    model: a model name of setfluid ("IF97", "RefProp", "PCP-SAFT" ...), in any case.
    components: component names (one name may be given as a plain string).
    composition: concentrations, one per component (default 1.0 for a single component).
    units: "SI", "Zentropia" or "Anglo-Saxon" (any case); basis: "PerMass" or "PerMole".
    unit_overrides: units of single properties, e.g. {"P": "MPa", "T": "degC", "eta": "cP",
    "cp": "kJ/(kg K)", "P": "psi"}.

    A component the model cannot compute ("nitrogen" or a mixture for IF97), a model whose
    back-end library is not installed and a unit that is not understood raise ZentropiaError
    here.

    The selection is made at once, so a bad name raises ZentropiaError here. States are given
    by an inputspec, the symbols of two properties ("PT", "Ph", "Ts", "Pq" ...), and two
    values, numbers or arrays (broadcast together), in the fluid's units. Properties that the
    model does not compute come back as NaN. The inputspec's letters are case-sensitive: "PT", not
    "pt".

    >>> water = Fluid("IF97", "water", units="SI", unit_overrides={"P": "bar"})
    >>> water.calc("h", "PT", 1.0, 300.0)          # J/kg at 1 bar, 300 K
    >>> water.props("PT", [1.0, 10.0], 300.0)["d"]  # densities, kg/m3
    """

    def __init__(self, model="IF97", components=("water",), composition=None, units="SI",
                 basis="PerMass", unit_overrides=None):
        components = (components,) if isinstance(components, str) else tuple(components)
        if composition is None:
            if len(components) != 1:
                raise ValueError("a composition is needed for %d components" % len(components))
            composition = (1.0,)
        self.model = model
        self.components = components
        self.composition = tuple(float(c) for c in composition)
        self.units = _core._unitset_name(units)
        self.basis = _core._basis_name(basis)
        self.unit_overrides = dict(unit_overrides or {})
        self._epoch = None
        _check_components(model, components)
        self._select()

    def __repr__(self):
        return ("Fluid(model=%r, components=%r, composition=%r, units=%r, basis=%r, "
                "unit_overrides=%r)" % (self.model, self.components, self.composition,
                                        self.units, self.basis, self.unit_overrides))

    def _select(self):
        """Makes this fluid and its units the library's selection, unless they still are."""
        if self._epoch == _core._selection_epoch():
            return
        _check(_core.setfluid(self.model, len(self.components), list(self.components),
                              list(self.composition)))
        units = [_core._unit_text(u) for u in self.unit_overrides.values()]
        errormsg = _core.setunits(self.units, self.basis, ",".join(self.unit_overrides),
                                  ",".join(units))
        if errormsg not in _SUCCESS:
            # name the override that fails, when one alone does
            for (symbol, unit), text in zip(self.unit_overrides.items(), units):
                single = _core.setunits(self.units, self.basis, symbol, text)
                if single not in _SUCCESS:
                    errormsg = '%s (unit "%s" of %s)' % (single, unit, symbol)
                    break
            raise ZentropiaError(errormsg)
        self._epoch = _core._selection_epoch()

    @staticmethod
    def _states(input1, input2):
        if isinstance(input1, (int, float)) and isinstance(input2, (int, float)):
            return (), np.array([input1], dtype=float), np.array([input2], dtype=float)
        # a state is real: complex values would lose their imaginary part without a word
        if np.iscomplexobj(input1) or np.iscomplexobj(input2):
            raise TypeError("inputs must be real numbers, not complex")
        a, b = np.broadcast_arrays(np.asarray(input1, dtype=float),
                                   np.asarray(input2, dtype=float))
        return a.shape, np.ravel(a), np.ravel(b)

    @staticmethod
    def _settle(shape, failed, first, message, errors, columns):
        """Raises for the first failed state, or sets NaN in the columns (arrays with one row per
        state) where states failed or values were not computed."""
        if errors not in ("raise", "nan"):
            raise ValueError("errors must be 'raise' or 'nan', not %r" % (errors,))
        if first >= 0 and errors == "raise":
            index = np.unravel_index(first, shape) if shape else None
            raise ZentropiaError(message, tuple(int(i) for i in index) if shape else None)
        if first < 0 and len(columns) == 1 and not shape:  # one number: spare the array work
            if abs(columns[0][0] - _NOT_SET) < 0.1:
                columns[0][0] = np.nan
            return
        for values in columns:
            values[failed] = np.nan
            values[np.abs(values - _NOT_SET) < 0.1] = np.nan

    def calc(self, prop, inputspec, input1, input2, errors="raise"):
        """The property named prop ("h" or "enthalpy", "cp", "c", "alpha", "eta" ... as calcprop
        knows them) at the states (inputspec, input1, input2). Returns a float for numbers, else an
        array of the inputs' broadcast shape. errors="raise" raises ZentropiaError for the first
        state that fails; errors="nan" returns NaN for it instead."""
        _check_inputspec(inputspec)
        self._select()
        shape, a, b = self._states(input1, input2)
        values, failed, first, message = _core._calcprop_array(prop, inputspec, a, b)
        self._settle(shape, failed, first, message, errors, [values])
        return values.reshape(shape) if shape else float(values[0])

    def props(self, inputspec, input1, input2, errors="raise"):
        """Every property of the states (inputspec, input1, input2), as a dict of name to float
        (for numbers) or array (of the inputs' broadcast shape): p, t, v, d, h, s, u, q, cv, cp, c,
        alpha, beta, chi, fi, ksi, psi, zeta, theta, kappa, gamma, eta, lambda, sigma; "phase"
        ("liquid", "vapour", "two-phase", "supercritical"; "" for a failed state); and the liquid
        and vapour compositions x and y (a last axis of one entry per component, for a blend
        selected by one name ("R410A") one per pure fluid it is made of; for a pure fluid 1.0
        where the phase exists, NaN where it does not). Each value is the one calc gives.
        errors as for calc."""
        _check_inputspec(inputspec)
        self._select()
        shape, a, b = self._states(input1, input2)
        values, x, y, phase, failed, first, message = _core._allprops_array(inputspec, a, b)
        columns = [values[:, i] for i in range(values.shape[1])]
        ncmp = len(_core._components())  # a blend selected by one name: its pure fluids
        x, y = x[:, :ncmp], y[:, :ncmp]
        self._settle(shape, failed, first, message, errors, columns + [x, y])
        result = {name: (col.reshape(shape) if shape else float(col[0]))
                  for name, col in zip(_core._allprops_columns, columns)}
        labels = np.array(_core._phase_names, dtype=object)[phase]
        result["phase"] = labels.reshape(shape) if shape else str(labels[0])
        result["x"] = x.reshape(shape + (ncmp,))
        result["y"] = y.reshape(shape + (ncmp,))
        return result

    def phase_envelope(self, points=1000):
        """The phase envelope of a mixture, traced by the model's back-end (Varimol): a dict of
        arrays "t" (K) and "p" (Pa), from low pressure on the bubble side through the critical
        point round to low pressure on the dew side, and "x" and "y", the liquid and vapour mole
        fractions at each point (one column per component). The envelope is in the back-end's
        units, whatever this fluid's unit set. Raises ZentropiaError for a model without one."""
        self._select()
        _, t, p, x, y, errormsg = _core.zp_saturationline(int(points))
        _check(errormsg)
        ncmp = len(_core._components())
        return {"t": np.array(t), "p": np.array(p),
                "x": np.array(x, dtype=float).reshape(len(t), -1)[:, :ncmp],
                "y": np.array(y, dtype=float).reshape(len(t), -1)[:, :ncmp]}

    def info(self):
        """The fluid's constants in its units: m_mol, t_crit, p_crit, t_min, t_max."""
        self._select()
        *values, errormsg = _core.allinfo()
        _check(errormsg)
        return dict(zip(("m_mol", "t_crit", "p_crit", "t_min", "t_max"), values))

    def unit(self, name):
        """The unit of a property of props ("h", "p", "lambda" ...) or of a unit symbol ("P",
        "Mmol" ...) in this fluid's unit set; "" for the dimensionless q and gamma."""
        if not isinstance(name, str):
            raise TypeError("a property name or unit symbol is a str, not %s" % type(name).__name__)
        if name in ("q", "gamma"):
            return ""
        self._select()
        unit, errormsg = _core.getunit(_UNIT_SYMBOLS.get(name, name))
        _check(errormsg)
        return unit


def fluidfile(name, components, composition, eos="PRSV", mixing="vdW", kij=None, nrtl=None,
              ws_kij=None, replace=False):
    """Writes the mixture of the pure fluids ``components`` (names of the fluid table or the
    database) with the mole fractions ``composition`` as the Varimol fluid file ``name``.vmx in
    the fluids directory beside the library, and returns the file's path. Afterwards
    ``Fluid("Varimol", name)`` selects that mixture (a selection by the fluids' own names uses
    PRSV with van der Waals mixing).

    eos: "PRSV" (Peng-Robinson with the Stryjek-Vera alpha), "PR" (Peng-Robinson with the 1978
    alpha) or "SRK" (Soave-Redlich-Kwong). mixing: "vdW" (van der Waals one-fluid with kij) or
    "WS" (Wong-Sandler with an NRTL excess Gibbs energy; PRSV and PR only).

    The pair parameters are lists in the pair order (1,2), (1,3) ... (1,n), (2,3) ... (n-1,n):
    kij (vdW) one kij = kji per pair, default the database's kij of the pair (0 where it has none);
    nrtl (WS) three values per pair, tau_ij, tau_ji, alpha_ij (dimensionless tau,
    G_ij = exp(-alpha_ij tau_ij)), default all 0; ws_kij (WS) the Wong-Sandler k_ij = k_ji of the
    cross second virial coefficient, one per pair, default 0. An existing file is replaced only
    with ``replace=True``. Raises ZentropiaError with the reason when the mixture cannot be
    written (unknown fluid, counts that differ, mole fractions not adding up to 1, Wong-Sandler
    with SRK, a name with a path separator or one a fluid already has, more than 20 components).

        >>> path = zentropia.fluidfile("CH4-C2H6-PR", ["methane", "ethane"], [0.9, 0.1], eos="PR")
        >>> gas = zentropia.Fluid("Varimol", ["CH4-C2H6-PR"])
    """
    if isinstance(components, str):
        components = [components]
    as_list = (lambda values: [] if values is None else [float(v) for v in np.ravel(values)])
    path, errormsg = _core._fluidfile(str(name), [str(c) for c in components],
                                      as_list(composition), str(eos), str(mixing), as_list(kij),
                                      as_list(nrtl), as_list(ws_kij), bool(replace))
    _check(errormsg)
    return path
