// The saturation line in the caller's units: the models without a phase envelope say so, and the
// envelope of a back-end that has one (a stand-in behind the IF97 row) comes back converted.
#include "Import/if97_zp.hpp"
#include "base/zp_models.hpp"
#include "main/curves.hpp"
#include "main/water_support.hpp"

#include <gtest/gtest.h>

#include <vector>

namespace {

using namespace water_support;

constexpr double untouched = 42.0;
constexpr std::size_t extent = 5;

struct envelope {
    int npnts = 3;
    std::vector<double> t = std::vector<double>(extent, untouched);
    std::vector<double> p = std::vector<double>(extent, untouched);
    std::vector<composition> x = std::vector<composition>(extent);
    std::vector<composition> y = std::vector<composition>(extent);
    std::string errormsg;
    void compute() { zentropia_main::saturation_line(npnts, t, p, x, y, errormsg); }
};

// Runs first, in a process that has selected nothing yet.
TEST(SaturationLine, WithoutAModelReportsAndLeavesTheArrays) {
    envelope e;
    e.errormsg = "No errors";
    e.compute();
    EXPECT_EQ(e.errormsg, "Error in Zentropia: no model selected for the saturation line");
    for (double v : e.t) EXPECT_EQ(v, untouched);
    for (double v : e.p) EXPECT_EQ(v, untouched);
}

TEST(SaturationLine, IF97HasNoPhaseEnvelope) {
    select_water("SI", "PerMass");
    envelope e;
    e.compute();
    EXPECT_EQ(e.errormsg, "Error in Zentropia: phase envelope method for IF97not available.");
    for (double v : e.t) EXPECT_EQ(v, untouched);
    for (double v : e.p) EXPECT_EQ(v, untouched);
}

// An envelope in internal units (°C, bar) over the whole extent of the arrays, with compositions
// x = 0.25, y = 0.75 in the first component; it reports 3 points.
void fake_envelope(int& npnts, std::span<double> t, std::span<double> p, std::span<composition> x,
                   std::span<composition> y, std::string& errormsg) {
    npnts = 3;
    for (std::size_t i = 0; i < t.size(); ++i) {
        t[i] = 50.0 * double(i);
        p[i] = 1.0 + 40.0 * double(i);
        x[i].fill(0.0);
        y[i].fill(0.0);
        x[i][0] = 0.25;
        y[i][0] = 0.75;
    }
    errormsg = "No errors";
}

TEST(SaturationLine, EnvelopeComesBackInTheCallersUnits) {
    zp_adapter::operations with_envelope = if97_zp::operations;
    with_envelope.phaseenvelope = fake_envelope;
    const auto* previous = zp_models::replace_adapter(zp_models::model_id::if97, &with_envelope);
    for (const unit_set& set : all_unit_sets) {
        select_water(set.name, set.basis);
        envelope e;
        e.compute();
        ASSERT_EQ(e.errormsg, "No errors") << set.name;
        EXPECT_EQ(e.npnts, 3);
        // every entry is converted, not only the npnts reported
        for (std::size_t i = 0; i < extent; ++i) {
            const double t_si = 50.0 * double(i) + 273.15, p_si = (1.0 + 40.0 * double(i)) * 1e5;
            EXPECT_NEAR(e.t[i], to_set(set, kind::T, t_si), 1e-9 * std::fabs(t_si))
                << set.name << " " << set.basis << " " << i;
            EXPECT_NEAR(e.p[i], to_set(set, kind::P, p_si), 1e-6 * to_set(set, kind::P, p_si))
                << set.name << " " << set.basis << " " << i;
            EXPECT_EQ(e.x[i][0], 0.25); // mole fractions carry no unit
            EXPECT_EQ(e.y[i][0], 0.75);
        }
    }
    zp_models::replace_adapter(zp_models::model_id::if97, previous);
    select_water();
}

} // namespace
