#pragma once
// Bracketed root finding for the inverse problems: Brent's method on a residual z - f(x), with
// the function, its fixed input and its target held in module state for the duration of a search.
// One search at a time: every zsolve overwrites the state.
#include <string>
#include <string_view>

namespace zfunctions {

// A single-property operation in internal units: f(inputspec, input1, input2, errormsg).
using property_function = double (*)(std::string_view, double, double, std::string&);
// A plain function of two reals f(a, b).
using xy_function = double (*)(double, double);
// A residual r(x): writes a status into ierr (0 or 28 count as success) and may write errormsg.
using residual_function = double (*)(double, int&, std::string&);

// Status codes of the root finder.
inline constexpr int status_ok = 0;
inline constexpr int status_warning = 28; // a property evaluation's warning, tolerated
inline constexpr int status_invalid_order = 101;
inline constexpr int status_not_bracketed = 107;
inline constexpr int status_no_convergence = 108;

// Root x in [xa, xb] of z_ - func(inputspec_, x, y_) (order_ 1) or z_ - func(inputspec_, y_, x)
// (order_ 2), to an absolute tolerance of 1e-12 in the unit of x.
double zsolve(property_function func, double z_, std::string_view inputspec_, double y_, int order_,
              double xa, double xb, std::string& errormsg);

// Stores the property function, its input specification (2 characters), the fixed input y_,
// the target z_ and which input is the unknown (1 or 2).
void setzfunction_zp(property_function func, std::string_view inputspec_, double y_, double z_,
                     int order_);
// The residual z - func(...) at the unknown x with the stored state.
double zfunction_zp(double x, int& ierr, std::string& errormsg);

// As setzfunction_zp for a plain function of two reals.
void setzfunction_xy(xy_function func, double y_, double z_, int order_);
// The residual z - f(x, y) (order 1) or z - f(y, x) (order 2).
double zfunction_xy(double x, int& ierr, std::string& errormsg);

// Brent's method: the root of f on [a_, b_] to the absolute tolerance tol; ierr 0 on success,
// otherwise a status code above (or the residual's own code) with the text in errormsg.
double zbracket(residual_function f, double a_, double b_, double tol, int& ierr,
                std::string& errormsg);

} // namespace zfunctions
