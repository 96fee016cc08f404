// Brent's method and the residual functions of the root finder, on plain functions whose roots
// are known in closed form; every residual counts its evaluations.
#include "derivative/zfunctions.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <tuple>

namespace {

using zfunctions::zbracket;

int evaluations = 0;

// A residual of a plain function that counts its evaluations and reports success.
template <double (*g)(double)> double counted(double x, int& ierr, std::string&) {
    ++evaluations;
    ierr = 0;
    return g(x);
}

constexpr auto linear = [](double x) { return 2.0 * x - 3.0; };
constexpr auto cosine_fixed_point = [](double x) { return std::cos(x) - x; };
constexpr auto wallis_cubic = [](double x) { return x * x * x - 2.0 * x - 5.0; };
constexpr auto square_plus_one = [](double x) { return x * x + 1.0; };
// Sign changes without a root: the bracket shrinks around the jump.
constexpr auto step_at_zero = [](double x) { return x < 0.0 ? -1.0 : 1.0; };
constexpr auto step_at_1000 = [](double x) { return x < 1000.25 ? -1.0 : 1.0; };

struct search {
    double x;
    int ierr;
    std::string errormsg;
    int evaluations;
};

search run(zfunctions::residual_function f, double a, double b, double tol) {
    evaluations = 0;
    search s{0.0, -1, "stale", 0};
    s.x = zbracket(f, a, b, tol, s.ierr, s.errormsg);
    s.evaluations = evaluations;
    return s;
}

TEST(Zbracket, FindsRootsOfSmoothFunctionsInFewEvaluations) {
    // Interpolation converges superlinearly: far fewer evaluations than the ~40 of bisection.
    const struct {
        const char* name;
        zfunctions::residual_function f;
        double a, b, root;
        int max_evaluations;
    } cases[] = {
        {"linear", counted<+linear>, 0.0, 10.0, 1.5, 5},
        {"cos x = x", counted<+cosine_fixed_point>, 0.0, 1.0, 0.7390851332151607, 12},
        {"Wallis cubic", counted<+wallis_cubic>, 2.0, 3.0, 2.0945514815423265, 12},
        {"reversed bracket", counted<+wallis_cubic>, 3.0, 2.0, 2.0945514815423265, 12},
    };
    for (const auto& c : cases) {
        const search s = run(c.f, c.a, c.b, 1e-12);
        EXPECT_EQ(s.ierr, 0) << c.name;
        EXPECT_EQ(s.errormsg, "No errors") << c.name;
        EXPECT_NEAR(s.x, c.root, 1e-12) << c.name;
        EXPECT_LE(s.evaluations, c.max_evaluations) << c.name;
    }
}

TEST(Zbracket, EndsOfTheBracket) {
    const struct {
        const char* name;
        zfunctions::residual_function f;
        double a, b;
        double x;
        int ierr;
        const char* errormsg;
    } cases[] = {
        // a root exactly at either end is returned without a further evaluation
        {"root at the upper end", counted<+linear>, -2.0, 1.5, 1.5, 0, "No errors"},
        {"root at the lower end", counted<+linear>, 1.5, 4.0, 1.5, 0, "No errors"},
        // no sign change: code 107 after the two end values
        {"both ends positive", counted<+square_plus_one>, 2.0, 10.0, 0.0, 107,
         "Error Zentropia Brent solver: root not bracketed..."},
    };
    for (const auto& c : cases) {
        const search s = run(c.f, c.a, c.b, 1e-12);
        EXPECT_EQ(s.x, c.x) << c.name;
        EXPECT_EQ(s.ierr, c.ierr) << c.name;
        EXPECT_EQ(s.errormsg, c.errormsg) << c.name;
        EXPECT_EQ(s.evaluations, 2) << c.name;
    }
}

TEST(Zbracket, StopsAfterOneHundredIterationsWithTheLastIterate) {
    // Without a tolerance the jump at 0 is never resolved: the relative resolution shrinks with b.
    const search s = run(counted<+step_at_zero>, -1.0, 1.0, 0.0);
    EXPECT_EQ(s.ierr, 108);
    EXPECT_EQ(s.errormsg, "Error Zentropia Brent solver: no convergence...");
    EXPECT_EQ(s.evaluations, 102); // the two ends and one per iteration
    EXPECT_LT(std::fabs(s.x), 1e-25);
}

TEST(Zbracket, ResolvesTheIterateToItsRelativePrecision) {
    // Without an absolute tolerance the search stops at 3e-14 relative resolution (bisection
    // from a width of 1 takes about 33 halvings); a coarse tolerance stops it much earlier.
    const search fine = run(counted<+step_at_1000>, 1000.0, 1001.0, 0.0);
    EXPECT_EQ(fine.ierr, 0);
    EXPECT_NEAR(fine.x, 1000.25, 2.0 * 6e-14 * 1000.25);
    EXPECT_LT(fine.evaluations, 50);
    const search coarse = run(counted<+step_at_1000>, 1000.0, 1001.0, 1e-3);
    EXPECT_NEAR(coarse.x, 1000.25, 1e-3);
    EXPECT_LT(coarse.evaluations, 15);
}

// Reports the tolerated warning code on every evaluation.
double warning_residual(double x, int& ierr, std::string&) {
    ierr = 28;
    return x - 0.5;
}
// Fails with a code of its own beyond x = 1.
double failing_above_one(double x, int& ierr, std::string& errormsg) {
    ++evaluations;
    ierr = x > 1.0 ? 5 : 0;
    if (ierr != 0) errormsg = "evaluation failed";
    return x - 0.5;
}

TEST(Zbracket, ToleratesTheWarningCodeAndStopsOnAnyOther) {
    const search warned = run(warning_residual, 0.0, 1.0, 1e-12);
    EXPECT_NEAR(warned.x, 0.5, 1e-12);
    EXPECT_EQ(warned.ierr, 28);
    const search failed = run(failing_above_one, 0.0, 2.0, 1e-12);
    EXPECT_EQ(failed.x, 0.0);
    EXPECT_EQ(failed.ierr, 5);
    EXPECT_EQ(failed.errormsg, "evaluation failed");
    EXPECT_EQ(failed.evaluations, 2);
}

double a_minus_twice_b(double a, double b) {
    return a - 2.0 * b;
}

TEST(ZfunctionXy, OrderChoosesWhichArgumentIsTheUnknown) {
    // order 1: z = x - 2y;  order 2: z = y - 2x;  any other order: code 101 at once
    const struct {
        int order;
        double y, z, root;
        int ierr;
        const char* errormsg;
    } cases[] = {
        {1, 1.0, 3.0, 5.0, 0, "No errors"},
        {2, 1.0, -3.0, 2.0, 0, "No errors"},
        {0, 1.0, 1.0, 0.0, 101, "Invalid order for function evaluation in ZFunction_xy"},
        {3, 1.0, 1.0, 0.0, 101, "Invalid order for function evaluation in ZFunction_xy"},
    };
    for (const auto& c : cases) {
        zfunctions::setzfunction_xy(a_minus_twice_b, c.y, c.z, c.order);
        const search s = run(zfunctions::zfunction_xy, -10.0, 10.0, 1e-12);
        EXPECT_NEAR(s.x, c.root, 1e-12) << "order " << c.order;
        EXPECT_EQ(s.ierr, c.ierr) << "order " << c.order;
        EXPECT_EQ(s.errormsg, c.errormsg) << "order " << c.order;
    }
}

// A fake property "ab" = 3 a + b^2 with a failure text for negative b; it records the
// specification it is asked with.
std::string last_inputspec;
double fake_property(std::string_view inputspec, double input1, double input2,
                     std::string& errormsg) {
    last_inputspec = inputspec;
    errormsg = input2 < 0.0 ? "Error in Fake: negative second input" : "No errors";
    return 3.0 * input1 + input2 * input2;
}

TEST(Zsolve, SolvesForEitherInputOfAPropertyFunction) {
    const struct {
        int order;
        double y, z, xa, xb, root;
        const char* errormsg;
    } cases[] = {
        {1, 2.0, 10.0, 0.0, 5.0, 2.0, "No errors"},  // 3x + 4 = 10
        {2, 1.0, 12.0, 0.0, 10.0, 3.0, "No errors"}, // 3 + x^2 = 12
        // the lower end fails but returns a value: the search goes on to 3 + x^2 = 7
        {2, 1.0, 7.0, -1.0, 3.0, 2.0, "No errors"},
        // the root at the failing end: that evaluation's text stays
        {2, 1.0, 4.0, -1.0, -3.0, -1.0, "Error in Fake: negative second input"},
    };
    for (const auto& c : cases) {
        std::string errormsg;
        const double x =
            zfunctions::zsolve(fake_property, c.z, "abliq", c.y, c.order, c.xa, c.xb, errormsg);
        EXPECT_NEAR(x, c.root, 1e-12) << "order " << c.order;
        EXPECT_EQ(errormsg, c.errormsg);
        EXPECT_EQ(last_inputspec, "ab"); // the specification is held as two characters
    }
}

TEST(Zsolve, NonFiniteValuesFailWithATextAndNoCrash) {
    const double nan = std::nan(""), inf = INFINITY;
    const std::string not_bracketed = "Error Zentropia Brent solver: root not bracketed...";
    const std::string not_finite =
        "Error Zentropia Brent solver: the bounds of the bracket must be finite numbers...";
    for (const auto& [z, xa, xb, message] :
         {std::tuple{nan, 0.0, 1.0, not_bracketed}, std::tuple{1.0, 0.0, 1e300, not_bracketed},
          std::tuple{1.0, nan, 1.0, not_finite}, std::tuple{1.0, -inf, inf, not_finite}}) {
        std::string errormsg;
        EXPECT_EQ(zfunctions::zsolve(fake_property, z, "ab", 1.0, 2, xa, xb, errormsg), 0.0);
        EXPECT_EQ(errormsg, message) << z << " " << xa << " " << xb;
    }
    std::string errormsg;
    EXPECT_NEAR(zfunctions::zsolve(fake_property, 7.0, "ab", 1.0, 2, 0.0, 3.0, errormsg), 2.0,
                1e-12);
}

} // namespace
