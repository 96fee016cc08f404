#include "Import/errortext.hpp"

#include "base/common.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace zp_errortext {

std::string_view lookup(std::span<const code_text> table, int code) {
    const auto row = std::find_if(table.begin(), table.end(),
                                  [code](const code_text& r) { return r.code == code; });
    return row == table.end() ? std::string_view{} : row->text;
}

namespace {

std::string right_aligned(std::string text, int width) {
    const auto w = static_cast<std::size_t>(std::max(width, 0));
    if (text.size() > w) return std::string(w, '*');
    return std::string(w - text.size(), ' ') + text;
}

} // namespace

std::string integer_field(int value, int width) {
    return right_aligned(std::to_string(value), width);
}

std::string fixed_field(double value, int width, int decimals) {
    if (std::isnan(value)) return right_aligned("NaN", width);
    if (std::isinf(value)) return right_aligned(value > 0 ? "Inf" : "-Inf", width);
    char text[512];
    std::snprintf(text, sizeof text, "%.*f", std::clamp(decimals, 0, 30), value);
    return right_aligned(text, width);
}

void put(std::string_view message, std::string& errstr, std::size_t length) {
    errstr.assign(zp_common::fit(message, length));
}

std::string unknown_code(int code) {
    return "Unknown error. Code =" + integer_field(code, 4);
}

} // namespace zp_errortext
