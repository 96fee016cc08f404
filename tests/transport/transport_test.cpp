// Which model answers the transport properties, and IF97's values through that routing.
#include "main/water_support.hpp"
#include "transport/zentropia_transport.hpp"

#include <gtest/gtest.h>

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

TEST(Transport, OtherModelsUseTheOwnModel) {
    // The own model is not available yet; it needs the state's temperature and volume first, so
    // a back-end that cannot give them reports that.
    double eta = 1, eta_t = 1, eta_rho = 1, lambda = 1, lambda_t = 1, lambda_rho = 1, sigma = 1;
    std::string errormsg;
    ztr::transport_calcprop(300.0, 0.001, eta, eta_t, eta_rho, lambda, lambda_t, lambda_rho, sigma,
                            errormsg);
    const std::string missing =
        "Error in Zentropia: own transport model not available for this fluid.";
    EXPECT_EQ(errormsg, missing);
    for (double value : {eta, eta_t, eta_rho, lambda, lambda_t, lambda_rho, sigma})
        EXPECT_EQ(value, not_set);
    {
        const water_support::water_with_derivatives model; // "Critova": no transport of its own
        EXPECT_EQ(ztr::zp_viscosity("PT", 10.0, 100.0, errormsg), not_set);
        EXPECT_EQ(errormsg, missing);
        ztr::zp_surftens("PT", 10.0, 100.0, errormsg);
        EXPECT_EQ(errormsg, missing);
    }
    const std::array<std::string, 1> name{"water"};
    const std::array<double, 1> one{1.0};
    zentropia_base::setfluid("TPSI", 1, name, one, errormsg);
    ztr::zp_alltransprops("PT", 10.0, 100.0, eta, eta_t, eta_rho, lambda, lambda_t, lambda_rho,
                          sigma, errormsg);
    EXPECT_EQ(errormsg, "Error in TPSI: back-end library not installed.");
    water_support::select_water();
    EXPECT_GT(ztr::zp_viscosity("PT", 10.0, 100.0, errormsg), 0.0);
    EXPECT_EQ(errormsg, "No errors");
}

} // namespace
