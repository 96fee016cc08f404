// The own transport model evaluates without touching the heap: every allocation of this program
// is counted.
#include "main/water_support.hpp"
#include "transport/zentropia_transport.hpp"

#include "allocation_counter.hpp"

#include <gtest/gtest.h>

#include <functional>

namespace {

namespace ztr = zentropia_transport;

using allocation_counter::allocations_of;

TEST(NoAllocation, OwnTransportModel) {
    EXPECT_GT(allocations_of([] { std::string text(100, 'x'); }), 0) << "the counter counts";
    const std::array<std::string, 10> names{
        "methane",   "ethane",   "propane",  "n-butane",       "isobutane",
        "n-pentane", "n-hexane", "nitrogen", "carbon dioxide", "hydrogen sulfide"};
    const std::array<double, 10> x{0.80, 0.07, 0.03, 0.01, 0.01, 0.005, 0.005, 0.03, 0.03, 0.01};
    std::string errormsg;
    ztr::transport_setfluid(10, names, x, errormsg);
    ASSERT_EQ(errormsg, "No errors");
    double o[7];
    double t = 250.0;
    EXPECT_EQ(allocations_of([&] {
                  t += 0.5; // a new state every time
                  ztr::transport_calcprop(t, 0.02, o[0], o[1], o[2], o[3], o[4], o[5], o[6],
                                          errormsg);
              }),
              0);
    EXPECT_EQ(errormsg, "No errors");
    // Through the routing, for a back-end without transport properties of its own.
    const water_support::water_with_derivatives model;
    EXPECT_EQ(allocations_of([&] {
                  ztr::zp_alltransprops("PT", 1.0, 150.0, o[0], o[1], o[2], o[3], o[4], o[5], o[6],
                                        errormsg);
              }),
              0);
    EXPECT_EQ(errormsg, "No errors");
}

} // namespace
