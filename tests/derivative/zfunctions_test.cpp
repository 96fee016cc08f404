// Brent's method and the residual functions of the root finder, on plain functions whose roots
// are known in closed form; every residual counts its evaluations.
#include "derivative/zfunctions.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace {

using zfunctions::zbracket;

int evaluations = 0;

double linear(double x, int& ierr, std::string&) {
    ++evaluations;
    ierr = 0;
    return 2.0 * x - 3.0;
}
double cosine_fixed_point(double x, int& ierr, std::string&) {
    ++evaluations;
    ierr = 0;
    return std::cos(x) - x;
}
double cubic(double x, int& ierr, std::string&) {
    ++evaluations;
    ierr = 0;
    return x * x * x - 2.0 * x - 5.0;
}
double exponential(double x, int& ierr, std::string&) {
    ++evaluations;
    ierr = 0;
    return std::exp(x) - 10.0;
}
// A sign change without a root: the bracket shrinks around the jump at 0 and never resolves it.
double step_at_zero(double x, int& ierr, std::string&) {
    ++evaluations;
    ierr = 0;
    return x < 0.0 ? -1.0 : 1.0;
}
// Jump at 1000.25: the search ends on the relative resolution of the iterate.
double step_at_1000(double x, int& ierr, std::string&) {
    ++evaluations;
    ierr = 0;
    return x < 1000.25 ? -1.0 : 1.0;
}
double square_plus_one(double x, int& ierr, std::string&) {
    ++evaluations;
    ierr = 0;
    return x * x + 1.0;
}
// Reports the tolerated warning code on every evaluation.
double linear_warning(double x, int& ierr, std::string&) {
    ++evaluations;
    ierr = 28;
    return x - 0.5;
}
// Fails with a code of its own beyond x = 1.
double linear_failing_above_one(double x, int& ierr, std::string& errormsg) {
    ++evaluations;
    ierr = x > 1.0 ? 5 : 0;
    if (ierr != 0) errormsg = "evaluation failed";
    return x - 0.5;
}

struct smooth_case {
    const char* name;
    zfunctions::residual_function f;
    double a, b, root;
    int max_evaluations; // superlinear convergence: far fewer than bisection would need
};

TEST(Zbracket, FindsRootsOfSmoothFunctionsInFewEvaluations) {
    const smooth_case cases[] = {
        {"linear", linear, 0.0, 10.0, 1.5, 5},
        {"cos x = x", cosine_fixed_point, 0.0, 1.0, 0.7390851332151607, 12},
        {"Wallis cubic", cubic, 2.0, 3.0, 2.0945514815423265, 12},
        {"exp x = 10", exponential, 0.0, 5.0, std::log(10.0), 14},
        {"reversed bracket", cubic, 3.0, 2.0, 2.0945514815423265, 12},
    };
    for (const auto& c : cases) {
        evaluations = 0;
        int ierr = -1;
        std::string errormsg = "stale";
        const double x = zbracket(c.f, c.a, c.b, 1e-12, ierr, errormsg);
        EXPECT_EQ(ierr, 0) << c.name;
        EXPECT_EQ(errormsg, "No errors") << c.name;
        EXPECT_NEAR(x, c.root, 1e-12) << c.name;
        EXPECT_LE(evaluations, c.max_evaluations) << c.name;
    }
}

TEST(Zbracket, RootExactlyAtAnEndIsReturnedInTheFirstIteration) {
    // 2x - 3 vanishes at 1.5; no further evaluation beyond the two end values is needed
    for (const auto& [a, b] : {std::pair{1.5, 4.0}, std::pair{-2.0, 1.5}}) {
        evaluations = 0;
        int ierr = -1;
        std::string errormsg;
        EXPECT_EQ(zbracket(linear, a, b, 1e-12, ierr, errormsg), 1.5);
        EXPECT_EQ(ierr, 0);
        EXPECT_EQ(evaluations, 2);
    }
}

TEST(Zbracket, NoSignChangeFailsAfterExactlyTwoEvaluations) {
    for (const auto& [a, b] : {std::pair{2.0, 10.0}, std::pair{-10.0, -5.0}}) {
        evaluations = 0;
        int ierr = 0;
        std::string errormsg;
        const double x = zbracket(square_plus_one, a, b, 1e-12, ierr, errormsg);
        EXPECT_EQ(ierr, 107);
        EXPECT_EQ(errormsg, "Error Zentropia Brent solver: root not bracketed...");
        EXPECT_EQ(x, 0.0);
        EXPECT_EQ(evaluations, 2);
    }
    // a good search right after the failure is unaffected
    int ierr = 0;
    std::string errormsg;
    EXPECT_NEAR(zbracket(linear, 0.0, 2.0, 1e-12, ierr, errormsg), 1.5, 1e-12);
    EXPECT_EQ(errormsg, "No errors");
}

