#include "transport/zentropia_transport.hpp"

#include "Import/varimol_load.hpp"
#include "base/common.hpp"
#include "base/filelocation.hpp"
#include "base/fluidstable.hpp"
#include "base/zentropia_base.hpp"
#include "fluiddb/sqlite.hpp"
#include "transport/chung.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <initializer_list>

namespace zentropia_transport {
namespace {

using zp_common::is_ok;
using zp_common::not_set;

constexpr std::string_view not_available =
    "Error in Zentropia: own transport model not available for this fluid.";
// The per-component transport texts are "<short name>.trn" (library "Transport" of the database).
constexpr std::string_view text_suffix = ".trn";
// Lines of a transport text: 18 fixed ones and two per Planck-Einstein term.
constexpr int fixed_lines = 18;
constexpr int max_lines = fixed_lines + 2 * chung::max_planck_einstein_terms;

// The association factors κ of Chung et al. (1988), as Poling et al. (2001), Table 9-1, list
// them, for fluids whose transport text carries none; by short name.
struct association_row {
    std::string_view short_name;
    double kappa;
};
constexpr std::array<association_row, 10> association_table{{
    {"MeOH", 0.215},
    {"EtOH", 0.175},
    {"1-PrOH", 0.143},
    {"2-PrOH", 0.143},
    {"1-BuOH", 0.132},
    {"iBuOH", 0.132},
    {"1-PeOH", 0.122},
    {"1-HxOH", 0.114},
    {"AcOH", 0.0916},
    {"H2O", 0.076},
}};

// The fluid the own model describes: Chung's pseudo-pure fluid of the selected components, or
// the text saying why there is none.
struct own_fluid {
    bool ready = false;
    chung::mixture mix;
    std::string failure{not_available};
};
own_fluid fluid;

// The key of a caller's component name in the fluid database: the short name of the row of the
// fluid-name table that holds the name in any column (compared in lower case), else the name as
// given.
std::string database_key(std::string_view name) {
    const auto key = fluidstable::tolower(name);
    if (fluidstable::nfluids() == 0) {
        std::string ignored;
        fluidstable::readfluidstable(ignored);
    }
    for (int c = 0; c < fluidstable::columns; ++c)
        for (int r = 0; r < fluidstable::nfluids(); ++r) {
            const auto cell = fluidstable::cell(r, c);
            if (!cell.empty() && cell != "-" && zp_common::lower(cell) == key)
                return std::string(fluidstable::cell(r, fluidstable::short_name));
        }
    return std::string(zp_common::strip(name));
}

bool read_number(std::string_view text, double& value) {
    text = zp_common::strip(text);
    const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
    return ec == std::errc() && end == text.data() + text.size() && std::isfinite(value);
}

// One component from the lines of its transport text (see the layout in data/transport/README.md).
bool parse_text(std::span<const std::string> lines, chung::component& c) {
    if (static_cast<int>(lines.size()) < fixed_lines) return false;
    std::array<double, fixed_lines> v{};
    for (int k = 1; k < fixed_lines; ++k)
        if (!read_number(lines[k], v[k])) return false;
    c = chung::component{};
    c.tc = v[1], c.vc = v[2], c.acentric = v[3], c.dipole = v[4], c.molar_mass = v[5];
    c.kappa = v[6], c.tb = v[7], c.pc = v[8];
    std::copy_n(v.begin() + 9, 5, c.cp0_poly.begin());
    c.cp0_tmin = v[14], c.cp0_tmax = v[15];
    const double terms = v[16];
    if (terms < 0 || terms > chung::max_planck_einstein_terms || terms != std::floor(terms))
        return false;
    c.pe_terms = static_cast<int>(terms), c.pe_c0 = v[17];
    if (static_cast<int>(lines.size()) < fixed_lines + 2 * c.pe_terms) return false;
    for (int k = 0; k < c.pe_terms; ++k)
        if (!read_number(lines[fixed_lines + 2 * k], c.pe_v[k]) ||
            !read_number(lines[fixed_lines + 2 * k + 1], c.pe_theta[k]))
            return false;
    return true;
}

// Reads the transport text of the caller's component `name` into c; false when the database
// holds no usable text for it.
bool load_component(std::string_view name, chung::component& c) {
    const std::string key = database_key(name);
    std::array<std::string, max_lines> lines;
    const int n = sqlite::getfluid(filelocation::fluidpath(filelocation::library_module),
                                   std::string(key).append(text_suffix), lines);
    if (!parse_text(std::span<const std::string>(lines.data(), std::max(n, 0)), c)) return false;
    if (c.kappa == 0.0)
        for (const auto& row : association_table)
            if (row.short_name == key) c.kappa = row.kappa;
    return true;
}

// A predefined mixture selected by its name alone (R410A, air) has no transport text of its own:
// its components and mole fractions come from its fluid text, each component found in the fluid
// table by its CAS number (the identifying number of the text). False when `name` is no such
// mixture or a component lacks transport data.
bool load_mixture(std::string_view name, std::span<chung::component> comps,
                  std::span<double> fractions, int& n) {
    varimol_load::fluid_data mixture;
    std::string errormsg;
    varimol_load::load_fluid(filelocation::fluidpath(filelocation::library_module),
                             database_key(name), "", mixture, errormsg);
    if (!is_ok(errormsg) || mixture.n_comps < 2) return false;
    n = mixture.n_comps;
    for (int i = 0; i < n; ++i) {
        const double id = mixture.fluidparameters[varimol::parameter_index(varimol::row_id, i)];
        fractions[i] =
            mixture.fluidparameters[varimol::parameter_index(varimol::row_mole_fraction, i)];
        bool found = false;
        for (int row = 0; row < fluidstable::nfluids() && !found; ++row) {
            std::string digits;
            for (const char ch : fluidstable::cell(row, fluidstable::cas_number))
                if (ch >= '0' && ch <= '9') digits += ch;
            double cas = 0.0;
            std::from_chars(digits.data(), digits.data() + digits.size(), cas);
            if (!digits.empty() && cas == id)
                found = load_component(fluidstable::cell(row, fluidstable::short_name), comps[i]);
        }
        if (!found) return false;
    }
    return true;
}

[[gnu::cold, gnu::noinline]] void report_state(double t, double v, std::string& errormsg) {
    std::array<char, 32> buffer{};
    errormsg.assign(zp_common::error_prefix)
        .append("own transport model needs a finite, positive temperature and specific "
                "volume, got T = ");
    errormsg.append(buffer.data(), std::to_chars(buffer.data(), buffer.data() + 32, t).ptr);
    errormsg.append(" K and v = ");
    errormsg.append(buffer.data(), std::to_chars(buffer.data(), buffer.data() + 32, v).ptr);
    errormsg.append(" m3/kg");
}

[[gnu::cold, gnu::noinline]] void report_density(double v, std::string& errormsg) {
    std::array<char, 32> buffer{};
    errormsg.assign(zp_common::error_prefix).append("own transport model: specific volume ");
    errormsg.append(buffer.data(), std::to_chars(buffer.data(), buffer.data() + 32, v).ptr);
    errormsg.append(" m3/kg is below the close packing of the fluid's molecules");
}

using zp_models::transport;

struct own_values {
    double eta = not_set, eta_t = not_set, eta_rho = not_set;
    double lambda = not_set, lambda_t = not_set, lambda_rho = not_set;
    double sigma = not_set;
};

// The own model at the state: its temperature and volume come from the back-end.
own_values own_model(std::string_view inputspec, double input1, double input2,
                     std::string& errormsg) {
    own_values out;
    const double t = zentropia_base::calculate(inputspec, input1, input2, "T", errormsg);
    if (!is_ok(errormsg)) return out;
    const double v = zentropia_base::calculate(inputspec, input1, input2, "v", errormsg);
    if (!is_ok(errormsg)) return out;
    transport_calcprop(t + 273.15, v, out.eta, out.eta_t, out.eta_rho, out.lambda, out.lambda_t,
                       out.lambda_rho, out.sigma, errormsg);
    return out;
}

// A back-end without a model for a property answers about -9.99999 or below.
bool backend_lacks(double value) {
    return value + 9.99999 < 1e-6;
}

// One property, answered as the selected model's row says: by the back-end, by the back-end first
// with the own model as fallback, or by the own model.
double single_property(std::string_view key, double own_values::*own,
                       transport zp_models::model::*route, std::string_view inputspec,
                       double input1, double input2, std::string& errormsg) {
    const transport by = zentropia_base::selected_alias().*route;
    if (by == transport::backend)
        return zentropia_base::calculate(inputspec, input1, input2, key, errormsg);
    if (by == transport::backend_then_own) {
        const double value = zentropia_base::calculate(inputspec, input1, input2, key, errormsg);
        if (!backend_lacks(value)) return value;
    }
    return own_model(inputspec, input1, input2, errormsg).*own;
}

} // namespace

void transport_setfluid(int ncmp, std::span<const std::string> cmp, std::span<const double> cnc,
                        std::string& errormsg) {
    errormsg = zp_common::no_errors;
    fluid.ready = false;
    const int n = std::min<int>({ncmp, static_cast<int>(cmp.size()), static_cast<int>(cnc.size())});
    if (n < 1 || n > zp_common::max_components) {
        fluid.failure = errormsg = not_available;
        return;
    }
    std::array<chung::component, chung::max_components> comps;
    std::array<double, chung::max_components> fractions{};
    int ncomps = n;
    std::span<const double> x = cnc.first(n);
    if (n == 1 && load_mixture(cmp[0], comps, fractions, ncomps)) {
        x = std::span<const double>(fractions.data(), ncomps);
    } else
        for (int i = 0; i < n; ++i)
            if (!load_component(cmp[i], comps[i])) {
                errormsg.assign(not_available)
                    .append(" (")
                    .append(zp_common::strip(cmp[i]))
                    .append(")");
                fluid.failure = errormsg;
                return;
            }
    if (!chung::make_mixture(std::span<const chung::component>(comps.data(), ncomps), x, fluid.mix,
                             errormsg)) {
        fluid.failure = errormsg;
        return;
    }
    fluid.ready = true;
}

// A two-phase state is described at its overall temperature and volume: the mixing rules see
// the mean density of both phases, not either phase.
void transport_calcprop(double t, double v, double& eta, double& eta_t, double& eta_rho,
                        double& lambda, double& lambda_t, double& lambda_rho, double& sigma,
                        std::string& errormsg) {
    eta = eta_t = eta_rho = lambda = lambda_t = lambda_rho = sigma = not_set;
    if (!fluid.ready) [[unlikely]] {
        errormsg = fluid.failure;
        return;
    }
    if (!(std::isfinite(t) && std::isfinite(v) && t > 0.0 && v > 0.0)) [[unlikely]]
        return report_state(t, v, errormsg);
    // Chung's G_1 = (1 - y/2)/(1 - y)³ has its pole at y = ρ Vc / 6 = 1.
    const double y = 1e-6 * fluid.mix.vc / (6.0 * fluid.mix.mean_molar_mass * v);
    if (!(y < 1.0)) [[unlikely]]
        return report_density(v, errormsg);
    errormsg = zp_common::no_errors;
    chung::properties p;
    chung::evaluate(fluid.mix, t, 1.0 / v, p);
    eta = p.eta, eta_t = p.eta_t, eta_rho = p.eta_rho;
    lambda = p.lambda, lambda_t = p.lambda_t, lambda_rho = p.lambda_rho;
    sigma = p.sigma;
}

void zp_alltransprops(std::string_view inputspec, double input1, double input2, double& eta,
                      double& eta_t, double& eta_rho, double& lambda, double& lambda_t,
                      double& lambda_rho, double& sigma, std::string& errormsg) {
    if (zentropia_base::selected_alias().backend_transport) {
        eta_t = eta_rho = lambda_t = lambda_rho = sigma = not_set;
        eta = zentropia_base::calculate(inputspec, input1, input2, "eta", errormsg);
        if (!is_ok(errormsg)) return;
        lambda = zentropia_base::calculate(inputspec, input1, input2, "lambda", errormsg);
        return;
    }
    const own_values own = own_model(inputspec, input1, input2, errormsg);
    eta = own.eta, eta_t = own.eta_t, eta_rho = own.eta_rho;
    lambda = own.lambda, lambda_t = own.lambda_t, lambda_rho = own.lambda_rho;
    sigma = own.sigma;
}

double zp_viscosity(std::string_view inputspec, double input1, double input2,
                    std::string& errormsg) {
    return single_property("eta", &own_values::eta, &zp_models::model::eta_lambda, inputspec,
                           input1, input2, errormsg);
}

double zp_thermcond(std::string_view inputspec, double input1, double input2,
                    std::string& errormsg) {
    return single_property("lambda", &own_values::lambda, &zp_models::model::eta_lambda, inputspec,
                           input1, input2, errormsg);
}

double zp_surftens(std::string_view inputspec, double input1, double input2,
                   std::string& errormsg) {
    return single_property("sigma", &own_values::sigma, &zp_models::model::sigma, inputspec, input1,
                           input2, errormsg);
}

} // namespace zentropia_transport
