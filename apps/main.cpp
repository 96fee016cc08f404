// zentropia: thermophysical properties from the command line (calc, props, batch, info, fluids,
// models, envelope, units, fluidfile). Without a command it shows every property of water at
// 1 atm and 300 K.
#include "cli.hpp"
#include "zentropia/version.h"

#include <algorithm>
#include <cstdio>
#include <exception>

namespace cli {

namespace {

constexpr std::string_view general_help = R"(usage: zentropia [COMMAND] [OPTIONS] [ARGUMENTS]

Thermophysical properties from the command line. Without a command, zentropia shows every
property of water at 1 atm (101325 Pa) and 300 K.

commands:
  calc PROP INPUTSPEC V1 V2   one property (a keyword such as h, enthalpy, cp, c, eta) at a
                              state
  props INPUTSPEC V1 V2       the phase and every property of a state, as a table with units
  batch [FILE]                a CSV of states (FILE or standard input) to a CSV of properties
  info                        molar mass, critical point and temperature limits of the fluid
  fluids                      the fluid names of the fluid table; with --model, what that
                              model computes
  models                      the models and whether each one's back-end library is installed
  envelope                    the phase envelope of a mixture as CSV (T in K, P in Pa, x, y)
  fluidfile NAME              a mixture written as the Varimol fluid NAME, with the equation
                              of state and mixing rule of your choice
  units                       the unit of every property symbol in the chosen unit set

A state is an INPUTSPEC, the symbols of two properties (PT, Ph, Ps, Td, Pq, Tq ...), and their
two values, in the chosen units.

options of every command:
  --model NAME         model (default IF97)
  --fluid A[,B...]     components, comma-separated (default water)
  --conc X[,Y...]      concentrations, one per component (default 1 for a single component)
  --units SET          SI (default), Zentropia or Anglo-Saxon, in any case
  --basis BASIS        PerMass (default) or PerMole
  --unit SYMBOL=UNIT   the unit of one property, e.g. --unit P=MPa --unit T=degC, psi, cP,
                       kJ/(kg K) (repeatable)
  -h, --help           this help; zentropia COMMAND --help explains a command
  --version            the version of zentropia

exit status: 0 success, 1 the library reported a failure (its message on standard error),
2 a wrong command line, 3 batch ran to its end but some rows failed.

examples:
  zentropia calc h PT 101325 300
  zentropia props Ph 1e6 2.8e6
  zentropia calc T Ph 10 2800 --units Zentropia
  printf 'P,T\n1e5,300\n1e6,500\n' | zentropia batch --props h,s,c
)";

constexpr std::string_view calc_help = R"(usage: zentropia calc PROP INPUTSPEC V1 V2 [OPTIONS]

Prints one property of the state (INPUTSPEC, V1, V2) in the chosen units. PROP is a property keyword,
in any case: p pressure, t temperature, v specvolume, d density, h enthalpy, s entropy,
u intenergy, q vaporqual, cv heatcapv, cp heatcapp, c soundspeed, alpha, beta, chi, fi, ksi, psi,
zeta, theta, kappa, gamma, eta viscosity, lambda thermcond, sigma surftens, dpdt, dpdv, d2pdt2,
d2pdv2, d2pdtdv, dcvdt.

example: zentropia calc enthalpy PT 101325 300    (J/kg of water at 1 atm and 300 K)
)";

constexpr std::string_view props_help = R"(usage: zentropia props INPUTSPEC V1 V2 [OPTIONS]

Prints the phase (liquid, vapour, two-phase, supercritical) and every property of the state
(INPUTSPEC, V1, V2) as a table: keyword, meaning, value and unit. A property the model's full
state lacks comes from its own entry point, as calc gives it; one that nothing computes reads
"not computed", with the reason under the table.

example: zentropia props Ph 10 2800 --units Zentropia    (steam at 10 bar, 2800 kJ/kg)
)";

