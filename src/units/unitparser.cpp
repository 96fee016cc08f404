#include "units/unitparser.hpp"

#include "base/common.hpp"
#include "units/unitconverter.hpp"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace unitparser {
namespace {

constexpr char degree = '\xB0';
constexpr std::size_t work_length = 256;
constexpr std::string_view noint = "string-noint";
constexpr std::string_view int_ok = "string-ok";
constexpr std::string_view largest_int = "2147483647";

// The temperature units a caller may write without the degree sign.
constexpr std::string_view degree_c = "\xB0"
                                      "C";
constexpr std::string_view degree_f = "\xB0"
                                      "F";
constexpr std::string_view degree_r = "\xB0"
                                      "R";

std::string_view with_degree(std::string_view unit) {
    if (unit == "C") return degree_c;
    if (unit == "F") return degree_f;
    if (unit == "R") return degree_r;
    return unit;
}

bool is_unit_text(std::string_view text) {
    return unitconverter::unit_prop_index(text) >= 0;
}

} // namespace

bool isalfa(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == ' ' || c == degree;
}

bool isdigit(char c) {
    return c >= '0' && c <= '9';
}

bool isvalid(char c) {
    return isalfa(c) || isdigit(c) || c == '-' || c == '+' || c == '^' || c == '.' || c == '/';
}

bool isdigitstr(std::string_view string) {
    string = zp_common::trim(string);
    if (string.empty()) return false;
    // The running result is the conjunction of the characters tested so far and the scan stops
    // as soon as it is true, which is after the first character when that is a digit and never
    // otherwise: the answer is whether the first character is a digit. strtoint relies on this.
    return isdigit(string.front());
}

void strtoarr(std::string_view string, std::array<std::string, max_entries>& array, int& nelmts,
              std::string& errormsg) {
    for (auto& entry : array) entry.clear();
    nelmts = 0;
    errormsg = zp_common::no_errors;

    std::string work;
    for (const char c : string)
        if (c != ' ') work.push_back(c);
    if (work.empty()) return;
    if (work.size() > work_length) {
        errormsg = std::string(zp_common::error_prefix) + "list longer than 256 characters";
        return;
    }

    // Every entry starts with a letter; the last character is not tested by itself.
    bool valid = isalfa(work.front());
    for (std::size_t i = 1; valid && i + 1 < work.size(); ++i)
        valid = work[i] == ',' ? isalfa(work[i + 1]) : isvalid(work[i]);
    if (!valid) {
        errormsg = std::string(zp_common::error_prefix) + "unable to convert string into an array";
        return;
    }

    nelmts = 1;
    for (const char c : work) {
        if (c != ',') {
            array[static_cast<std::size_t>(nelmts - 1)].push_back(c);
        } else if (nelmts == max_entries) {
            for (auto& entry : array) entry.clear();
            nelmts = 0;
            errormsg = std::string(zp_common::error_prefix) + "more than 27 entries in the list";
            return;
        } else {
            ++nelmts;
        }
    }
}

void strtoint(std::string& string, int& number, std::string& msg) {
    // The text is consumed as it is read: sign and leading zeros first, then the digits.
    std::string_view text = zp_common::trim(string);
    const auto finish = [&](std::string_view result, std::string_view rest) {
        msg.clear();
        msg.append(result);
        std::string left(rest); // rest may view string itself
        string.swap(left);
    };
    if (text.empty()) return finish(noint, text);
    const bool negative = text.front() == '-';
    if (negative || text.front() == '+') text.remove_prefix(1);
    if (!isdigitstr(text)) return finish(noint, text);

    text.remove_prefix(std::min(text.find_first_not_of('0'), text.size()));
    if (text.empty()) {
        number = 0;
        return finish(int_ok, "0");
    }
    if (text.size() > largest_int.size() ||
        (text.size() == largest_int.size() && text > largest_int))
        return finish(noint, text);

    // Characters after the first are taken as they come; a wider sum keeps odd ones defined.
    std::int64_t value = 0;
    for (const char c : text) value = value * 10 + (c - '0');
    if (negative) value = -value;
    if (value < std::numeric_limits<int>::min() || value > std::numeric_limits<int>::max())
        return finish(noint, text);
    number = static_cast<int>(value);
    finish(int_ok, {});
}

std::string latin1_degrees(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\xC2' && i + 1 < text.size() && text[i + 1] == degree) continue;
        out.push_back(text[i]);
    }
    return out;
}

bool split_unit(std::string_view text, unit_factors& factors, int& n) {
    constexpr auto npos = std::string_view::npos;
    const auto skip_blanks = [&](std::size_t k) {
        while (k < text.size() && text[k] == ' ') ++k;
        return k;
    };
    const auto word_end = [&](std::size_t k) {
        const auto e = text.find_first_of(" ./^", k);
        return e == npos ? text.size() : e;
    };
    const auto starts_word = [&](std::size_t k) {
        return k < text.size() && std::string_view(" ./^").find(text[k]) == npos;
    };
    n = 0;

    std::size_t i = skip_blanks(0);
    bool invert = false;
    if (i < text.size() && text[i] == '/') {
        invert = true;
        i = skip_blanks(i + 1);
    }
    while (true) {
        if (!starts_word(i) || n == max_factors) break;
        std::size_t end = word_end(i);
        // A unit symbol holding a blank or "/" stays one factor when the text allows it.
        const std::size_t next = skip_blanks(end + 1);
        if (end < text.size() && starts_word(next)) {
            const std::size_t next_end = word_end(next);
            const bool joinable =
                text[end] == ' ' ||
                (text[end] == '/' && !invert && (next_end == text.size() || text[next_end] != '^'));
            if (joinable && is_unit_text(text.substr(i, next_end - i))) end = next_end;
        }
        unit_factor& f = factors[static_cast<std::size_t>(n)];
        f.unit = with_degree(text.substr(i, end - i));
        f.power = 1;
        if (end < text.size() && text[end] == '^') {
            const auto power_end = text.find_first_of(" ./", end + 1);
            std::string power(text.substr(end + 1, power_end == npos ? npos : power_end - end - 1));
            std::string msg;
            strtoint(power, f.power, msg);
            if (msg != int_ok) break;
            end = power_end == npos ? text.size() : power_end;
        }
        if (invert) f.power = -f.power;
        ++n;

        // The separator: ".", "/" or blanks, blanks around "." and "/" ignored.
        i = skip_blanks(end);
        if (i == text.size()) return true;
        invert = text[i] == '/';
        if (text[i] == '.' || text[i] == '/') i = skip_blanks(i + 1);
    }
    n = 0;
    return false;
}

} // namespace unitparser
