// The own transport model evaluates without touching the heap: every allocation of this program
// is counted.
#include "main/water_support.hpp"
#include "transport/zentropia_transport.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <new>

namespace {
long allocations = 0;
}

void* operator new(std::size_t size) {
    ++allocations;
    if (void* p = std::malloc(size == 0 ? 1 : size)) return p;
    throw std::bad_alloc();
}
void operator delete(void* p) noexcept {
    std::free(p);
}
void operator delete(void* p, std::size_t) noexcept {
    std::free(p);
}

namespace {

namespace ztr = zentropia_transport;

// Allocations made by 100 calls after a first one.
long allocations_of(const std::function<void()>& call) {
    call();
    const long before = allocations;
    for (int i = 0; i < 100; ++i) call();
    return allocations - before;
}

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
