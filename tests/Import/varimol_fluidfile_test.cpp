// Fluid files written for a chosen equation of state and mixing rule: selected by name through
// the library, a file evaluates as the back-end configured directly with the same model code
// and parameters; bad requests are refused with their reason and nothing is written.
#include "Import/varimol_fluidfile.hpp"
#include "Import/varimol_load.hpp"
#include "base/zentropia_base.hpp"
#include "varimol/varimol.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>

namespace {

namespace vf = varimol_fluidfile;
using varimol::binary_index;
using varimol::parameter_index;

const std::string fluids_dir = ZP_FLUIDS_DIR;

struct internal_state {
    double h, s, q;
};
// h (kJ/kg), s (kJ/(kg K)) and q at (p bar, t °C) of the selected fluid, through the library
internal_state through_library(double p, double t) {
    std::string e;
    internal_state st{};
    st.h = zentropia_base::calculate("PT", p, t, "h", e);
    EXPECT_EQ(e, "No errors");
    st.s = zentropia_base::calculate("PT", p, t, "s", e);
    st.q = zentropia_base::calculate("PT", p, t, "q", e);
    EXPECT_EQ(e, "No errors");
    return st;
}

void select(const std::vector<std::string>& names, const std::vector<double>& conc) {
    std::string e;
    zentropia_base::setfluid("Varimol", static_cast<int>(names.size()), names, conc, e);
    ASSERT_TRUE(e == "No errors" || e == "Same fluid") << e;
}

// The back-end configured by the test itself: the pure fluids' constants from the database, the
// binary parameters placed by hand.
struct pair_values {
    double kij, tau12, tau21, alpha, ws_kij;
};
internal_state direct(int code, const std::vector<std::string>& names,
                      const std::vector<double>& conc, const pair_values& b, double p, double t) {
    varimol::fluid_parameters fp{};
    varimol::binary_parameters bp{};
    double mmol = 0.0;
    for (std::size_t c = 0; c < names.size(); ++c) {
        varimol_load::fluid_data pure;
        std::string e;
        varimol_load::load_fluid(fluids_dir, names[c], "", pure, e);
        EXPECT_EQ(e, "No errors");
        for (int row = 0; row < varimol::component_rows; ++row)
            fp[parameter_index(row, static_cast<int>(c))] = pure.fluidparameters[row];
        fp[parameter_index(varimol::row_mole_fraction, static_cast<int>(c))] = conc[c];
        mmol += conc[c] * pure.fluidparameters[varimol::row_molar_mass];
    }
    bp[binary_index(varimol::bin_kij, 0, 1)] = bp[binary_index(varimol::bin_kij, 1, 0)] = b.kij;
    bp[binary_index(varimol::bin_nrtl_tau, 0, 1)] = b.tau12;
    bp[binary_index(varimol::bin_nrtl_tau, 1, 0)] = b.tau21;
    bp[binary_index(varimol::bin_nrtl_alpha, 0, 1)] = b.alpha;
    bp[binary_index(varimol::bin_nrtl_alpha, 1, 0)] = b.alpha;
    bp[binary_index(varimol::bin_ws_kij, 0, 1)] = b.ws_kij;
    bp[binary_index(varimol::bin_ws_kij, 1, 0)] = b.ws_kij;
    int ierr = 0;
    varimol::vm3_setfluid(code, fp, bp, static_cast<int>(names.size()), ierr);
    EXPECT_EQ(ierr, 0);
    double T = t + 273.15, P = p * 1e5, v, u, h, s, q, cv, dpdt, dpdv, d2pdt2, d2pdv2, d2pdtdv,
           dcvdt;
    varimol::composition x{}, y{}, lnphi{};
    varimol::vm3_tmdprop(1, T, P, v, u, h, s, q, cv, dpdt, dpdv, d2pdt2, d2pdv2, d2pdtdv, dcvdt, x,
                         y, lnphi, ierr);
    EXPECT_TRUE(ierr == 0 || ierr == 28) << ierr;
    return {h / mmol / 1000.0, s / mmol / 1000.0, q};
}

// a mixture to write, every field given
vf::mixture mix(std::string name, std::vector<std::string> components, std::vector<double> conc,
                std::string eos = "PRSV", std::string mixing = "vdW", std::vector<double> kij = {},
                std::vector<double> nrtl = {}, std::vector<double> ws_kij = {}) {
    return {std::move(name),   std::move(components), std::move(conc), std::move(eos),
            std::move(mixing), std::move(kij),        std::move(nrtl), std::move(ws_kij)};
}

std::string path_of(std::string_view name) {
    return fluids_dir + std::string(name) + ".vmx";
}

} // namespace

