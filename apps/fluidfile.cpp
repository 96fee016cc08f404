// The fluidfile command: a mixture of the fluid database written as a Varimol fluid file, with
// the equation of state and mixing rule of the caller's choice.
#include "Import/varimol_fluidfile.hpp"
#include "base/common.hpp"
#include "cli.hpp"

#include <cstdio>

namespace cli {

namespace {

std::vector<double> numbers(const command_line& cl, std::string_view name) {
    std::vector<double> values;
    const std::string text = option(cl, name, "");
    if (text.empty()) return values;
    for (std::size_t at = 0;;) {
        const auto end = text.find(',', at);
        values.push_back(number(std::string_view(text).substr(at, end - at), name));
        if (end == std::string::npos) return values;
        at = end + 1;
    }
}

} // namespace

int run_fluidfile(const command_line& cl) {
    expect_arguments(cl, 1, "NAME");
    if (!cl.fluid.components_given)
        throw usage_error("fluidfile wants the components: --fluid A,B --conc X,Y");
    varimol_fluidfile::mixture m;
    m.name = cl.arguments[0];
    m.components = cl.fluid.components;
    m.conc = cl.fluid.composition;
    if (m.conc.empty() && m.components.size() == 1) m.conc.push_back(1.0);
    m.eos = option(cl, "--eos", "PRSV");
    m.mixing = option(cl, "--mixing", "vdW");
    m.kij = numbers(cl, "--kij");
    m.nrtl = numbers(cl, "--nrtl");
    m.ws_kij = numbers(cl, "--ws-kij");
    std::string path, errormsg;
    varimol_fluidfile::write_fluidfile(m, cl.options.contains("--replace"), path, errormsg);
    check(errormsg);
    std::printf("%s\n", path.c_str());
    return exit_ok;
}

} // namespace cli
