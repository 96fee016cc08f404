#pragma once
// The not-computed value of the back-end: an output that nothing filled holds it. It equals the
// library's sentinel; the back-end does not link the library and so names it here, once.

namespace if97 {

inline constexpr double not_set = -8888.8;

} // namespace if97