constexpr std::string_view batch_help =
    R"(usage: zentropia batch [FILE] [--inputspec INPUTSPEC] [--props LIST] [--columns I,J]
                       [--output FILE] [OPTIONS]

Reads states from a CSV file (standard input when FILE is absent or "-") and writes one CSV row
per state to standard output: the two inputs as given, the chosen properties (with their units
in the header) and an error column that is empty when the row succeeded. The rows stream
through, so inputs of any length work. A row that fails (a field that is not a number, a state
the library refuses) gets the message in its error column and the run goes on; the exit status
is then 3.

  --inputspec INPUTSPEC  the symbols of the two input columns (default PT)
  --props LIST           comma-separated property keywords, as calc takes them (default h,s,c)
  --columns I,J          the CSV columns (counted from 1) holding the two inputs (default 1,2)
  --output FILE          write to FILE instead of standard output
  --keep                 write every field of the input line, then the properties
  --delimiter CHAR       the field separator of input and output (default ",", "tab" for tabs)
  --precision N          N significant digits (default: the fewest that read back exactly)
  --format csv|json      CSV (default; units in the header, "h [J/kg]") or a JSON array of
                         objects, one per row (null for a property not computed)

A property the model does not compute at a state leaves its cell empty; a note on standard error
counts such cells. Unknown properties and --columns beyond the input's columns are refused
before anything is written.

A first line whose input fields are not numbers is a header and is not evaluated; empty lines
and lines starting with # are skipped.

example: printf 'P,T\n1e5,300\n1e6,500\n' | zentropia batch --props h,s,c
)";

constexpr std::string_view info_help = R"(usage: zentropia info [OPTIONS]

Prints the molar mass, the critical temperature and pressure and the temperature range of the
model for the fluid, in the chosen units.
)";

constexpr std::string_view fluids_help =
    R"(usage: zentropia fluids [--by long|short|cas] [--model NAME]

Lists the fluids of the fluid table by long name (default), short name or CAS number; with
--model, the fluids that model computes (IF97: water), or that its back-end is not installed.
)";

constexpr std::string_view models_help = R"(usage: zentropia models

Lists the models a selection can name (--model) and whether the back-end library that computes
each one is installed.
)";

constexpr std::string_view envelope_help = R"(usage: zentropia envelope [OPTIONS]

Writes the phase envelope of a mixture as CSV: temperature in K, pressure in Pa and the liquid
and vapour mole fractions of each component, from low pressure on the bubble side through the
critical point round to low pressure on the dew side (models with a phase envelope: Varimol).

example: zentropia envelope --model Varimol --fluid methane,ethane --conc 0.85,0.15
)";

constexpr std::string_view fluidfile_help =
    R"(usage: zentropia fluidfile NAME --fluid A,B[,...] --conc X,Y[,...] [--eos PRSV|PR|SRK]
                           [--mixing vdW|WS] [--kij LIST] [--nrtl LIST] [--ws-kij LIST] [--replace]

Writes the mixture of the pure fluids A, B ... (names of the fluid table or the database) with
the mole fractions X, Y ... as the fluid file NAME.vmx in the fluids directory beside the
library, and prints the file's path. Afterwards --model Varimol --fluid NAME selects that
mixture; a selection of the fluids by their own names uses PRSV with van der Waals mixing.
NAME is a plain name (letters, digits, - _ + . ( ), at most 32 characters) that no fluid of the
fluid table or the database has. The constants of each component come from the database.

  --eos PRSV|PR|SRK  Peng-Robinson with the Stryjek-Vera alpha (default), Peng-Robinson with the
                     1978 alpha, or Soave-Redlich-Kwong
  --mixing vdW|WS    van der Waals one-fluid mixing with kij (default), or Wong-Sandler mixing
                     with an NRTL excess Gibbs energy (with PRSV and PR only)
  --kij LIST         vdW: one kij = kji per pair; default: the database's kij of the pair, 0
                     where it has none
  --nrtl LIST        WS: three values per pair, tau_ij,tau_ji,alpha_ij: the dimensionless NRTL
                     tau (G_ij = exp(-alpha_ij tau_ij)) and the non-randomness alpha_ij = alpha_ji;
                     default: all 0 (no excess Gibbs energy)
  --ws-kij LIST      WS: the Wong-Sandler k_ij = k_ji of the cross second virial coefficient,
                     one per pair; default 0
  --replace          replace an existing file NAME.vmx (kept otherwise)

