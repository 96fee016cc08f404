#include "Import/mesheq_zp.hpp"

namespace mesheq_zp {
using backend = zp_adapter::absent<"Mesheq">;
using namespace zp_adapter::offer;

constinit const zp_adapter::operations operations = backend::row(fluid);

void mesheq_settable(std::string_view, std::string_view, std::string_view, std::string_view,
                     std::string_view, int, std::string& errormsg) {
    backend::fail(errormsg);
}

void mesheq_settable_new(std::string_view, std::string_view, double, double, double, double, double,
                         std::string_view, std::string_view, std::string_view,
                         std::string& errormsg) {
    backend::fail(errormsg);
}

void mesheq_usetable(std::string_view, std::string& errormsg) {
    backend::fail(errormsg);
}

void mesheq_alltableinfo(std::string&, std::string&, std::string&, std::string&, std::string&,
                         std::string&, double&, double&, double&, double&, double&, int&,
                         std::string& errormsg) {
    backend::fail(errormsg);
}

} // namespace mesheq_zp
