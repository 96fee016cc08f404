#include "main/zentropia_thermo.hpp"

#include "base/zentropia_base.hpp"

#include <algorithm>
#include <array>

namespace zentropia_thermo {
namespace {

using zp_common::composition;
using zp_models::phases;

double ask(std::string_view inputspec, double input1, double input2, std::string_view key,
           std::string& errormsg) {
    return zentropia_base::calculate(inputspec, input1, input2, key, errormsg);
}

enum class phase_output { liquid, vapour, fugacity };

// Each composition output keeps its own work vector: a table model leaves it as the previous call
// left it.
composition& work_vector(phase_output kind) {
    static std::array<composition, 3> work{};
    return work[static_cast<int>(kind)];
}

void fill_work_vector(phase_output kind, std::string_view inputspec, double input1, double input2,
                      composition& work, std::string& errormsg) {
    const auto& model = zentropia_base::selected_alias();
    if (kind != phase_output::fugacity) {
        const bool liquid = kind == phase_output::liquid;
        switch (liquid ? model.liquid : model.vapour) {
        case phases::pure: // the coexisting phases are the pure fluid itself
        case phases::pure_liquid: {
            const double q = ask(inputspec, input1, input2, "q", errormsg);
            work[0] = liquid ? (q >= 1.0 ? 0.0 : 1.0) : (q > 0.0 ? 1.0 : 0.0);
            return;
        }
        case phases::adapter:
            if (liquid)
                zentropia_base::liquidcmp_zp(inputspec, input1, input2, work, errormsg);
            else
                zentropia_base::vaporcmp_zp(inputspec, input1, input2, work, errormsg);
            return;
        case phases::unchanged:
            return;
        case phases::by_keyword:
            break;
        }
    } else if (model.adapter_fugacity) {
        zentropia_base::fugacoef_zp(inputspec, input1, input2, work, errormsg);
        return;
    }
    // Any other model is asked by keyword; the dispatcher answers with its own failure when the
    // model does not know the keyword.
    const std::string_view key = kind == phase_output::liquid   ? "x"
                                 : kind == phase_output::vapour ? "y"
                                                                : "lnphi";
    work.fill(ask(inputspec, input1, input2, key, errormsg));
}

void phase_composition(phase_output kind, std::string_view inputspec, double input1, double input2,
                       composition& output, std::string& errormsg) {
    composition& work = work_vector(kind);
    fill_work_vector(kind, inputspec, input1, input2, work, errormsg);
    // A back-end that keeps components of zero concentration answers for every component.
    if (zentropia_base::selected_model().keeps_zero_components) {
        output = work;
        return;
    }
    // Spread back over the caller's components: a dropped component receives 0.
    const auto& sel = zentropia_base::selection();
    const int n = std::clamp(sel.usr_ncmp, 0, zp_common::max_components);
    int k = 0;
    for (int i = 0; i < n; ++i) output[i] = zp_models::is_dropped(sel.usr_cnc[i]) ? 0.0 : work[k++];
}

} // namespace

double zp_pressure(std::string_view inputspec, double input1, double input2,
                   std::string& errormsg) {
    return ask(inputspec, input1, input2, "P", errormsg);
}
double zp_temperature(std::string_view inputspec, double input1, double input2,
                      std::string& errormsg) {
    return ask(inputspec, input1, input2, "T", errormsg);
}
double zp_specvolume(std::string_view inputspec, double input1, double input2,
                     std::string& errormsg) {
    return ask(inputspec, input1, input2, "v", errormsg);
}
double zp_density(std::string_view inputspec, double input1, double input2, std::string& errormsg) {
    return ask(inputspec, input1, input2, "d", errormsg);
}
double zp_enthalpy(std::string_view inputspec, double input1, double input2,
                   std::string& errormsg) {
    return ask(inputspec, input1, input2, "h", errormsg);
}
double zp_entropy(std::string_view inputspec, double input1, double input2, std::string& errormsg) {
    return ask(inputspec, input1, input2, "s", errormsg);
}
double zp_intenergy(std::string_view inputspec, double input1, double input2,
                    std::string& errormsg) {
    return ask(inputspec, input1, input2, "u", errormsg);
}
double zp_vaporqual(std::string_view inputspec, double input1, double input2,
                    std::string& errormsg) {
    return ask(inputspec, input1, input2, "q", errormsg);
}
double dp_dv(std::string_view inputspec, double input1, double input2, std::string& errormsg) {
    return ask(inputspec, input1, input2, "dP_dv", errormsg);
}
double dp_dt(std::string_view inputspec, double input1, double input2, std::string& errormsg) {
    return ask(inputspec, input1, input2, "dP_dT", errormsg);
}
double d2p_dv2(std::string_view inputspec, double input1, double input2, std::string& errormsg) {
    return ask(inputspec, input1, input2, "d2P_dv2", errormsg);
}
double d2p_dt2(std::string_view inputspec, double input1, double input2, std::string& errormsg) {
    return ask(inputspec, input1, input2, "d2P_dT2", errormsg);
}
double d2p_dtdv(std::string_view inputspec, double input1, double input2, std::string& errormsg) {
    return ask(inputspec, input1, input2, "d2P_dTdv", errormsg);
}
double dcv_dt(std::string_view inputspec, double input1, double input2, std::string& errormsg) {
    return ask(inputspec, input1, input2, "dCv_dT", errormsg);
}

void zp_liquidcmp(std::string_view inputspec, double input1, double input2, composition& output,
                  std::string& errormsg) {
    phase_composition(phase_output::liquid, inputspec, input1, input2, output, errormsg);
}
void zp_vaporcmp(std::string_view inputspec, double input1, double input2, composition& output,
                 std::string& errormsg) {
    phase_composition(phase_output::vapour, inputspec, input1, input2, output, errormsg);
}
void zp_fugacoef(std::string_view inputspec, double input1, double input2, composition& output,
                 std::string& errormsg) {
    phase_composition(phase_output::fugacity, inputspec, input1, input2, output, errormsg);
}

void complete_derivatives(std::string_view inputspec, double input1, double input2, double& dpdt,
                          double& dpdv, double& d2pdt2, double& d2pdv2, double& d2pdtdv,
                          double& dcvdt, std::string& errormsg) {
    using derivative = double (*)(std::string_view, double, double, std::string&);
    const std::array<std::pair<double*, derivative>, 6> wanted{{{&dpdt, dp_dt},
                                                                {&dpdv, dp_dv},
                                                                {&d2pdt2, d2p_dt2},
                                                                {&d2pdv2, d2p_dv2},
                                                                {&d2pdtdv, d2p_dtdv},
                                                                {&dcvdt, dcv_dt}}};
    for (const auto& [value, get] : wanted) {
        if (!zp_common::isinit(*value)) continue;
        *value = get(inputspec, input1, input2, errormsg);
        if (!zp_common::is_ok(errormsg)) return;
    }
}

} // namespace zentropia_thermo
