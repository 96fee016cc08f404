#include "main/zentropia_isoline.hpp"

#include "base/common.hpp"
#include "base/zentropia_base.hpp"

#include <algorithm>
#include <array>
#include <cmath>

namespace zentropia_isoline {

namespace {

// Distance by which a saturation point is moved off the phase boundary, in the internal unit
// of the run variable, so that the evaluation there lands in the intended phase.
constexpr double boundary_offset = 1e-6;

std::string concat(std::string_view first, std::string_view second) {
    std::string text(first);
    text += second;
    return text;
}

// The part of a back-end's message that says it does not serve inputs in this order.
std::string rejected_order_text(std::string_view inputspec) {
    return concat(concat("as function of ", inputspec), " not available");
}

// A saturation point moved onto the side of its own phase: liquid at higher pressure or lower
// temperature than the boundary, vapour at lower pressure or higher temperature.
double on_own_side(std::string_view run, double r_sat, bool vapour) {
    if (run == "P") return vapour ? r_sat - boundary_offset : r_sat + boundary_offset;
    if (run == "T") return vapour ? r_sat + boundary_offset : r_sat - boundary_offset;
    return r_sat;
}

std::string with_count(std::string_view text, int count) {
    return concat(concat(zp_common::error_prefix, text), std::to_string(count));
}

} // namespace

bool is_substring(std::string_view subrij, std::string_view karrij) {
    return karrij.find(zp_common::trim(subrij)) != std::string_view::npos;
}

int zp_isoline(std::string_view propspec, double propval, std::string_view runspec,
               std::string_view calcspec, double minval, double maxval, int npnts,
               std::span<double> runval, std::span<double> calcval, std::string& errormsg) {
    errormsg = zp_common::no_errors;
    if (npnts < 2) {
        errormsg = with_count("an isoline needs at least 2 points; npnts = ", npnts);
        return 0;
    }
    const auto points = static_cast<std::size_t>(npnts);
    if (runval.size() < points || calcval.size() < points) {
        errormsg = with_count("the isoline arrays hold fewer points than npnts = ", npnts);
        return 0;
    }
    if (!std::isfinite(propval) || !std::isfinite(minval) || !std::isfinite(maxval)) {
        errormsg = concat(zp_common::error_prefix,
                          "an isoline needs a finite property value and finite bounds");
        return 0;
    }

    // The back-end may serve the two inputs in one order only: try the other once.
    const std::string_view prop = zp_common::trim(propspec);
    const std::string_view run = zp_common::trim(runspec);
    std::string inputspec = concat(prop, run);
    bool swapped = false;
    zentropia_base::calculate(inputspec, propval, minval, calcspec, errormsg);
    if (is_substring(rejected_order_text(inputspec), errormsg)) {
        inputspec = concat(run, prop);
        swapped = true;
        zentropia_base::calculate(inputspec, minval, propval, calcspec, errormsg);
        if (is_substring(rejected_order_text(inputspec), errormsg)) return 0;
    }
    const auto evaluate = [&](double r, std::string& message) {
        return swapped ? zentropia_base::calculate(inputspec, r, propval, calcspec, message)
                       : zentropia_base::calculate(inputspec, propval, r, calcspec, message);
    };

    // Saturated liquid (quality 0) and vapour (quality 1) on this line, where they lie within
    // the run; a failed evaluation means the line meets no saturation boundary on that side.
    struct saturation_point {
        double r;
        bool vapour;
    };
    std::array<saturation_point, 2> saturation{};
    int nsat = 0;
    const std::string satspec = concat(prop, "q");
    const double low = std::min(minval, maxval);
    const double high = std::max(minval, maxval);
    std::string message;
    for (const double quality : {0.0, 1.0}) {
        const double r = zentropia_base::calculate(satspec, propval, quality, run, message);
        if (zp_common::is_ok(message) && std::isfinite(r) && r >= low && r <= high)
            saturation[nsat++] = {r, quality == 1.0};
    }
    const int n = npnts - nsat;
    if (n < 2) {
        errormsg = std::string(zp_common::error_prefix) + "an isoline through " +
                   std::to_string(nsat) + " saturation point(s) needs at least " +
                   std::to_string(nsat + 2) + " points; npnts = " + std::to_string(npnts);
        return 0;
    }

    // The first failing point's text is reported; the others keep the values returned.
    std::string failure;
    const auto keep_failure = [&]() {
        if (!zp_common::is_ok(message) && failure.empty()) failure = message;
    };
    const double step = (maxval - minval) / (n - 1);
    for (int i = 0; i < n; ++i) {
        runval[i] = i == n - 1 ? maxval : minval + i * step;
        calcval[i] = evaluate(runval[i], message);
        keep_failure();
    }
    int filled = n;
    for (int k = 0; k < nsat; ++k) {
        const double r_sat = saturation[k].r;
        for (int i = 1; i < filled; ++i) {
            if ((r_sat - runval[i - 1]) * (r_sat - runval[i]) > 0.0) continue;
            std::copy_backward(runval.begin() + i, runval.begin() + filled,
                               runval.begin() + filled + 1);
            std::copy_backward(calcval.begin() + i, calcval.begin() + filled,
                               calcval.begin() + filled + 1);
            runval[i] = on_own_side(run, r_sat, saturation[k].vapour);
            calcval[i] = evaluate(runval[i], message);
            keep_failure();
            ++filled;
            break;
        }
    }
    errormsg = failure.empty() ? std::string(zp_common::no_errors) : failure;
    return filled;
}

} // namespace zentropia_isoline
