#pragma once
// Binds a C++ procedure of the programming interface to Python by one rule, derived from its
// parameter types:
//   - the parameters it reads (values, views, spans, const references, and the references named
//     as read too) are the Python parameters, positional, in the procedure's order; a text that
//     is read and written (errormsg of setfluid) defaults to "";
//   - everything it writes (its result first, then the reference parameters in order) comes
//     back: nothing as None, one value plainly, several as a tuple;
//   - texts come back without trailing blanks; fixed-length arrays (composition vectors of 20)
//     come back as lists of their full length; array inputs accept any sequence (lists, NumPy).
#include "base/common.hpp"

#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

namespace zpy {

namespace py = pybind11;

// Counts the calls that change the process-wide selection, unit set or reference state, so that
// a Fluid object knows whether the selection is still its own.
std::uint64_t& selection_epoch();

// A library text as a Python str: UTF-8 where it reads so (the caller's own names), else Latin-1
// (the unit texts carry the degree sign as the single byte 0xB0).
py::str text_to_py(std::string_view text);

// ---- How one parameter type crosses --------------------------------------------------------
// writes: the procedure writes it; py_type: what Python passes where the procedure reads it;
// holder: the local value the procedure works on, made by make(); pass: the C++ argument;
// give: the value returned to Python.

template <class P> struct param;

template <class T> struct read_value {
    static constexpr bool writes = false;
    using py_type = T;
    using holder = T;
    static holder make() { return {}; }
    static void load(holder& h, py_type v) { h = std::move(v); }
    static const T& pass(holder& h) { return h; }
};
template <> struct param<double> : read_value<double> {};
template <> struct param<int> : read_value<int> {};
template <> struct param<bool> : read_value<bool> {};
template <> struct param<char> : read_value<char> {};

template <> struct param<std::string_view> : read_value<std::string> {
    static std::string_view pass(holder& h) { return h; }
};
template <class T> struct param<std::span<const T>> : read_value<std::vector<T>> {
    static std::span<const T> pass(std::vector<T>& h) { return h; }
};
template <std::size_t N> struct param<const std::array<double, N>&> {
    static constexpr bool writes = false;
    using py_type = std::vector<double>;
    using holder = std::array<double, N>;
    static holder make() { return {}; }
    static void load(holder& h, const py_type& v) {
        if (v.size() > N)
            throw py::value_error("an array of at most " + std::to_string(N) +
                                  " values expected, " + std::to_string(v.size()) + " given");
        std::copy(v.begin(), v.end(), h.begin());
    }
    static const holder& pass(holder& h) { return h; }
};

template <class T> struct write_value : read_value<T> {
    static constexpr bool writes = true;
    static T& pass(T& h) { return h; }
    static py::object give(const T& h) { return py::cast(h); }
};
template <> struct param<int&> : write_value<int> {};
template <> struct param<bool&> : write_value<bool> {};
// an output that nothing wrote reads as the not-computed value
template <> struct param<double&> : write_value<double> {
    static double make() { return zp_common::not_set; }
};
template <> struct param<std::string&> : write_value<std::string> {
    static py::object give(const std::string& h) { return text_to_py(zp_common::trim(h)); }
};

py::list texts_to_py(std::span<const std::string> texts);
py::list texts_to_py(std::span<const std::string_view> texts);

// arrays of values or of texts, as lists
template <class T> constexpr bool is_text = std::is_convertible_v<const T&, std::string_view>;
template <class T, std::size_t N> struct param<std::array<T, N>&> : write_value<std::array<T, N>> {
    static py::object give(const std::array<T, N>& h) {
        if constexpr (is_text<T>)
            return texts_to_py(h);
        else
            return py::cast(std::vector<T>(h.begin(), h.end()));
    }
};
template <class T> struct param<std::vector<T>&> : write_value<std::vector<T>> {
    static py::object give(const std::vector<T>& h) {
        if constexpr (is_text<T>)
            return texts_to_py(h);
        else
            return py::cast(h);
    }
};

template <class R> py::object give_result(const R& r) {
    if constexpr (std::is_convertible_v<R, std::string_view>)
        return text_to_py(zp_common::trim(r));
    else
        return py::cast(r);
}

// ---- The binding -----------------------------------------------------------------------------

struct options {
    std::uint64_t reads_too = 0; // bit i: reference parameter i is read as well as written
    bool changes_state = false;  // the procedure changes the selection, units or reference state
};
// the bit of parameter i in options::reads_too
constexpr std::uint64_t bit(std::size_t i) {
    return std::uint64_t{1} << i;
}

// The parameter names of a procedure ("propspec inputspec input1 input2 errormsg"), kept for the
// life of the module; throws when their number is not count.
const std::vector<std::string>& parameter_names(std::string_view procedure, std::string_view names,
                                                std::size_t count);
// "Returns (value, errormsg)." from the names of what the procedure writes.
std::string returns_doc(const std::vector<std::string>& outputs);

template <auto Fn, options Opt = options{}> struct procedure;

template <class R, class... A, R (*Fn)(A...), options Opt> struct procedure<Fn, Opt> {
    static constexpr std::size_t n = sizeof...(A);
    template <std::size_t I> using P = param<std::tuple_element_t<I, std::tuple<A...>>>;
    using holders = std::tuple<typename param<A>::holder...>;

    static constexpr std::array<bool, n> writes{param<A>::writes...};
    static constexpr bool reads(std::size_t i) { return !writes[i] || ((Opt.reads_too >> i) & 1U); }
    static constexpr std::size_t n_in = [] {
        std::size_t k = 0;
        for (std::size_t i = 0; i < n; ++i) k += reads(i) ? 1 : 0;
        return k;
    }();
    static constexpr std::array<std::size_t, n_in> inputs = [] {
        std::array<std::size_t, n_in> in{};
        for (std::size_t i = 0, k = 0; i < n; ++i)
            if (reads(i)) in[k++] = i;
        return in;
    }();

    template <std::size_t... I> static py::object call(holders& h, std::index_sequence<I...>) {
        std::vector<py::object> out;
        if constexpr (std::is_void_v<R>)
            Fn(P<I>::pass(std::get<I>(h))...);
        else
            out.push_back(give_result(Fn(P<I>::pass(std::get<I>(h))...)));
        (
            [&] {
                if constexpr (P<I>::writes) out.push_back(P<I>::give(std::get<I>(h)));
            }(),
            ...);
        if constexpr (Opt.changes_state) ++selection_epoch();
        if (out.empty()) return py::none();
        if (out.size() == 1) return out.front();
        py::tuple result(out.size());
        for (std::size_t i = 0; i < out.size(); ++i) result[i] = std::move(out[i]);
        return result;
    }

    template <std::size_t... K> static auto function(std::index_sequence<K...>) {
        return [](typename P<inputs[K]>::py_type... in) -> py::object {
            holders h{param<A>::make()...};
            (P<inputs[K]>::load(std::get<inputs[K]>(h), std::move(in)), ...);
            return call(h, std::make_index_sequence<n>{});
        };
    }

    template <std::size_t I> static auto annotation(const std::string& name) {
        // a text that is read and written: errormsg, blank unless the caller passes one
        if constexpr (P<I>::writes && std::is_same_v<typename P<I>::holder, std::string>)
            return py::arg(name.c_str()) = std::string();
        else
            return py::arg(name.c_str());
    }

    template <std::size_t... K>
    static void define(py::module_& m, const char* name, const std::vector<std::string>& names,
                       const char* doc, std::index_sequence<K...>) {
        m.def(name, function(std::index_sequence<K...>{}), doc,
              annotation<inputs[K]>(names[inputs[K]])...);
    }

    static void def(py::module_& m, const char* name, std::string_view parameters) {
        const auto& names = parameter_names(name, parameters, n);
        std::vector<std::string> outputs;
        if constexpr (!std::is_void_v<R>) outputs.emplace_back("value");
        for (std::size_t i = 0; i < n; ++i)
            if (writes[i]) outputs.push_back(names[i]);
        static const std::string doc = returns_doc(outputs);
        define(m, name, names, doc.c_str(), std::make_index_sequence<n_in>{});
    }
};

// Binds procedure Fn as m.<name>; parameters names every C++ parameter in order.
template <auto Fn, options Opt = options{}>
void def(py::module_& m, const char* name, std::string_view parameters) {
    procedure<Fn, Opt>::def(m, name, parameters);
}

} // namespace zpy
