#include "Import/aerolt_errors.hpp"

#include "base/common.hpp"

namespace aerolt_zp {
namespace {

// The error codes of the Aerolt back-end with fixed messages.
// clang-format off
constexpr zp_errortext::code_text messages[] = {
    {0, "No errors"},
    {1, "Error in Aerolt: unknown component(s) in composition."},
    {4, "Error in Aerolt: iterational computation did not converge."},
    {5, "Error in Aerolt: no solution for iterational computation."},
};
// clang-format on
constexpr int input_not_available = 2;  // quotes the input specification
constexpr int output_not_available = 3; // quotes the output and input specifications
constexpr std::string_view calculation_of = "Error in Aerolt: calculation of ";
constexpr std::string_view not_available = " not available.";

} // namespace

void aerolt_errorstring(int errorid, std::string_view inputspec, std::string_view outputspec,
                        std::string& errormsg, std::size_t length) {
    const auto in = zp_common::trim(inputspec);
    const auto out = zp_common::trim(outputspec);
    std::string message;
    if (errorid == input_not_available)
        message.append(calculation_of).append(in).append(not_available);
    else if (errorid == output_not_available)
        message.append(calculation_of)
            .append(out)
            .append(" as function of ")
            .append(in)
            .append(not_available);
    else if (const auto text = zp_errortext::lookup(messages, errorid); !text.empty())
        message = text;
    else
        message = "Error in Aerolt, error code " + zp_errortext::integer_field(errorid, 3);
    zp_errortext::put(message, errormsg, length);
}

} // namespace aerolt_zp
