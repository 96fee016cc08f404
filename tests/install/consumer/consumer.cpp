// A C++ program built against an installed Zentropia with find_package(Zentropia), as C++17 and
// as C++20.
#include <zentropia/zentropia.hpp>

#include <cmath>
#include <cstdio>

int main() {
    zentropia::fluid water("if97", {"Water"}, {}, "si");
    // IAPWS R7-97(2012), Table 5: h = 115.331273 kJ/kg at 3 MPa, 300 K
    const double h = water.calc("h", "PT", 3e6, 300.0);
    const auto state = water.props("PT", 3e6, 300.0);
    bool refused = false;
    try {
        zentropia::fluid nitrogen("IF97", {"nitrogen"});
    } catch (const zentropia::error& e) {
        refused = true;
        std::printf("refused: %s\n", e.what());
    }
    std::printf("C++%ld %s h=%.6f kJ/kg\n", __cplusplus / 100 % 100, zentropia::version.data(),
                h / 1000);
    // one answer: the derivatives IF97's full state lacks come from their entry points
    const bool derived = state.alpha == water.calc("alpha", "PT", 3e6, 300.0) &&
                         state.sigma == water.calc("sigma", "PT", 3e6, 300.0) &&
                         std::isnan(state.kappa) &&
                         std::isnan(water.calc("kappa", "PT", 3e6, 300.0));
    const bool liquid =
        state.phase == zentropia::phase::liquid && state.x[0] == 1.0 && std::isnan(state.y[0]);
    return std::fabs(h / 1000 - 115.331273) > 1e-6 || state.h != h || !refused || !derived ||
           !liquid;
}
