#include "base/common.hpp"

namespace zp_common {

std::string_view trim(std::string_view text) {
    const auto end = text.find_last_not_of(' ');
    return end == std::string_view::npos ? std::string_view{} : text.substr(0, end + 1);
}

std::string_view strip(std::string_view text) {
    const auto begin = text.find_first_not_of(' ');
    return begin == std::string_view::npos ? std::string_view{} : trim(text.substr(begin));
}

std::string lower(std::string_view text) {
    std::string out(text);
    for (char& c : out)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return out;
}

std::string_view fit(std::string_view text, std::size_t n) {
    return text.substr(0, n);
}

bool same_text(std::string_view a, std::string_view b) {
    return trim(a) == trim(b);
}

bool is_ok_padded(std::string_view errormsg) {
    return trim(errormsg) == no_errors;
}

bool is_success(std::string_view errormsg) {
    return is_ok(errormsg) || trim(errormsg) == same_fluid;
}

} // namespace zp_common