TEST(Zbracket, StopsAfterOneHundredIterationsWithTheLastIterate) {
    evaluations = 0;
    int ierr = 0;
    std::string errormsg;
    const double x = zbracket(step_at_zero, -1.0, 1.0, 0.0, ierr, errormsg);
    EXPECT_EQ(ierr, 108);
    EXPECT_EQ(errormsg, "Error Zentropia Brent solver: no convergence...");
    EXPECT_EQ(evaluations, 102);    // the two ends and one per iteration
    EXPECT_LT(std::fabs(x), 1e-25); // the last iterate, deep in the shrunken bracket
}

TEST(Zbracket, ResolvesTheIterateToItsRelativePrecision) {
    // Without an absolute tolerance the search stops at 3e-14 relative resolution.
    evaluations = 0;
    int ierr = 0;
    std::string errormsg;
    const double x = zbracket(step_at_1000, 1000.0, 1001.0, 0.0, ierr, errormsg);
    EXPECT_EQ(ierr, 0);
    EXPECT_NEAR(x, 1000.25, 2.0 * 6e-14 * 1000.25);
    EXPECT_LT(evaluations, 50);
    // With a coarse absolute tolerance it stops much earlier, within that tolerance.
    evaluations = 0;
    const double coarse = zbracket(step_at_1000, 1000.0, 1001.0, 1e-3, ierr, errormsg);
    EXPECT_EQ(ierr, 0);
    EXPECT_NEAR(coarse, 1000.25, 1e-3);
    EXPECT_LT(evaluations, 15);
}

TEST(Zbracket, ToleratesTheWarningCodeAndStopsOnAnyOther) {
    evaluations = 0;
    int ierr = 0;
    std::string errormsg;
    EXPECT_NEAR(zbracket(linear_warning, 0.0, 1.0, 1e-12, ierr, errormsg), 0.5, 1e-12);
    EXPECT_EQ(ierr, 28);

    // failing at the upper end: the search stops at the second evaluation with the code
    evaluations = 0;
    EXPECT_EQ(zbracket(linear_failing_above_one, 0.0, 2.0, 1e-12, ierr, errormsg), 0.0);
    EXPECT_EQ(ierr, 5);
    EXPECT_EQ(errormsg, "evaluation failed");
    EXPECT_EQ(evaluations, 2);
}

double a_minus_twice_b(double a, double b) {
    return a - 2.0 * b;
}

TEST(ZfunctionXy, OrderChoosesWhichArgumentIsTheUnknown) {
    struct xy_case {
        int order;
        double y, z, root;
    };
    // order 1: z = x - 2y;  order 2: z = y - 2x
    const xy_case cases[] = {{1, 1.0, 3.0, 5.0}, {2, 1.0, -3.0, 2.0}, {2, 10.0, 4.0, 3.0}};
    for (const auto& c : cases) {
        zfunctions::setzfunction_xy(a_minus_twice_b, c.y, c.z, c.order);
        int ierr = -1;
        std::string errormsg;
        EXPECT_NEAR(zbracket(zfunctions::zfunction_xy, -10.0, 10.0, 1e-12, ierr, errormsg), c.root,
                    1e-12)
            << "order " << c.order;
        EXPECT_EQ(ierr, 0);
    }
}

TEST(ZfunctionXy, InvalidOrderStopsAtTheFirstEvaluation) {
    for (const int order : {0, 3, -1}) {
        zfunctions::setzfunction_xy(a_minus_twice_b, 1.0, 1.0, order);
        int ierr = 0;
        std::string errormsg;
        EXPECT_EQ(zbracket(zfunctions::zfunction_xy, -10.0, 10.0, 1e-12, ierr, errormsg), 0.0);
        EXPECT_EQ(ierr, 101);
        EXPECT_EQ(errormsg, "Invalid order for function evaluation in ZFunction_xy");
    }
}

