#pragma once
// Helpers of the back-ends' error-text tables: a row type, the lookup, the fixed-width number
// fields of the messages and the cut to the caller's text length.
#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace zp_errortext {

// one row of an error table: the code and its message
struct code_text {
    int code;
    std::string_view text;
};

// no cut: the caller's text takes the whole message
inline constexpr std::size_t whole = std::string::npos;

// message of `code` in `table`; empty when the table does not hold the code
std::string_view lookup(std::span<const code_text> table, int code);
// integer right-aligned in a field of `width` characters; asterisks when it does not fit
std::string integer_field(int value, int width);
// fixed-point number with `decimals` decimals, right-aligned in `width` characters; asterisks when
// it does not fit
std::string fixed_field(double value, int width, int decimals);
// errstr = message cut to `length` characters
void put(std::string_view message, std::string& errstr, std::size_t length);
// "Unknown error. Code =" and the code in a field of 4, the generic text of the cubic back-ends
std::string unknown_code(int code);

} // namespace zp_errortext
