// Which model answers the transport properties, and the IF97 values through that routing.
#include "main/water_support.hpp"
#include "transport/zentropia_transport.hpp"

#include <gtest/gtest.h>

namespace {

namespace ztr = zentropia_transport;
using zp_common::not_set;

TEST(Transport, If97AnswersViscosityAndConductivityItself) {
    water_support::select_water();
    // python3-iapws, IAPWS97 class at 1 MPa (10 bar) and 400 K: liquid.
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
    EXPECT_EQ(errormsg, "No errors");
}

TEST(Transport, If97SurfaceTensionFollowsR1_76) {
    // R1-76(2014) Eq. 1, rounded to 0.01 mN/m, on the saturation line.
    water_support::select_water();
    int checked = 0;
    for (const auto& row : water_support::read_csv("if97/verification_tables.csv")) {
        if (row[0] != "R1-76(2014) Eq. 1, rounded") continue;
        const double t = std::stod(row[7]);
        if (t >= 647.096) continue;
        std::string errormsg;
        const double sigma = ztr::zp_surftens("Tq", t - 273.15, 0.0, errormsg);
        ASSERT_EQ(errormsg, "No errors") << t;
        EXPECT_NEAR(sigma * 1000.0, std::stod(row[4]), 0.005 + 1e-9) << t;
        ++checked;
    }
    EXPECT_GE(checked, 15);
}

TEST(Transport, OwnModelIsNotAvailableYet) {
    double eta = 1, eta_t = 1, eta_rho = 1, lambda = 1, lambda_t = 1, lambda_rho = 1, sigma = 1;
    std::string errormsg;
    ztr::transport_calcprop(300.0, 0.001, eta, eta_t, eta_rho, lambda, lambda_t, lambda_rho, sigma,
                            errormsg);
    EXPECT_EQ(errormsg, "Error in Zentropia: own transport model not available for this fluid.");
    for (double value : {eta, eta_t, eta_rho, lambda, lambda_t, lambda_rho, sigma})
        EXPECT_EQ(value, not_set);
    // Remembering a fluid succeeds; the hook's text is its own.
    const std::array<std::string, 2> names{"methane", "ethane"};
    const std::array<double, 2> x{0.9, 0.1};
    ztr::transport_setfluid(2, names, x, errormsg);
    EXPECT_EQ(errormsg, "No errors");
    ztr::transport_setfluid(99, names, x, errormsg);
    EXPECT_EQ(errormsg, "No errors");
}

TEST(Transport, OtherModelsAskTheirStateFirst) {
    // A model without its own transport: the own model needs the state's temperature and volume,
    // and a back-end that cannot give them reports so.
    std::string errormsg = "";
    const std::array<std::string, 1> name{"water"};
    const std::array<double, 1> one{1.0};
    zentropia_base::setfluid("TPSI", 1, name, one, errormsg);
    ztr::zp_viscosity("PT", 10.0, 100.0, errormsg);
    EXPECT_TRUE(errormsg.starts_with("Error in TPSI")) << errormsg;
    double eta, eta_t, eta_rho, lambda, lambda_t, lambda_rho, sigma;
    ztr::zp_alltransprops("PT", 10.0, 100.0, eta, eta_t, eta_rho, lambda, lambda_t, lambda_rho,
                          sigma, errormsg);
    EXPECT_TRUE(errormsg.starts_with("Error in TPSI")) << errormsg;
    water_support::select_water();
    EXPECT_GT(ztr::zp_viscosity("PT", 10.0, 100.0, errormsg), 0.0);
    EXPECT_EQ(errormsg, "No errors");
}

} // namespace
