// Which model answers the transport properties, and IF97's values through that routing.
#include "main/water_support.hpp"
#include "transport/zentropia_transport.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <tuple>
#include <utility>
#include <vector>

namespace {

namespace ztr = zentropia_transport;
using water_support::not_set;

TEST(Transport, If97AnswersItself) {
    water_support::select_water();
    // python3-iapws, IAPWS97 class at 1 MPa and 400 K (126.85 °C).
    const double eta_ref = 0.000218821453480, lambda_ref = 0.683318718367;
    double eta, eta_t, eta_rho, lambda, lambda_t, lambda_rho, sigma;
    std::string errormsg;
    ztr::zp_alltransprops("PT", 10.0, 126.85, eta, eta_t, eta_rho, lambda, lambda_t, lambda_rho,
                          sigma, errormsg);
    ASSERT_EQ(errormsg, "No errors");
    EXPECT_NEAR(eta, eta_ref, 1e-8 * eta_ref);
    EXPECT_NEAR(lambda, lambda_ref, 1e-6 * lambda_ref);
    // IF97's bundle has neither the derivatives nor the surface tension.
    for (double value : {eta_t, eta_rho, lambda_t, lambda_rho, sigma}) EXPECT_EQ(value, not_set);
    EXPECT_EQ(ztr::zp_viscosity("PT", 10.0, 126.85, errormsg), eta);
    EXPECT_EQ(ztr::zp_thermcond("PT", 10.0, 126.85, errormsg), lambda);
    // Surface tension on the saturation line: R1-76(2014) Eq. 1, rounded to 0.01 mN/m.
    int checked = 0;
    for (const auto& row : water_support::read_csv("if97/verification_tables.csv")) {
        if (row["table"] != "R1-76(2014) Eq. 1, rounded" || row.number("in1") >= 647.096) continue;
        const double t = row.number("in1") - 273.15;
        EXPECT_NEAR(ztr::zp_surftens("Tq", t, 0.0, errormsg) * 1e3, row.number("value"), 0.005)
            << t;
        EXPECT_EQ(errormsg, "No errors");
        ++checked;
    }
    EXPECT_GE(checked, 15);
}

const std::string missing = "Error in Zentropia: own transport model not available for this fluid.";

struct own_result {
    double eta = 1, eta_t = 1, eta_rho = 1, lambda = 1, lambda_t = 1, lambda_rho = 1, sigma = 1;
    std::string errormsg;
};
own_result own_model(double t, double v) {
    own_result r;
    ztr::transport_calcprop(t, v, r.eta, r.eta_t, r.eta_rho, r.lambda, r.lambda_t, r.lambda_rho,
                            r.sigma, r.errormsg);
    return r;
}
void select_own(std::vector<std::string> names, std::vector<double> conc, std::string& errormsg) {
    ztr::transport_setfluid(static_cast<int>(names.size()), names, conc, errormsg);
}
void expect_not_computed(const own_result& r) {
    for (double value : {r.eta, r.eta_t, r.eta_rho, r.lambda, r.lambda_t, r.lambda_rho, r.sigma})
        EXPECT_EQ(value, not_set);
}

TEST(Transport, OwnModelNamesTheFluidItCannotDescribe) {
    std::string errormsg;
    for (const auto& [names, expected] :
         {std::pair{std::vector<std::string>{"methane", "no such fluid"},
                    missing + " (no such fluid)"},
          {std::vector<std::string>{}, missing}}) {
        select_own(names, std::vector<double>(names.size(), 1.0), errormsg);
        EXPECT_EQ(errormsg, expected);
        const own_result r = own_model(300.0, 0.01);
        EXPECT_EQ(r.errormsg, expected);
        expect_not_computed(r);
        select_own({"methane"}, {1.0}, errormsg); // the next good selection works
        ASSERT_EQ(errormsg, "No errors");
        EXPECT_EQ(own_model(300.0, 0.01).errormsg, "No errors");
    }
    // The routing passes the text on: a back-end without transport of its own.
    const water_support::water_with_derivatives model; // "Critova"
    select_own({"no such fluid"}, {1.0}, errormsg);
    EXPECT_EQ(ztr::zp_viscosity("PT", 10.0, 100.0, errormsg), not_set);
    EXPECT_EQ(errormsg, missing + " (no such fluid)");
}

TEST(Transport, OwnModelRejectsStatesThatAreNoStates) {
    std::string errormsg;
    select_own({"nitrogen"}, {1.0}, errormsg);
    ASSERT_EQ(errormsg, "No errors");
    const double nan = std::nan(""), inf = HUGE_VAL;
    const std::string state = "Error in Zentropia: own transport model needs a finite, positive "
                              "temperature and specific volume, got T = ";
    for (const auto& [t, v, expected] :
         {std::tuple{nan, 0.01, state + "nan K and v = 0.01 m3/kg"},
          {300.0, inf, state + "300 K and v = inf m3/kg"},
          {-5.0, 0.01, state + "-5 K and v = 0.01 m3/kg"},
          {300.0, 0.0, state + "300 K and v = 0 m3/kg"},
          {300.0, -1.0, state + "300 K and v = -1 m3/kg"},
          {100.0, 1e-5,
           std::string("Error in Zentropia: own transport model: specific volume "
                       "1e-05 m3/kg is below the close packing of the fluid's "
                       "molecules")}}) {
        const own_result r = own_model(t, v);
        EXPECT_EQ(r.errormsg, expected);
        expect_not_computed(r);
        EXPECT_EQ(own_model(300.0, 0.01).errormsg, "No errors");
    }
}

// A predefined blend named alone is the mixture of its components at its own composition.
TEST(Transport, OwnModelResolvesAPredefinedBlend) {
    std::string errormsg;
    select_own({"R410A"}, {1.0}, errormsg);
    ASSERT_EQ(errormsg, "No errors");
    const own_result blend = own_model(300.0, 0.01);
    ASSERT_EQ(blend.errormsg, "No errors");
    // R32/R125 50/50 by mass as mole fractions (molar masses 52.024 and 120.021 g/mol)
    const double x32 = (50.0 / 52.024) / (50.0 / 52.024 + 50.0 / 120.021);
    select_own({"R32", "R125"}, {x32, 1.0 - x32}, errormsg);
    const own_result parts = own_model(300.0, 0.01);
    EXPECT_NEAR(blend.eta, parts.eta, 1e-4 * parts.eta);
    EXPECT_NEAR(blend.lambda, parts.lambda, 1e-4 * parts.lambda);
}

// The caller's name of a component, its short name and its CAS number reach the same data; a
// mixture of a fluid with itself is that fluid.
TEST(Transport, OwnModelFindsFluidsByAnyName) {
    std::string errormsg;
    select_own({"CH4"}, {1.0}, errormsg);
    ASSERT_EQ(errormsg, "No errors");
    const own_result methane = own_model(150.0, 0.003);
    ASSERT_EQ(methane.errormsg, "No errors");
    for (const auto& [names, conc] :
         {std::pair{std::vector<std::string>{"methane"}, std::vector<double>{1.0}},
          {std::vector<std::string>{"74-82-8"}, std::vector<double>{2.0}},
          {std::vector<std::string>{"METHANE", "CH4"}, std::vector<double>{0.3, 0.7}}}) {
        select_own(names, conc, errormsg);
        ASSERT_EQ(errormsg, "No errors") << names[0];
        const own_result r = own_model(150.0, 0.003);
        EXPECT_NEAR(r.eta, methane.eta, 1e-12 * methane.eta) << names[0];
        EXPECT_NEAR(r.lambda, methane.lambda, 1e-12 * methane.lambda) << names[0];
        EXPECT_NEAR(r.sigma, methane.sigma, 1e-12 * methane.sigma) << names[0];
    }
    // Above the critical temperature there is no surface.
    EXPECT_EQ(own_model(200.0, 0.01).sigma, not_set);
}

// IF97 water never uses the own model; served by a back-end without transport properties, water
// gets the own model's values. python3-iapws (data/props/iapws_water.csv) at 0.1 MPa: the vapour
// at 450 K within the method's 15 % (viscosity) and 45 % (conductivity) for steam, the liquid at
// 350 K within its 70 % and 260 % for liquid water (see chung_reference_test).
TEST(Transport, OwnModelDescribesWaterBehindABackEndWithoutTransport) {
    const water_support::water_with_derivatives model; // "Critova"
    std::string errormsg;
    // t °C, η and λ of python3-iapws with their tolerances, the sign of dη/dT
    for (const auto& [t, eta_ref, eta_tol, lambda_ref, lambda_tol, rising] :
         {std::tuple{176.85, 1.5267400835e-05, 0.15, 0.0312693626091, 0.45, true},
          {76.85, 0.000368477413892, 0.70, 0.664889361394, 2.6, false}}) {
        const double eta = ztr::zp_viscosity("PT", 1.0, t, errormsg);
        ASSERT_EQ(errormsg, "No errors");
        EXPECT_NEAR(eta / eta_ref, 1.0, eta_tol) << t;
        EXPECT_NEAR(ztr::zp_thermcond("PT", 1.0, t, errormsg) / lambda_ref, 1.0, lambda_tol) << t;
        own_result r;
        ztr::zp_alltransprops("PT", 1.0, t, r.eta, r.eta_t, r.eta_rho, r.lambda, r.lambda_t,
                              r.lambda_rho, r.sigma, errormsg);
        EXPECT_EQ(r.eta, eta);
        EXPECT_EQ(r.eta_t > 0.0, rising) << t; // a gas's viscosity rises with T, a liquid's falls
        EXPECT_GT(r.sigma, 0.0) << t;          // both below the critical temperature
    }
}

} // namespace
