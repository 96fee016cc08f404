// calcprop asks the back-end only for what its keyword needs. What it returns must be, to the last
// bit and with the same error text, the value of the whole bundle evaluated the long way: the state
// by allthermophys, the derivative properties by allderivative, every output converted, the
// keyword's value picked. Every keyword, over single-phase, two-phase, near-critical and
// out-of-range states, in every unit set, for IF97, for a model whose states carry the pressure
// derivatives (whose two-phase derivatives come from the saturated phases) and for a Varimol
// mixture.
#include "derivative/zentropia_derivative.hpp"
#include "if97/if97.hpp"
#include "main/water_support.hpp"
#include "main/zentropia_main.hpp"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>

namespace {

using namespace water_support;
namespace zm = zentropia_main;

// The outputs of the whole bundle, in the order of the keyword table.
constexpr std::array<std::string_view, 30> short_forms{
    "p",     "t",     "v",      "d",     "h",    "s",    "u",      "q",      "cv",      "cp",
    "c",     "alpha", "beta",   "chi",   "fi",   "ksi",  "psi",    "zeta",   "theta",   "kappa",
    "gamma", "eta",   "lambda", "sigma", "dpdt", "dpdv", "d2pdt2", "d2pdv2", "d2pdtdv", "dcvdt"};
constexpr std::array<std::string_view, 11> long_forms{
    "Pressure",  "Temperature", "SPECVOLUME", "density",  "enthalpy",  "entropy",
    "intenergy", "vaporqual",   "heatcapv",   "HeatCapP", "soundspeed"};

struct whole_state {
    std::array<double, 30> value;
    std::string errormsg;
};

whole_state the_long_way(std::string_view inputspec, double in1, double in2) {
    whole_state w;
    w.errormsg = "No errors";
    double i1, i2;
    zm::inputconversion(inputspec, in1, in2, i1, i2);
    auto& o = w.value;
    o.fill(not_set);
    composition x{}, y{};
    zentropia_base::allthermophys(inputspec, i1, i2, o[0], o[1], o[2], o[3], o[4], o[5], o[6], o[7],
                                  x, y, o[8], o[24], o[25], o[26], o[27], o[28], o[29], o[21],
                                  o[22], o[23], w.errormsg);
    zentropia_derivative::allderivative(inputspec, i1, i2, o[0], o[1], o[2], o[3], o[7], o[8],
                                        o[24], o[25], o[26], o[27], o[28], o[29], o[9], o[10],
                                        o[11], o[12], o[13], o[14], o[15], o[16], o[17], o[18],
                                        o[19], o[20], w.errormsg);
    zm::alloutputconv(o[0], o[1], o[2], o[3], o[4], o[5], o[6], o[8], o[9], o[10], o[11], o[12],
                      o[13], o[14], o[15], o[16], o[17], o[18], o[19], o[21], o[22]);
    zm::outputconversion("sigma", o[23], o[23]);
    return w;
}

bool same_bits(double a, double b) {
    return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b) ||
           (std::isnan(a) && std::isnan(b));
}

// States in SI per kilogram (Pa, K, J/kg, J/(kg K), m³/kg): each given by several input pairs.
struct si_state {
    const char* what;
    double p, t;
};
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
const std::array<si_state, 9> single_phase{{{"liquid", 1e6, 300.0},
                                            {"steam", 1e5, 500.0},
                                            {"region 3", 25e6, 650.0},
                                            {"near critical", 22.1e6, 647.2},
                                            {"supercritical", 30e6, 700.0},
                                            {"region 5", 10e6, 1500.0},
                                            {"pressure too high", 2e8, 400.0},
                                            {"too cold", 1e6, 200.0},
                                            {"not a number", nan, 300.0}}};
// Two-phase states by pressure and quality (near the critical point too).
const std::array<std::pair<double, double>, 3> two_phase{{{1e6, 0.3}, {2.2e7, 0.5}, {5e3, 0.9}}};

struct input {
    std::string inputspec;
    double in1, in2;
};

// The input pairs of one state, in the caller's units, its other properties found the long way.
std::vector<input> inputs_of(std::string_view inputspec, double in1, double in2) {
    std::vector<input> out{{std::string(inputspec), in1, in2}};
    const whole_state w = the_long_way(inputspec, in1, in2);
    if (w.errormsg != "No errors") return out;
    const auto& o = w.value;
    out.push_back({"Ph", o[0], o[4]});
    out.push_back({"Ts", o[1], o[5]});
    out.push_back({"vu", o[2], o[6]});
    out.push_back({"Td", o[1], o[3]});
    out.push_back({"hs", o[4], o[5]});
    if (inputspec == "PT") out.push_back({"PT liq", in1, in2});
    return out;
}

// Empties what the back-ends remember of the state before a keyword is asked.
using forgetting = void (*)();
void forget_if97() {
    if97::uninit_if97();
}

