#pragma once
// Shared constants and text helpers of the library: each concept lives here once.
#include <array>
#include <cmath>
#include <cstddef>
#include <string>
#include <string_view>

namespace zp_common {

// The not-computed value: an output that nothing filled holds it in every unit set.
inline constexpr double not_set = -8888.8;
// Largest number of components of a fluid.
inline constexpr int max_components = 20;
// Longest component name a caller may pass.
inline constexpr std::size_t max_name_length = 256;

using composition = std::array<double, max_components>;

// The success texts.
inline constexpr std::string_view no_errors = "No errors";
inline constexpr std::string_view same_fluid = "Same fluid";
// Prefix of the failures the library detects itself.
inline constexpr std::string_view error_prefix = "Error in Zentropia: ";

// true when value still holds the not-computed sentinel (within 0.1 of it; NaN is not)
inline bool isinit(double value) {
    return std::fabs(value - not_set) < 0.1;
}
// true when value was computed
inline bool isnotinit(double value) {
    return !isinit(value);
}

// text without trailing blanks
std::string_view trim(std::string_view text);
// text without leading and trailing blanks
std::string_view strip(std::string_view text);
// ASCII letters lowered
std::string lower(std::string_view text);
// text cut to at most n characters (the fixed-length text fields of the interface)
std::string_view fit(std::string_view text, std::size_t n);
// equal after trailing blanks are removed
bool same_text(std::string_view a, std::string_view b);
// errormsg holds the success text "No errors" (blank-padded or not)
bool is_ok_padded(std::string_view errormsg);
inline bool is_ok(std::string_view errormsg) {
    return errormsg == no_errors || is_ok_padded(errormsg);
}
// errormsg holds "No errors" or "Same fluid"
bool is_success(std::string_view errormsg);

} // namespace zp_common