// A fake property: "ab" = 3 a + b^2 in any unit, with a failure text for negative b. It records
// the specification it was asked with.
std::string last_inputspec;
int property_calls = 0;
double fake_property(std::string_view inputspec, double input1, double input2,
                     std::string& errormsg) {
    ++property_calls;
    last_inputspec = inputspec;
    errormsg = input2 < 0.0 ? "Error in Fake: negative second input" : "No errors";
    return 3.0 * input1 + input2 * input2;
}

TEST(Zsolve, SolvesForEitherInputOfAPropertyFunction) {
    struct zsolve_case {
        int order;
        double y, z, xa, xb, root;
    };
    const zsolve_case cases[] = {
        {1, 2.0, 10.0, 0.0, 5.0, 2.0},  // 3x + 4 = 10
        {2, 1.0, 12.0, 0.0, 10.0, 3.0}, // 3 + x^2 = 12
        {2, 0.0, 2.0, 0.0, 2.0, std::sqrt(2.0)},
    };
    for (const auto& c : cases) {
        std::string errormsg;
        const double x =
            zfunctions::zsolve(fake_property, c.z, "abliq", c.y, c.order, c.xa, c.xb, errormsg);
        EXPECT_NEAR(x, c.root, 1e-12) << "order " << c.order;
        EXPECT_EQ(errormsg, "No errors");
        EXPECT_EQ(last_inputspec, "ab"); // the specification is held as two characters
    }
}

TEST(Zsolve, AFailingEvaluationKeepsItsTextAndTheSearchGoesOn) {
    // Unknown second input over [-1, 3]: the lower end fails with a text but returns a value,
    // and the search continues to the root 3 + x^2 = 7, x = 2.
    property_calls = 0;
    std::string errormsg;
    const double x = zfunctions::zsolve(fake_property, 7.0, "ab", 1.0, 2, -1.0, 3.0, errormsg);
    EXPECT_NEAR(x, 2.0, 1e-12);
    EXPECT_GT(property_calls, 2);
    EXPECT_EQ(errormsg, "No errors"); // the last evaluation, at the root, succeeded

    // The root at the lower end: the failure text of that evaluation stays.
    const double at_end =
        zfunctions::zsolve(fake_property, 4.0, "ab", 1.0, 2, -1.0, -3.0, errormsg);
    EXPECT_EQ(at_end, -1.0);
    EXPECT_EQ(errormsg, "Error in Fake: negative second input");
}

TEST(Zsolve, InvalidOrderIsReportedWithoutSearching) {
    property_calls = 0;
    std::string errormsg;
    EXPECT_EQ(zfunctions::zsolve(fake_property, 1.0, "ab", 1.0, 3, 0.0, 1.0, errormsg), 0.0);
    EXPECT_EQ(errormsg, "Invalid order for function evaluation in ZFunction_ZP");
    EXPECT_EQ(property_calls, 0);
}

TEST(Zsolve, NoSignChangeFailsWithCode107Text) {
    property_calls = 0;
    std::string errormsg;
    EXPECT_EQ(zfunctions::zsolve(fake_property, 100.0, "ab", 1.0, 1, 0.0, 1.0, errormsg), 0.0);
    EXPECT_EQ(errormsg, "Error Zentropia Brent solver: root not bracketed...");
    EXPECT_EQ(property_calls, 2);
}

TEST(Zfunctions, NonFiniteValuesFailWithATextAndNoCrash) {
    const double nan = std::nan("");
    const double inf = INFINITY;
    struct bad_case {
        double z, xa, xb;
        const char* message;
    };
    const bad_case cases[] = {
        {nan, 0.0, 1.0, "Error Zentropia Brent solver: root not bracketed..."},
        {1.0, 0.0, 1e300, "Error Zentropia Brent solver: root not bracketed..."}, // residual -inf
        {1.0, nan, 1.0,
         "Error Zentropia Brent solver: the bounds of the bracket must be finite "
         "numbers..."},
        {1.0, -inf, inf,
         "Error Zentropia Brent solver: the bounds of the bracket must be finite "
         "numbers..."},
    };
    for (const auto& c : cases) {
        std::string errormsg;
        EXPECT_EQ(zfunctions::zsolve(fake_property, c.z, "ab", 1.0, 2, c.xa, c.xb, errormsg), 0.0);
        EXPECT_EQ(errormsg, c.message) << c.z << " " << c.xa << " " << c.xb;
    }
    std::string errormsg;
    EXPECT_NEAR(zfunctions::zsolve(fake_property, 7.0, "ab", 1.0, 2, 0.0, 3.0, errormsg), 2.0,
                1e-12);
}

} // namespace
