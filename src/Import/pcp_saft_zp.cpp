#include "Import/pcp_saft_zp.hpp"

namespace pcp_saft_zp {
using backend = zp_adapter::absent<"PCP-SAFT">;
using namespace zp_adapter::offer;

constinit const zp_adapter::operations operations =
    backend::row(fluid | phase_compositions | fugacoef | phaseenvelope);

void pcp_saft_allpropsallphases(
    std::string_view, double, double, zp_adapter::phase_values&, zp_adapter::phase_values&,
    zp_adapter::phase_values&, zp_adapter::phase_values&, zp_adapter::phase_values&,
    zp_adapter::phase_values&, zp_adapter::phase_values&, double&, zp_adapter::composition&,
    zp_adapter::composition&, zp_adapter::phase_values&, zp_adapter::phase_values&,
    zp_adapter::phase_values&, zp_adapter::phase_values&, zp_adapter::phase_values&,
    zp_adapter::phase_values&, zp_adapter::phase_values&, double&, double&, std::string& errormsg) {
    backend::fail(errormsg);
}

void pcp_saft_allpropssatext(std::string_view, double, double, double&, double&, double&, double&,
                             double&, double&, double&, double&, zp_adapter::composition&,
                             zp_adapter::composition&, double&, double&, double&, double&, double&,
                             double&, double&, double&, double&, double&, std::string& errormsg) {
    backend::fail(errormsg);
}

void pcp_saft_capeopenderiv(std::string_view, double, double, double&, double&, double&, double&,
                            zp_adapter::composition&, std::string& errormsg) {
    backend::fail(errormsg);
}

void pcp_saft_xy_kij(double, double, double, std::array<double, 2>&, std::array<double, 2>&,
                     std::string& errormsg) {
    backend::fail(errormsg);
}

void pcp_saft_hsxy_mp(double, double, double, double&, double&, zp_adapter::composition&,
                      zp_adapter::composition&, std::string& errormsg) {
    backend::fail(errormsg);
}

} // namespace pcp_saft_zp