Pairs are listed in the order (1,2), (1,3) ... (1,n), (2,3) ... (n-1,n) of the --fluid list.

examples:
  zentropia fluidfile CH4-C2H6-PR --fluid methane,ethane --conc 0.9,0.1 --eos PR
  zentropia calc h PT 5e6 250 --model Varimol --fluid CH4-C2H6-PR
  zentropia fluidfile N2-CO2-WS --fluid N2,CO2 --conc 0.5,0.5 --mixing WS --nrtl 0.3,0.2,0.3
)";

constexpr std::string_view units_help = R"(usage: zentropia units [OPTIONS]

Prints the unit of every property symbol in the chosen unit set, basis and overrides.
)";

} // namespace

const std::vector<command_spec>& commands() {
    static const std::vector<command_spec> table{
        {"calc", {}, &run_calc, calc_help},
        {"props", {}, &run_props, props_help},
        {"batch",
         {"--inputspec", "--props", "--columns", "--output", "--keep", "--delimiter", "--precision",
          "--format"},
         &run_batch,
         batch_help},
        {"info", {}, &run_info, info_help},
        {"fluids", {"--by"}, &run_fluids, fluids_help},
        {"models", {}, &run_models, models_help},
        {"envelope", {}, &run_envelope, envelope_help},
        {"units", {}, &run_units, units_help},
        {"fluidfile",
         {"--eos", "--mixing", "--kij", "--nrtl", "--ws-kij", "--replace"},
         &run_fluidfile,
         fluidfile_help},
    };
    return table;
}

namespace {

const command_spec* find_command(std::string_view name) {
    for (const auto& c : commands())
        if (c.name == name) return &c;
    return nullptr;
}

int run(int argc, char** argv) {
    command_line cl = parse(argc, argv);
    if (cl.command == "help") {
        cl.help = true;
        cl.command = cl.arguments.empty() ? "" : cl.arguments.front();
    }
    if (cl.version) {
        std::printf("zentropia %s\n", ZENTROPIA_VERSION);
        return exit_ok;
    }
    if (cl.command.empty() && cl.help) {
        std::fputs(general_help.data(), stdout);
        return exit_ok;
    }
    if (cl.command.empty()) {
        if (argc > 1) throw usage_error("no command given");
        std::puts("Water (IF97) at 1 atm and 300 K; zentropia --help lists the commands.\n");
        cl.command = "props";
        cl.arguments = {"PT", "101325", "300"};
    }
    const command_spec* command = find_command(cl.command);
    if (command == nullptr) throw usage_error("unknown command '" + cl.command + "'");
    if (cl.help) {
        std::fputs(command->help.data(), stdout);
        return exit_ok;
    }
    for (const auto& [name, value] : cl.options) {
        if (std::find(command->options.begin(), command->options.end(), name) !=
            command->options.end())
            continue;
        bool elsewhere = false;
        for (const auto& c : commands())
            elsewhere =
                elsewhere || std::find(c.options.begin(), c.options.end(), name) != c.options.end();
        throw usage_error(elsewhere ? "option " + name + " does not belong to " + cl.command
                                    : "unknown option " + name);
    }
    return command->run(cl);
}

} // namespace
} // namespace cli

int main(int argc, char** argv) {
    try {
        return cli::run(argc, argv);
    } catch (const cli::usage_error& e) {
        std::fprintf(stderr, "zentropia: %s\nTry 'zentropia --help'.\n", e.what());
        return cli::exit_usage;
    } catch (const std::exception& e) {
        std::fprintf(stderr, "zentropia: %s\n", e.what());
        return cli::exit_failure;
    }
}
