// The phase compositions of a refrigerant blend selected by its one name, through the C++
// interface as a caller sees them: the same as for the blend selected by its pure fluids, one
// entry per pure fluid, in both cubic models, inside and outside the two-phase region.
#include "zentropia/zentropia.h"
#include "zentropia/zentropia.hpp"

#include <gtest/gtest.h>

#include <array>
#include <string>

namespace {

// R410A: R32/R125 at 50/50 mass %, as mole fractions from the pure fluids' molar masses
std::vector<double> r410a_mole_fractions(const std::string& model) {
    std::array<double, 2> moles{};
    const char* names[] = {"R32", "R125"};
    for (int i = 0; i < 2; ++i) {
        zentropia::fluid pure(model, {names[i]}); // selects it
        std::string errormsg;
        double m_mol, t_crit, p_crit, t_min, t_max;
        zentropia::allinfo(m_mol, t_crit, p_crit, t_min, t_max, errormsg);
        EXPECT_EQ(errormsg, "No errors");
        moles[i] = 0.5 / m_mol;
    }
    return {moles[0] / (moles[0] + moles[1]), moles[1] / (moles[0] + moles[1])};
}

struct blend_case {
    const char* model;
    const char* inputspec;
    double input1, input2;
};

class BlendByOneName : public ::testing::TestWithParam<blend_case> {};

TEST_P(BlendByOneName, HasThePhaseCompositionsOfItsPureFluids) {
    const auto& c = GetParam();
    const auto overall = r410a_mole_fractions(c.model);
    zentropia::fluid by_names(c.model, {"R32", "R125"}, overall);
    const auto expected = by_names.props(c.inputspec, c.input1, c.input2);
    zentropia::fluid blend(c.model, {"R410A"});
    const auto got = blend.props(c.inputspec, c.input1, c.input2);
    ASSERT_EQ(got.ncomp, 2);
    EXPECT_EQ(got.phase, expected.phase);
    EXPECT_NEAR(got.x[0] + got.x[1], 1.0, 1e-12);
    EXPECT_NEAR(got.y[0] + got.y[1], 1.0, 1e-12);
    for (int i = 0; i < 2; ++i) {
        EXPECT_NEAR(got.x[i], expected.x[i], 1e-9) << "x" << i + 1;
        EXPECT_NEAR(got.y[i], expected.y[i], 1e-9) << "y" << i + 1;
    }
}

INSTANTIATE_TEST_SUITE_P(States, BlendByOneName,
                         ::testing::Values(blend_case{"Varimol", "Tq", 250.0, 0.5},
                                           blend_case{"Varimol", "Pq", 1e6, 0.0},
                                           blend_case{"Varimol", "PT", 1e5, 300.0},
                                           blend_case{"Varimol", "PT", 3e6, 250.0},
                                           blend_case{"liteVarimol", "Tq", 250.0, 0.3},
                                           blend_case{"liteVarimol", "PT", 1e5, 300.0},
                                           blend_case{"liteVarimol", "PT", 3e6, 250.0}));

TEST(BlendByOneName, PureFluidKeepsOneEntry) {
    zentropia::fluid pure("Varimol", {"R32"});
    const auto r = pure.props("Tq", 250.0, 0.5);
    EXPECT_EQ(r.ncomp, 1);
    EXPECT_EQ(r.x[0], 1.0);
    EXPECT_EQ(r.y[0], 1.0);
}

} // namespace
