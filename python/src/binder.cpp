#include "binder.hpp"

#include <deque>
#include <stdexcept>

namespace zpy {

std::uint64_t& selection_epoch() {
    static std::uint64_t epoch = 0;
    return epoch;
}

py::str text_to_py(std::string_view text) {
    PyObject* s = PyUnicode_DecodeUTF8(text.data(), static_cast<Py_ssize_t>(text.size()), nullptr);
    if (s == nullptr) {
        PyErr_Clear();
        s = PyUnicode_DecodeLatin1(text.data(), static_cast<Py_ssize_t>(text.size()), nullptr);
    }
    if (s == nullptr) throw py::error_already_set();
    return py::reinterpret_steal<py::str>(s);
}

namespace {
template <class Text> py::list texts(std::span<const Text> texts) {
    py::list out;
    for (const auto& t : texts) out.append(text_to_py(zp_common::trim(t)));
    return out;
}
} // namespace

py::list texts_to_py(std::span<const std::string> t) {
    return texts(t);
}
py::list texts_to_py(std::span<const std::string_view> t) {
    return texts(t);
}

const std::vector<std::string>& parameter_names(std::string_view procedure, std::string_view names,
                                                std::size_t count) {
    static std::deque<std::vector<std::string>> kept; // argument names live as long as the module
    auto& list = kept.emplace_back();
    for (std::size_t at = 0; at < names.size();) {
        const auto end = std::min(names.find(' ', at), names.size());
        if (end > at) list.emplace_back(names.substr(at, end - at));
        at = end + 1;
    }
    if (list.size() != count)
        throw std::logic_error("binding of " + std::string(procedure) + " names " +
                               std::to_string(list.size()) + " of its " + std::to_string(count) +
                               " parameters");
    return list;
}

std::string returns_doc(const std::vector<std::string>& outputs) {
    if (outputs.empty()) return "Returns None.";
    std::string doc = "Returns ";
    if (outputs.size() > 1) doc += '(';
    for (std::size_t i = 0; i < outputs.size(); ++i) doc += (i ? ", " : "") + outputs[i];
    if (outputs.size() > 1) doc += ')';
    return doc + '.';
}

} // namespace zpy
