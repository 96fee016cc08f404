#include "arrays.hpp"

#include "binder.hpp"
#include "main/property_table.hpp"

#include <pybind11/numpy.h>

#include <array>
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
// evaluates only that property, else through calcprop.
py::object calcprop_array(const std::string& propspec, const std::string& inputspec,
                          const real_array& input1, const real_array& input2) {
    const auto n = common_size(input1, input2);
    real_array values(n);
    failures failed(n);
    const double* a = input1.data();
    const double* b = input2.data();
    double* out = values.mutable_data();
    const int column = zentropia::allprops_output_index(propspec);
    const auto entry = column < 0 ? nullptr : zentropia::allprops_outputs[column].entry;
    std::string errormsg;
    for (py::ssize_t i = 0; i < n; ++i) {
        out[i] = entry ? entry(inputspec, a[i], b[i], errormsg)
                       : zentropia_main::calcprop(propspec, inputspec, a[i], b[i], errormsg);
        failed.record(i, errormsg);
    }
    return py::make_tuple(values) + failed.result();
}

// (values[n, 23] in the order of zentropia::allprops_outputs, x[n, 20], y[n, 20], failed, first
// failure, its text) of allprops at every pair (input1[i], input2[i])
py::object allprops_array(const std::string& inputspec, const real_array& input1,
                          const real_array& input2) {
    const auto n = common_size(input1, input2);
    constexpr auto ncol = static_cast<py::ssize_t>(zentropia::allprops_outputs.size());
    constexpr auto ncmp = static_cast<py::ssize_t>(zp_common::max_components);
    real_array values({n, ncol});
    real_array x({n, ncmp});
    real_array y({n, ncmp});
    failures failed(n);
    const double* a = input1.data();
    const double* b = input2.data();
    std::string errormsg;
    zp_common::composition xi{}, yi{};
    for (py::ssize_t i = 0; i < n; ++i) {
        double* r = values.mutable_data(i, 0);
        std::fill_n(r, ncol, zp_common::not_set);
        zentropia_main::allprops(inputspec, a[i], b[i], r[0], r[1], r[2], r[3], r[4], r[5], r[6],
                                 r[7], xi, yi, r[8], r[9], r[10], r[11], r[12], r[13], r[14], r[15],
                                 r[16], r[17], r[18], r[19], r[20], r[21], r[22], errormsg);
        std::copy(xi.begin(), xi.end(), x.mutable_data(i, 0));
        std::copy(yi.begin(), yi.end(), y.mutable_data(i, 0));
        failed.record(i, errormsg);
    }
    return py::make_tuple(values, x, y) + failed.result();
}

} // namespace

void bind_arrays(py::module_& m) {
    m.def("_calcprop_array", &calcprop_array, py::arg("propspec"), py::arg("inputspec"),
          py::arg("input1"), py::arg("input2"));
    m.def("_allprops_array", &allprops_array, py::arg("inputspec"), py::arg("input1"),
          py::arg("input2"));
    py::tuple columns(zentropia::allprops_outputs.size());
    for (std::size_t i = 0; i < zentropia::allprops_outputs.size(); ++i)
        columns[i] = std::string(zentropia::allprops_outputs[i].name);
    m.attr("_allprops_columns") = columns;
}

} // namespace zpy
