// zentropia: selects IF97 water and prints its properties at 1 bar and 300 K.
#include "base/zentropia_base.hpp"

#include <cstdio>
#include <string>
#include <vector>

namespace zb = zentropia_base;

namespace {

void print(const char* name, double value, const char* unit) {
    if (zb::isinit(value))
        std::printf("%-28s %16s\n", name, "not computed");
    else
        std::printf("%-28s %16.9g %s\n", name, value, unit);
}

bool failed(const std::string& errormsg) {
    if (zp_common::is_success(errormsg)) return false;
    std::fprintf(stderr, "zentropia: %s\n", errormsg.c_str());
    return true;
}

} // namespace

int main() {
    std::string errormsg;
    zb::setfluid("IF97", 1, std::vector<std::string>{"water"}, std::vector<double>{1.0}, errormsg);
    if (failed(errormsg)) return 1;

    // inputs in the library's internal units: bar and °C
    const double p_in = 1.0, t_in = 300.0 - 273.15;
    const double not_set = zp_common::not_set;
    double p = not_set, t = not_set, v = not_set, d = not_set, h = not_set, s = not_set,
           u = not_set, q = not_set, cv = not_set, dpdt = not_set, dpdv = not_set, d2pdt2 = not_set,
           d2pdv2 = not_set, d2pdtdv = not_set, dcvdt = not_set, eta = not_set, lambda = not_set,
           sigma = not_set;
    zp_common::composition x{}, y{};
    zb::allthermophys("PT", p_in, t_in, p, t, v, d, h, s, u, q, x, y, cv, dpdt, dpdv, d2pdt2,
                      d2pdv2, d2pdtdv, dcvdt, eta, lambda, sigma, errormsg);
    if (failed(errormsg)) return 1;
    const double cp = zb::calculate("PT", p_in, t_in, "cp", errormsg);
    if (failed(errormsg)) return 1;
    const double c = zb::calculate("PT", p_in, t_in, "c", errormsg);
    if (failed(errormsg)) return 1;
    const double mmol = zb::zp_mmol(errormsg);
    if (failed(errormsg)) return 1;

    std::printf("IF97 water at 1 bar and 300 K\n\n");
    print("pressure", p, "bar");
    print("temperature", t, "°C");
    print("temperature", t + 273.15, "K");
    print("specific volume", v, "m³/kg");
    print("density", d, "kg/m³");
    print("specific enthalpy", h, "kJ/kg");
    print("specific entropy", s, "kJ/(kg K)");
    print("specific internal energy", u, "kJ/kg");
    print("vapour quality", q, "(<= 0: liquid)");
    print("isobaric heat capacity", cp, "kJ/(kg K)");
    print("isochoric heat capacity", cv, "kJ/(kg K)");
    print("speed of sound", c, "m/s");
    print("dynamic viscosity", eta, "Pa s");
    print("thermal conductivity", lambda, "W/(m K)");
    print("surface tension", sigma, "N/m");
    print("(dp/dT) at constant v", dpdt, "Pa/K");
    print("(dp/dv) at constant T", dpdv, "Pa kg/m³");
    print("molar mass", mmol, "kg/mol");
    return 0;
}
