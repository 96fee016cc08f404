#include "transport/zentropia_transport.hpp"

#include "base/common.hpp"
#include "base/zentropia_base.hpp"

#include <algorithm>
#include <array>
#include <initializer_list>

namespace zentropia_transport {
namespace {

using zp_common::is_ok;
using zp_common::not_set;

constexpr std::string_view not_available =
    "Error in Zentropia: own transport model not available for this fluid.";

// The fluid the own model describes, as the selection passed it on.
struct own_fluid {
    int ncmp = 0;
    std::array<double, zp_common::max_components> cnc{};
};
own_fluid fluid;

using zp_models::model_id;

bool alias_in(std::initializer_list<model_id> models) {
    return std::find(models.begin(), models.end(), zentropia_base::selected_alias()) !=
           models.end();
}

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

// One property: asked of the back-end for the models in `backend`, asked of RefProp first with
// the own model as fallback, and of the own model for every other model.
double single_property(std::string_view key, double own_values::*own,
                       std::initializer_list<model_id> backend, std::string_view inputspec,
                       double input1, double input2, std::string& errormsg) {
    if (alias_in(backend))
        return zentropia_base::calculate(inputspec, input1, input2, key, errormsg);
    if (alias_in({model_id::refprop})) {
        const double value = zentropia_base::calculate(inputspec, input1, input2, key, errormsg);
        if (!backend_lacks(value)) return value;
    }
    return own_model(inputspec, input1, input2, errormsg).*own;
}

} // namespace

void transport_setfluid(int ncmp, std::span<const std::string> /*cmp*/, std::span<const double> cnc,
                        std::string& errormsg) {
    errormsg = zp_common::no_errors;
    fluid = own_fluid{};
    fluid.ncmp = std::clamp(ncmp, 0, std::min<int>(zp_common::max_components, cnc.size()));
    std::copy_n(cnc.begin(), fluid.ncmp, fluid.cnc.begin());
}

void transport_calcprop(double /*t*/, double /*v*/, double& eta, double& eta_t, double& eta_rho,
                        double& lambda, double& lambda_t, double& lambda_rho, double& sigma,
                        std::string& errormsg) {
    // The corresponding-states method needs per-component critical data and ideal-gas heat
    // capacities, which arrive with the mixture back-end's fluid data.
    eta = eta_t = eta_rho = lambda = lambda_t = lambda_rho = sigma = not_set;
    errormsg = not_available;
}

void zp_alltransprops(std::string_view inputspec, double input1, double input2, double& eta,
                      double& eta_t, double& eta_rho, double& lambda, double& lambda_t,
                      double& lambda_rho, double& sigma, std::string& errormsg) {
    if (alias_in({model_id::if97, model_id::aerolt, model_id::mesheq})) {
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
    return single_property("eta", &own_values::eta,
                           {model_id::if97, model_id::aerolt, model_id::kelvora, model_id::mesheq},
                           inputspec, input1, input2, errormsg);
}

double zp_thermcond(std::string_view inputspec, double input1, double input2,
                    std::string& errormsg) {
    return single_property("lambda", &own_values::lambda,
                           {model_id::if97, model_id::aerolt, model_id::kelvora, model_id::mesheq},
                           inputspec, input1, input2, errormsg);
}

double zp_surftens(std::string_view inputspec, double input1, double input2,
                   std::string& errormsg) {
    return single_property("sigma", &own_values::sigma, {model_id::if97, model_id::libr_h2o},
                           inputspec, input1, input2, errormsg);
}

} // namespace zentropia_transport
