#include "capi/capi_support.hpp"

#include <algorithm>
#include <cstring>

namespace zp_capi {

void put_text(char* buffer, int len, std::string_view head, std::string_view tail) {
    if (buffer == nullptr || len < 1) return;
    const auto room = static_cast<std::size_t>(len - 1);
    const auto first = zp_common::fit(head, room);
    const auto second = zp_common::fit(tail, room - first.size());
    const auto end =
        std::copy(second.begin(), second.end(), std::copy(first.begin(), first.end(), buffer));
    *end = '\0';
}

std::string_view get_text(const char* buffer, int len) {
    if (buffer == nullptr || len < 1) return {};
    return {buffer, strnlen(buffer, static_cast<std::size_t>(len))};
}

std::vector<std::string> names(const char* const* p, int len) {
    std::vector<std::string> out(extent(p, len));
    for (std::size_t i = 0; i < out.size(); ++i) out[i] = text(p[i]);
    return out;
}

} // namespace zp_capi