void compare_every_keyword(const unit_set& set, const input& in, const std::string& where,
                           forgetting forget = &forget_if97) {
    const whole_state expected = the_long_way(in.inputspec, in.in1, in.in2);
    for (std::size_t k = 0; k < short_forms.size(); ++k) {
        for (const std::string_view keyword :
             {short_forms[k], k < long_forms.size() ? long_forms[k] : short_forms[k]}) {
            forget(); // every keyword from a back-end that remembers nothing of this state
            std::string errormsg;
            const double value = zm::calcprop(keyword, in.inputspec, in.in1, in.in2, errormsg);
            const std::string at = where + " " + in.inputspec + " " + std::string(keyword) +
                                   " in " + set.name + " " + set.basis;
            EXPECT_EQ(errormsg, expected.errormsg) << at;
            if (expected.errormsg == "No errors") {
                EXPECT_TRUE(same_bits(value, expected.value[k]))
                    << at << ": " << value << " against " << expected.value[k];
            }
        }
    }
    // An unknown keyword is reported for a state that stands, the state's failure otherwise.
    std::string errormsg;
    zm::calcprop("enthalpie", in.inputspec, in.in1, in.in2, errormsg);
    EXPECT_EQ(errormsg, expected.errormsg == "No errors" ? "Unknown property specified..."
                                                         : expected.errormsg)
        << where << " " << in.inputspec;
}

void compare_over_the_grid() {
    for (const unit_set& set : all_unit_sets) {
        std::string errormsg;
        zentropia_units::setunits(set.name, set.basis, "", "", errormsg);
        ASSERT_EQ(errormsg, "No errors");
        for (const si_state& st : single_phase)
            for (const input& in :
                 inputs_of("PT", to_set(set, kind::P, st.p), to_set(set, kind::T, st.t)))
                compare_every_keyword(set, in, st.what);
        for (const auto& [p, q] : two_phase)
            for (const input& in : inputs_of("Pq", to_set(set, kind::P, p), q))
                compare_every_keyword(set, in, "two-phase");
    }
}

// ---- A Varimol mixture: methane/ethane 0.9/0.1 ------------------------------------------------
// The cubic adapter remembers its last state; another state asked in between makes every keyword
// a fresh flash.
void forget_mixture_state() {
    std::string errormsg;
    zentropia_base::calculate("PT", 3.0, 20.0, "h", errormsg); // 3 bar, 20 °C
}

void select_mixture(const std::vector<std::string>& names, const std::vector<double>& conc) {
    std::string errormsg;
    zentropia_base::setfluid("Varimol", static_cast<int>(names.size()), names, conc, errormsg);
    ASSERT_TRUE(zp_common::is_success(errormsg)) << errormsg;
}

// (P, T) states in SI: gas, compressed liquid, dense supercritical, split into two phases (the
// bubble and dew pressures at 180 K are near 30 and 16 bar), and outside the model's range.
const std::array<si_state, 7> mixture_states{{{"gas", 1e5, 300.0},
                                              {"liquid", 50e5, 150.0},
                                              {"supercritical", 100e5, 300.0},
                                              {"two-phase", 25e5, 180.0},
                                              {"too hot", 1e5, 5000.0},
                                              {"pressure too high", 2e8, 300.0},
                                              {"not a number", 1e5, nan}}};

// Every keyword over the states above (and a point of given vapour fraction at `p_quality`) in
// every unit set; returns how many of the (P, T) states split into two phases.
int compare_mixture_grid(double p_quality) {
    std::string errormsg;
    const double mmol = zentropia_base::zp_mmol(errormsg);
    EXPECT_EQ(errormsg, "No errors");
    int two_phase_states = 0;
    for (const unit_set& set : all_unit_sets) {
        zentropia_units::setunits(set.name, set.basis, "", "", errormsg);
        EXPECT_EQ(errormsg, "No errors");
        for (const si_state& st : mixture_states) {
            const double p = to_set(set, kind::P, st.p, mmol), t = to_set(set, kind::T, st.t, mmol);
            const whole_state w = the_long_way("PT", p, t);
            if (w.errormsg == "No errors" && w.value[7] > 0.0 && w.value[7] < 1.0)
                ++two_phase_states;
            for (const input& in : inputs_of("PT", p, t))
                compare_every_keyword(set, in, st.what, &forget_mixture_state);
        }
        for (const input& in : inputs_of("Pq", to_set(set, kind::P, p_quality, mmol), 0.5))
            compare_every_keyword(set, in, "two-phase by quality", &forget_mixture_state);
    }
    return two_phase_states;
}

TEST(CalcpropLean, AVarimolMixtureAgreesToTheLastBit) {
    select_mixture({"methane", "ethane"}, {0.9, 0.1});
    EXPECT_EQ(compare_mixture_grid(20e5), static_cast<int>(all_unit_sets.size()))
        << "a state splits";
    // a mixture selected by one name
    select_mixture({"R410A"}, {1.0});
    compare_mixture_grid(10e5);
    select_water();
}

TEST(CalcpropLean, If97AgreesWithTheWholeStateToTheLastBit) {
    select_water();
    compare_over_the_grid();
    select_water();
}

TEST(CalcpropLean, AModelWithPressureDerivativesAgreesToTheLastBit) {
    // a pure fluid (two-phase derivatives from the saturated phases) and a mixture
    for (const std::vector<double>& conc : {std::vector<double>{1.0}, {0.5, 0.5}}) {
        const water_with_derivatives model(conc);
        compare_over_the_grid();
    }
}

} // namespace