TEST(VarimolFluidFile, SelectedFileEvaluatesAsTheBackEndWithItsModelCode) {
    // methane/CO2 (a pair with a database kij) in a gas state and in the two-phase region; the
    // NRTL taus differ in size and sign so that a swap of tau_ij and tau_ji would show.
    const std::vector<std::string> names{"CH4", "CO2"};
    const std::vector<double> conc{0.7, 0.3};
    const std::vector<std::string> by_name{"methane", "carbon dioxide"}; // as a caller names them
    const std::vector<double> ws_nrtl{0.9, -0.3, 0.3}, ws_k{0.2};
    struct case_row {
        vf::mixture m;
        int code;
        pair_values direct;
    };
    const std::vector<case_row> cases{
        {mix("zp-test-pr", by_name, conc, "PR", "vdW", {0.05}), 2, {0.05, 0, 0, 0, 0}},
        {mix("zp-test-srk", by_name, conc, "srk", "VDW", {-0.02}), 3, {-0.02, 0, 0, 0, 0}},
        {mix("zp-test-prsv", by_name, conc, "PRSV", "vdW", {0.11}), 1, {0.11, 0, 0, 0, 0}},
        {mix("zp-test-prsv-ws", by_name, conc, "PRSV", "WS", {}, ws_nrtl, ws_k),
         11,
         {0, 0.9, -0.3, 0.3, 0.2}},
        {mix("zp-test-pr-ws", by_name, conc, "PR", "ws", {}, ws_nrtl, ws_k),
         12,
         {0, 0.9, -0.3, 0.3, 0.2}},
    };
    const std::array<std::array<double, 2>, 2> states{{{60.0, 20.0}, {30.0, -60.0}}}; // bar, °C
    std::vector<double> enthalpies;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.m.name);
        std::string path, e;
        vf::write_fluidfile(fluids_dir, c.m, true, path, e);
        ASSERT_EQ(e, "No errors");
        EXPECT_EQ(path, path_of(c.m.name));
        for (const auto& [p, t] : states) {
            select({c.m.name}, {1.0});
            const internal_state lib = through_library(p, t);
            const internal_state ref = direct(c.code, names, conc, c.direct, p, t);
            EXPECT_NEAR(lib.h, ref.h, 1e-9 * std::fabs(ref.h) + 1e-9) << p << " bar " << t;
            EXPECT_NEAR(lib.s, ref.s, 1e-9 * std::fabs(ref.s) + 1e-12) << p << " bar " << t;
            EXPECT_NEAR(lib.q, ref.q, 1e-9) << p << " bar " << t;
            enthalpies.push_back(lib.h);
        }
        std::filesystem::remove(path);
    }
    // each model gives its own states: the code and the parameters were read, not defaulted
    for (std::size_t i = 0; i < enthalpies.size(); ++i)
        for (std::size_t j = i + 1; j < enthalpies.size(); ++j)
            EXPECT_GT(std::fabs(enthalpies[i] - enthalpies[j]), 1e-6) << i << " " << j;
}

TEST(VarimolFluidFile, BadRequestsAreRefusedAndNothingIsWritten) {
    const std::vector<std::string> two{"methane", "ethane"};
    const std::vector<double> half{0.5, 0.5};
    struct bad_row {
        vf::mixture m;
        std::string message;
    };
    const std::vector<bad_row> cases{
        {mix("../evil", two, half), "holds a path separator"},
        {mix(".hidden", two, half), "not start with a dot"},
        {mix(std::string(33, 'a'), two, half), "longer than 32 characters"},
        {mix("Methane", two, half), "is the fluid CH4 of the fluid table"},
        {mix("zp-x", {"methane", "unobtainium"}, half), "Error in Varimol: error opening fluid"},
        {mix("zp-x", {"methane", "R410A"}, half), "cannot be combined"},
        {mix("zp-x", {"methane", "CH4"}, half), "the component CH4 is given twice"},
        {mix("zp-x", two, {0.9}), "2 components but 1 concentrations given"},
        {mix("zp-x", two, {0.9, 0.2}), "add up to 1.1, not 1"},
        {mix("zp-x", two, {1.1, -0.1}), "is -0.1; mole fractions are above 0"},
        {mix("zp-x", std::vector<std::string>(21, "methane"), std::vector<double>(21, 1.0 / 21)),
         "21 components given; a fluid file holds 1 to 20"},
        {mix("zp-x", two, half, "SRK", "WS"), "not with SRK"},
        {mix("zp-x", two, half, "vdW"), "\"vdW\" is not PRSV, PR or SRK"},
        {mix("zp-x", two, half, "PR", "vdW", {0.1, 0.2}), "kij wants 1 values for 2 components"},
        {mix("zp-x", two, half, "PR", "WS", {0.1}), "kij belongs to van der Waals"},
        {mix("zp-x", two, half, "PR", "WS", {}, {0.1, 0.2}),
         "NRTL wants 3 values for 2 components"},
    };
    for (const auto& c : cases) {
        std::string path = "stale", e;
        vf::write_fluidfile(fluids_dir, c.m, true, path, e);
        EXPECT_NE(e.find(c.message), std::string::npos) << e;
        EXPECT_TRUE(path.empty());
        EXPECT_FALSE(std::filesystem::exists(path_of("zp-x")));
    }
    // an existing file is kept unless replaced; the next good request works
    const vf::mixture good = mix("zp-test-good", two, {0.9, 0.1}, "PR");
    std::string path, e;
    vf::write_fluidfile(fluids_dir, good, true, path, e);
    ASSERT_EQ(e, "No errors");
    vf::write_fluidfile(fluids_dir, good, false, path, e);
    EXPECT_NE(e.find("exists; replace it explicitly"), std::string::npos) << e;
    vf::write_fluidfile(fluids_dir, good, true, path, e);
    EXPECT_EQ(e, "No errors");
    select({"zp-test-good"}, {1.0});
    EXPECT_LT(through_library(20.0, -100.0).q, 1.0);
    std::filesystem::remove(path);
}
