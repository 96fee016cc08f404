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

std::string path_of(std::string_view name) {
    return fluids_dir + std::string(name) + ".vmx";
}

} // namespace

TEST(VarimolFluidFile, SelectedFileEvaluatesAsTheBackEndWithItsModelCode) {
    // methane/CO2 (a pair with a database kij) in a gas state and in the two-phase region; the
    // NRTL taus differ in size and sign so that a swap of tau_ij and tau_ji would show.
    const std::vector<std::string> names{"CH4", "CO2"};
    const std::vector<double> conc{0.7, 0.3};
    struct case_row {
        std::string name, eos, mixing;
        std::vector<double> kij, nrtl, ws_kij;
        int code;
        pair_values direct;
    };
    const std::vector<case_row> cases{
        {"zp-test-pr", "PR", "vdW", {0.05}, {}, {}, 2, {0.05, 0, 0, 0, 0}},
        {"zp-test-srk", "srk", "VDW", {-0.02}, {}, {}, 3, {-0.02, 0, 0, 0, 0}},
        {"zp-test-prsv", "PRSV", "vdW", {0.11}, {}, {}, 1, {0.11, 0, 0, 0, 0}},
        {"zp-test-prsv-ws", "PRSV", "WS", {}, {0.9, -0.3, 0.3}, {0.2}, 11, {0, 0.9, -0.3, 0.3, 0.2}},
        {"zp-test-pr-ws", "PR", "ws", {}, {0.9, -0.3, 0.3}, {0.2}, 12, {0, 0.9, -0.3, 0.3, 0.2}},
    };
    const std::array<std::array<double, 2>, 2> states{{{60.0, 20.0}, {30.0, -60.0}}}; // bar, °C
    std::vector<double> enthalpies;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        vf::mixture m{c.name, {"methane", "carbon dioxide"}, conc, c.eos, c.mixing,
                      c.kij,  c.nrtl,                        c.ws_kij};
        std::string path, e;
        vf::write_fluidfile(fluids_dir, m, true, path, e);
        ASSERT_EQ(e, "No errors");
        EXPECT_EQ(path, path_of(c.name));
        for (const auto& [p, t] : states) {
            select({c.name}, {1.0});
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

TEST(VarimolFluidFile, DatabaseKijByDefaultAsASelectionByNames) {
    // Without --kij the file holds the database's kij: PRSV with van der Waals mixing then is
    // exactly the mixture selected by its components' names.
    vf::mixture m{"zp-test-default", {"methane", "CO2", "ethane"}, {0.6, 0.3, 0.1}};
    std::string path, e;
    vf::write_fluidfile(fluids_dir, m, true, path, e);
    ASSERT_EQ(e, "No errors");
    select({"zp-test-default"}, {1.0});
    const internal_state file = through_library(30.0, -40.0);
    select({"methane", "CO2", "ethane"}, {0.6, 0.3, 0.1});
    const internal_state named = through_library(30.0, -40.0);
    EXPECT_EQ(file.h, named.h);
    EXPECT_EQ(file.q, named.q);
    std::filesystem::remove(path);
}

TEST(VarimolFluidFile, BadRequestsAreRefusedAndNothingIsWritten) {
    const vf::mixture good{"zp-test-good", {"methane", "ethane"}, {0.9, 0.1}, "PR", "vdW"};
    struct bad_row {
        void (*change)(vf::mixture&);
        std::string message;
    };
    const std::vector<bad_row> cases{
        {[](vf::mixture& m) { m.name = "../evil"; }, "holds a path separator"},
        {[](vf::mixture& m) { m.name = "a\\b"; }, "holds a path separator"},
        {[](vf::mixture& m) { m.name = ".hidden"; }, "not start with a dot"},
        {[](vf::mixture& m) { m.name = ""; }, "the fluid needs a name"},
        {[](vf::mixture& m) { m.name = std::string(33, 'a'); }, "longer than 32 characters"},
        {[](vf::mixture& m) { m.name = "Methane"; }, "is the fluid CH4 of the fluid table"},
        {[](vf::mixture& m) { m.name = "r410a"; }, "of the fluid table"},
        {[](vf::mixture& m) { m.components[1] = "unobtainium"; },
         "Error in Varimol: error opening fluid unobtainium"},
        {[](vf::mixture& m) { m.components[1] = "R410A"; }, "cannot be combined"},
        {[](vf::mixture& m) { m.components[1] = "CH4"; }, "the component CH4 is given twice"},
        {[](vf::mixture& m) { m.conc = {0.9}; }, "2 components but 1 concentrations given"},
        {[](vf::mixture& m) { m.conc = {0.9, 0.2}; }, "add up to 1.1, not 1"},
        {[](vf::mixture& m) { m.conc = {1.1, -0.1}; }, "is -0.1; mole fractions are above 0"},
        {[](vf::mixture& m) { m.conc = {NAN, 0.1}; }, "is nan"},
        {[](vf::mixture& m) {
             m.components.assign(21, "methane");
             m.conc.assign(21, 1.0 / 21);
         },
         "21 components given; a fluid file holds 1 to 20"},
        {[](vf::mixture& m) { m.eos = "SRK", m.mixing = "WS"; }, "not with SRK"},
        {[](vf::mixture& m) { m.eos = "vdW"; }, "\"vdW\" is not PRSV, PR or SRK"},
        {[](vf::mixture& m) { m.mixing = "HV"; }, "\"HV\" is not vdW or WS"},
        {[](vf::mixture& m) { m.kij = {0.1, 0.2}; }, "kij wants 1 values for 2 components"},
        {[](vf::mixture& m) { m.kij = {INFINITY}; }, "the values must be finite"},
        {[](vf::mixture& m) { m.nrtl = {0.1, 0.2, 0.3}; }, "belong to Wong-Sandler mixing"},
        {[](vf::mixture& m) { m.mixing = "WS", m.kij = {0.1}; }, "kij belongs to van der Waals"},
        {[](vf::mixture& m) { m.mixing = "WS", m.nrtl = {0.1, 0.2}; },
         "NRTL wants 3 values for 2 components, 2 given"},
    };
    for (const auto& c : cases) {
        vf::mixture m = good;
        c.change(m);
        std::string path = "stale", e;
        vf::write_fluidfile(fluids_dir, m, true, path, e);
        EXPECT_NE(e.find(c.message), std::string::npos) << e;
        EXPECT_TRUE(path.empty());
        if (!m.name.empty() && m.name.find('/') == std::string::npos)
            EXPECT_FALSE(std::filesystem::exists(path_of(m.name))) << m.name;
    }
    // an existing file is kept unless replaced; the next good request works
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
