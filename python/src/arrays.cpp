#include "arrays.hpp"

#include "binder.hpp"
#include "main/property_table.hpp"
#include "units/unit_spelling.hpp"

#include <pybind11/numpy.h>

#include <array>
#include <cstdint>
#include <string>

namespace zpy {

namespace {

using real_array = py::array_t<double, py::array::c_style | py::array::forcecast>;

// Which states failed, and the library's text for the first of them.
class failures {
public:
    explicit failures(py::ssize_t n) : failed_(n), flags_(failed_.mutable_data()) {}
    void record(py::ssize_t i, const std::string& errormsg) {
        flags_[i] = !zp_common::is_ok(errormsg);
        if (flags_[i] && first_ < 0) {
            first_ = i;
            message_ = errormsg;
        }
    }
    // (failed, index of the first failure or -1, its text)
    py::tuple result() const {
        return py::make_tuple(failed_, first_, text_to_py(zp_common::trim(message_)));
    }

private:
    py::array_t<bool> failed_;
    bool* flags_;
    py::ssize_t first_ = -1;
    std::string message_;
};

py::ssize_t common_size(const real_array& input1, const real_array& input2) {
    if (input1.size() != input2.size())
        throw py::value_error("input1 holds " + std::to_string(input1.size()) +
                              " values but input2 " + std::to_string(input2.size()));
    return input1.size();
}

// (values, failed, first failure, its text) of the property propspec at every pair (input1[i],
// input2[i]): through the property's own entry point where it answers as calcprop does, which
// evaluates only that property, else through calcprop; a value these leave uncomputed comes from
// the entry point that derives it (one_answer), else stays -8888.8.
py::object calcprop_array(const std::string& propspec, const std::string& inputspec,
                          const real_array& input1, const real_array& input2) {
    const auto n = common_size(input1, input2);
    real_array values(n);
    failures failed(n);
    const double* a = input1.data();
    const double* b = input2.data();
    double* out = values.mutable_data();
    const int column = zp_props::property_index(propspec);
    const auto entry = column < 0 ? nullptr : zp_props::properties[column].entry;
    std::string errormsg, reason;
    for (py::ssize_t i = 0; i < n; ++i) {
        out[i] = entry ? entry(inputspec, a[i], b[i], errormsg)
                       : zentropia_main::calcprop(propspec, inputspec, a[i], b[i], errormsg);
        if (zp_common::isinit(out[i]) && zp_common::is_ok(errormsg))
            out[i] = zp_props::one_answer(column, inputspec, a[i], b[i], out[i], reason);
        failed.record(i, errormsg);
    }
    return py::make_tuple(values) + failed.result();
}

// (values[n, 24] in the order of zp_props::properties, x[n, 20], y[n, 20], phase[n] (the codes
// of zp_props::phase), failed, first failure, its text) of every property at every pair
// (input1[i], input2[i]): one full state each, completed by one_answer.
py::object allprops_array(const std::string& inputspec, const real_array& input1,
                          const real_array& input2) {
    const auto n = common_size(input1, input2);
    constexpr auto ncol = static_cast<py::ssize_t>(zp_props::n_properties);
    constexpr auto ncmp = static_cast<py::ssize_t>(zp_common::max_components);
    real_array values({n, ncol});
    real_array x({n, ncmp});
    real_array y({n, ncmp});
    py::array_t<std::int8_t> phase(n);
    failures failed(n);
    const double* a = input1.data();
    const double* b = input2.data();
    std::string errormsg;
    double t_crit, p_crit;
    zp_props::critical_point(t_crit, p_crit);
    const auto components = zp_props::components_of_selection();
    zp_props::state state;
    for (py::ssize_t i = 0; i < n; ++i) {
        zp_props::state_of(inputspec, a[i], b[i], t_crit, p_crit, components, state, errormsg);
        std::copy(state.values.begin(), state.values.end(), values.mutable_data(i, 0));
        std::copy(state.x.begin(), state.x.end(), x.mutable_data(i, 0));
        std::copy(state.y.begin(), state.y.end(), y.mutable_data(i, 0));
        phase.mutable_data()[i] = static_cast<std::int8_t>(
            zp_common::is_ok(errormsg) ? state.label : zp_props::phase::unknown);
        failed.record(i, errormsg);
    }
    return py::make_tuple(values, x, y, phase) + failed.result();
}

} // namespace

void bind_arrays(py::module_& m) {
    m.def("_calcprop_array", &calcprop_array, py::arg("propspec"), py::arg("inputspec"),
          py::arg("input1"), py::arg("input2"));
    m.def("_allprops_array", &allprops_array, py::arg("inputspec"), py::arg("input1"),
          py::arg("input2"));
    py::tuple columns(zp_props::n_properties);
    for (std::size_t i = 0; i < zp_props::n_properties; ++i)
        columns[i] = std::string(zp_props::properties[i].name);
    m.attr("_allprops_columns") = columns;
    py::tuple phases(zp_props::phase_names.size());
    for (std::size_t i = 0; i < zp_props::phase_names.size(); ++i)
        phases[i] = std::string(zp_props::phase_names[i]);
    m.attr("_phase_names") = phases;
    // the names of the components the phase compositions of the selection list
    m.def("_components", [] {
        const auto c = zp_props::components_of_selection();
        py::list names;
        for (int i = 0; i < c.n; ++i) names.append(c.names[static_cast<std::size_t>(i)]);
        return names;
    });
    m.def("_unitset_name", &unit_spelling::unitset, py::arg("text"));
    m.def("_basis_name", &unit_spelling::basis, py::arg("text"));
    m.def("_unit_text", &unit_spelling::unit, py::arg("text"));
}

} // namespace zpy
