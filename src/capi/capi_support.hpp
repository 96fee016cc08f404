#pragma once
// Marshalling between the C calling convention of zentropia.h and the C++ procedures: views of C
// texts and arrays, proxies that hand a C pointer to a C++ reference parameter (and copy arrays
// and texts back when the call is over), and the one error translator of the C boundary.
#include "base/common.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <exception>
#include <new>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#define ZP_C extern "C" __attribute__((visibility("default")))

namespace zp_capi {

// A C text in; NULL reads as the empty text.
inline std::string_view text(const char* s) {
    return s ? std::string_view(s) : std::string_view();
}

// Writes head followed by tail into a caller's buffer of len bytes, cut to len - 1 characters and
// NUL-terminated; nothing when the buffer is NULL or len < 1.
void put_text(char* buffer, int len, std::string_view head, std::string_view tail = {});
// The text in a caller's buffer of len bytes: up to its NUL or its end.
std::string_view get_text(const char* buffer, int len);

// Number of usable elements of a C array: 0 for NULL or a negative length, at most cap.
inline std::size_t extent(const void* p, int len, std::size_t cap = SIZE_MAX) {
    return p == nullptr || len < 1 ? 0 : std::min(static_cast<std::size_t>(len), cap);
}

// A C array in, as a span of its len elements.
template <class T> std::span<const T> values(const T* p, int len) {
    return {p, extent(p, len)};
}
// A C array out, written in place.
template <class T> std::span<T> buffer(T* p, int len) {
    return {p, extent(p, len)};
}
// C texts in, as the C++ strings a std::span<const std::string> parameter wants.
std::vector<std::string> names(const char* const* p, int len);

// A scalar out (or in and out): the caller's variable, or a local one when the caller passed NULL.
template <class T> class out {
public:
    explicit out(T* p) : p_(p) {}
    operator T&() { return p_ ? *p_ : local_; }

private:
    T* p_;
    T local_{};
};

// A fixed-length array in and out (composition vectors, version numbers ...): the first len
// elements are copied in, the C++ procedure works on a full array, the same elements go back.
template <class T, std::size_t N> class array_ref {
public:
    array_ref(T* p, int len) : p_(p), n_(extent(p, len, N)) { std::copy_n(p, n_, value_.begin()); }
    ~array_ref() { std::copy_n(value_.begin(), n_, p_); }
    array_ref(const array_ref&) = delete;
    array_ref& operator=(const array_ref&) = delete;
    operator std::array<T, N>&() { return value_; }

private:
    T* p_;
    std::size_t n_;
    std::array<T, N> value_{};
};

// A fixed-length array in only; entries past len are 0.
template <std::size_t N> class array_in {
public:
    array_in(const double* p, int len) { std::copy_n(p, extent(p, len, N), value_.begin()); }
    operator const std::array<double, N>&() const { return value_; }

private:
    std::array<double, N> value_{};
};

// A text out: the C++ procedure writes a string, the caller's buffer receives it when the call
// is over.
class text_out {
public:
    text_out(char* p, int len) : p_(p), len_(len) {}
    ~text_out() { put_text(p_, len_, zp_common::trim(value_)); }
    text_out(const text_out&) = delete;
    text_out& operator=(const text_out&) = delete;
    operator std::string&() { return value_; }

private:
    char* p_;
    int len_;
    std::string value_;
};

// An array of texts out (a std::vector, std::array of strings or string views): the caller's
// buffer of count slots of width bytes receives the first count texts, each NUL-terminated.
template <class Texts> class texts_out {
public:
    texts_out(char* p, int count, int width)
        : p_(p), count_(p && width > 0 ? std::max(count, 0) : 0), width_(width) {}
    ~texts_out() {
        const auto n = std::min<std::size_t>(count_, value_.size());
        for (std::size_t i = 0; i < static_cast<std::size_t>(count_); ++i)
            put_text(p_ + i * width_, width_, i < n ? zp_common::trim(value_[i]) : "");
    }
    texts_out(const texts_out&) = delete;
    texts_out& operator=(const texts_out&) = delete;
    operator Texts&() { return value_; }

private:
    char* p_;
    int count_;
    int width_;
    Texts value_{};
};

// Composition vectors of a sequence of points (a phase envelope): 20 entries per point, as many
// points as len holds; in and out.
class points_ref {
public:
    points_ref(double* p, int len) : p_(p), value_(extent(p, len) / zp_common::max_components) {
        for (std::size_t i = 0; i < value_.size(); ++i)
            std::copy_n(p_ + i * zp_common::max_components, zp_common::max_components,
                        value_[i].begin());
    }
    ~points_ref() {
        for (std::size_t i = 0; i < value_.size(); ++i)
            std::copy(value_[i].begin(), value_[i].end(), p_ + i * zp_common::max_components);
    }
    points_ref(const points_ref&) = delete;
    points_ref& operator=(const points_ref&) = delete;
    operator std::span<zp_common::composition>() { return value_; }

private:
    double* p_;
    std::vector<zp_common::composition> value_;
};

using composition_ref = array_ref<double, zp_common::max_components>;
using composition_in = array_in<zp_common::max_components>;

// The result a procedure reports when it failed without computing one.
template <class R> R failed_result() {
    if constexpr (std::is_floating_point_v<R>)
        return zp_common::not_set;
    else
        return R{};
}

// Runs call(errormsg) and writes errormsg into the caller's buffer, whatever happens: the text
// the procedure left, or the exception it raised. entry is the text errormsg holds on entry.
template <class Call>
auto translate(char* errormsg, int errormsg_len, std::string_view entry, Call&& call) {
    using R = std::invoke_result_t<Call, std::string&>;
    try {
        std::string text(entry);
        if constexpr (std::is_void_v<R>) {
            call(text);
            put_text(errormsg, errormsg_len, text);
        } else {
            R result = call(text);
            put_text(errormsg, errormsg_len, text);
            return result;
        }
    } catch (const std::bad_alloc&) {
        put_text(errormsg, errormsg_len, zp_common::error_prefix, "out of memory");
    } catch (const std::exception& e) {
        put_text(errormsg, errormsg_len, zp_common::error_prefix, e.what());
    } catch (...) {
        put_text(errormsg, errormsg_len, zp_common::error_prefix, "unexpected failure");
    }
    if constexpr (!std::is_void_v<R>) return failed_result<R>();
}

// errormsg out only.
template <class Call> auto guarded(char* errormsg, int errormsg_len, Call&& call) {
    return translate(errormsg, errormsg_len, {}, std::forward<Call>(call));
}
// errormsg read on entry and written back: procedures that act on the caller's text, or that
// leave it as it was when they have nothing to do.
template <class Call> auto guarded_inout(char* errormsg, int errormsg_len, Call&& call) {
    return translate(errormsg, errormsg_len, get_text(errormsg, errormsg_len),
                     std::forward<Call>(call));
}
// errormsg out, "No errors" unless the procedure writes a failure: procedures that report only
// failures, as a step of a larger one, when called on their own.
template <class Call> auto guarded_success(char* errormsg, int errormsg_len, Call&& call) {
    return translate(errormsg, errormsg_len, zp_common::no_errors, std::forward<Call>(call));
}
// A procedure without errormsg: an exception is swallowed and the result is the failed one.
template <class Call> auto quiet(Call&& call) noexcept {
    using R = std::invoke_result_t<Call>;
    try {
        return call();
    } catch (...) {
        if constexpr (!std::is_void_v<R>) return failed_result<R>();
    }
}

} // namespace zp_capi
