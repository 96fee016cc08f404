#pragma once
// What the adapters of the two cubic back-ends (Varimol and liteVarimol) share: the calculation
// modes by input specification and its suffixes, the molar unit conversions, the phase
// compositions by the vapour fraction, the selection of one property of a state, and the loading
// of a selection's fluid parameters. The back-ends take the same modes and the same molar SI
// units (K, Pa, m³/mol, J/mol, J/(mol K)).
#include "Import/adapter.hpp"
#include "Import/varimol_load.hpp"

#include <span>
#include <string>
#include <string_view>

namespace cubic_adapter {

// the back-ends' warning that the asked root does not exist and the other one was returned
inline constexpr int warning_code = 28;
// most fluids an adapter lists
inline constexpr int max_listed = 500;

// An adapter's copy of the selection as the caller made it, and the molar mass of the configured
// fluid.
struct selection {
    std::string fluidname = "undefined";
    int ncmp = 0;
    zp_adapter::component_names cmp{};
    zp_adapter::composition cnc{};
    double mmol = 0.0; // kg/mol
    // the configured fluid's components and their molar masses, kg/mol
    int n_comps = 0;
    zp_adapter::composition component_mmol{};
};

// Keeps the component count and molar masses of the configured fluid in the selection.
void keep_components(const varimol_load::fluid_data& fluid, selection& state);

// the fluids directory beside the library, with its final "/"
std::string fluid_directory();

// The six state variables in the order the back-ends take them, plus the quality; -8888.8 where
// not given.
struct state_vars {
    double t = zp_common::not_set, p = zp_common::not_set, v = zp_common::not_set,
           u = zp_common::not_set, h = zp_common::not_set, s = zp_common::not_set,
           q = zp_common::not_set;
};

// A state request in the back-end's terms.
struct request {
    int mode = 0;
    bool single_phase = false; // "_1ph": one homogeneous phase, no split
    state_vars in;             // the two given values, in internal units
};

// Reads the input specification: the pair of its first two characters (a density given is set as
// the specific volume 1/value), the phase suffix "vap"/"liq" of a "PT" pair and the single-phase
// suffix "_1ph". An unknown pair writes "<prefix>calculation of properties as function of
// <inputspec> not available." and returns false.
bool read_request(std::string_view inputspec, double value1, double value2,
                  std::string_view model_prefix, request& req, std::string& errormsg);

// the molar unit conversions, in place, with the molar mass mmol (kg/mol)
void inputunitsconv(double mmol, double& t, double& p, double& v, double& u, double& h, double& s);
void outputunitsconv(double mmol, double& t, double& p, double& v, double& u, double& h, double& s,
                     double& cv, double& dpdv, double& d2pdv2, double& d2pdtdv, double& dcvdt);
// the derivatives of a homogeneous state (h, s, cv, the pressure derivatives) from molar to
// internal units; t and p from K and Pa
void output_homogeneous(double mmol, double& t, double& p, double& h, double& s, double& cv,
                        double& dpdv, double& d2pdv2, double& d2pdtdv, double& dcvdt);

// One evaluated state in internal units.
struct phase_state {
    double p, t, v, d, h, s, u, q, cv, dpdt, dpdv, d2pdt2, d2pdv2, d2pdtdv, dcvdt, eta, lambda;
    zp_adapter::composition x, y, lnphi;
};
// One request and the state it gave, in internal units, with the back-end's code.
struct evaluated {
    request req;
    phase_state st;
    int ierr = 0;
};
// The last state an adapter evaluated. The back-ends answer a request from the configured fluid
// alone, so a caller that asks several properties of one state (or its phase compositions after
// its properties) pays one flash. Forgotten whenever the fluid is configured anew.
struct state_memory {
    bool valid = false;
    evaluated last;
};
// A state as the back-end answered it (in, q and the derivatives of st in its molar SI units)
// completed in internal units; the transport properties are not the back-end's (-8888.8).
void complete_state(double mmol, state_vars& in, double q, phase_state& st);

// An adapter's back-end call: the state of a request in internal units, the back-end's code
// returned.
using compute_fn = int (*)(const request& req, phase_state& st);
using put_code_fn = void (*)(int ierr, std::string& errormsg);

// The state of a request: the remembered one when exactly this request (every given value to the
// bit) follows, else computed and remembered.
const evaluated& state_for(state_memory& memory, const request& req, compute_fn compute);

// The part `wanted` (zp_adapter::output flags) of an evaluated state: every value of the state;
// the phase compositions x and y (the first `columns` entries) only when the quality is wanted.
// The back-end's failure code becomes the adapter's text by put_code.
void deliver(const evaluated& e, unsigned wanted, int columns, zp_adapter::state_values& out,
             zp_adapter::composition& x, zp_adapter::composition& y, std::string& errormsg,
             put_code_fn put_code);

// The adapters' `evaluate` operation: the request read from inputspec and the two values, its
// state (remembered or computed), and the part `wanted` of it delivered as `deliver` does; an
// unknown inputspec leaves every value at -8888.8 with the adapter's text.
void evaluate_part(state_memory& memory, compute_fn compute, put_code_fn put_code,
                   std::string_view model_prefix, int columns, std::string_view inputspec,
                   double value1, double value2, unsigned wanted, zp_adapter::state_values& out,
                   zp_adapter::composition& x, zp_adapter::composition& y, std::string& errormsg);

// The property `outputspec` of a state ("P", "T", "v", "d", "h", "s", "u", "q", "cv", "dP_dT",
// "dP_dv", "d2P_dT2", "d2P_dv2", "d2P_dTdv", "dCv_dT"); another name writes
// "<prefix>calculation of <output> as function of <input> not available." and gives -8888.8.
double select_output(const phase_state& st, std::string_view inputspec, std::string_view outputspec,
                     std::string_view model_prefix, std::string& errormsg);

// The liquid (or vapour) composition of a fluid of `dim` components at vapour fraction q: a pure
// fluid is wholly liquid below q = 1 and wholly vapour above q = 0; a mixture below the bubble
// point (q < 0) is liquid of its overall composition `overall`, above the dew point (q > 1)
// vapour of it, and in between the phases x and y.
void phase_composition(bool liquid, int dim, double q, const zp_adapter::composition& x,
                       const zp_adapter::composition& y, const zp_adapter::composition& overall,
                       zp_adapter::composition& output);

// true when the first name, the count and every concentration equal the stored selection (the
// later names are not compared: the first name names the whole fluid)
bool same_selection(std::string_view fluidname, int ncmp, const zp_adapter::composition& cnc,
                    int ncomp, std::span<const std::string> comp, std::span<const double> conc);

// Loads the fluid of a selection: names[0] a fluid or predefined mixture; with two or more names
// either the pure fluids of a mixture (assembled with the database's binary pairs) or a mixture
// named again with "?" or blank names. With two or more names the mole fractions become `conc`.
void load_selection(std::string_view fluidpath, std::span<const std::string> names,
                    std::span<const double> conc, std::string_view model_prefix,
                    varimol_load::fluid_data& fluid, std::string& errormsg);

// the fluids an adapter can load by name
using fluid_list = void (*)(int& ncomps, std::vector<std::string>& compset, std::string& errormsg);
// Resolves the predefined mixture `fluidname` into the pure fluids of the adapter's list with the
// same identifying numbers (the first such fluid of the list each); `take_fractions` also copies
// the mixture's mole fractions into conc. Returns the mixture's component count, or -1 when the
// fluid does not load.
int resolve_mixture(std::string_view fluidpath, std::string_view fluidname, fluid_list list,
                    std::string_view model_prefix, bool take_fractions,
                    zp_adapter::component_names& comp, zp_adapter::composition& conc);

// The pure fluids of the selection's one name as getfluid resolves them (n = -1: not a mixture
// the model can resolve), kept until the next selection.
struct resolved_mixture {
    bool valid = false;
    int n = -1;
    zp_adapter::component_names names;
    zp_adapter::composition conc{};
};

// The adapters' getfluid: the stored selection (its first name, "?" for the others, its
// concentrations); with ncomp = -1 on entry a predefined mixture resolved into its pure fluids,
// each the first fluid of `list` with the same identifying number. Resolving reads the fluid
// database, which costs far more than a state: it is done once per selection and kept in
// `resolved`.
void getfluid(const selection& state, resolved_mixture& resolved, fluid_list list,
              std::string_view model_prefix, int& ncomp, zp_adapter::component_names& comp,
              zp_adapter::composition& conc);

// The fluids loadable by name: the database's list of `library`, then the fluid files "*.vmx" of
// the fluids directory, at most `max_listed` in all.
void list_fluids(std::string_view fluidpath, std::string_view library, int max_listed, int& ncomps,
                 std::vector<std::string>& compset);

} // namespace cubic_adapter
