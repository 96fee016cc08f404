#pragma once
// Writing a Varimol fluid file: a mixture of fluids of the fluid database, under a name of the
// caller's choosing, with the equation of state and mixing rule the caller picks (Peng-Robinson
// with the Stryjek-Vera or the 1978 alpha, Soave-Redlich-Kwong; van der Waals one-fluid mixing
// with kij, or Wong-Sandler mixing with an NRTL excess Gibbs energy). Selecting that name with
// the model "Varimol" then evaluates the mixture so described. The text layout is the one the
// loader reads (data/fluids/README.md).
#include <string>
#include <string_view>
#include <vector>

namespace varimol_fluidfile {

// Most characters of a fluid file's name (the fluid table compares 32).
inline constexpr std::size_t max_name_length = 32;

// A mixture to be written. Pairs (i, j), i < j, are counted in the order (1,2), (1,3) ... (1,n),
// (2,3) ... (n-1,n).
struct mixture {
    std::string name;                    // the fluid's name; the file is "<name>.vmx"
    std::vector<std::string> components; // fluid names (long, short or CAS) of pure fluids
    std::vector<double> conc;            // mole fractions, adding up to 1
    std::string eos = "PRSV";            // "PRSV", "PR" or "SRK" (any case)
    std::string mixing = "vdW";          // "vdW" or "WS" (any case)
    // van der Waals kij, one per pair; empty: the kij of the database's binary pairs (0 where it
    // has none)
    std::vector<double> kij;
    // Wong-Sandler mixing only: NRTL tau_ij, tau_ji, alpha_ij per pair (tau dimensionless,
    // G_ij = exp(-alpha_ij tau_ij)); empty: all 0, no excess Gibbs energy
    std::vector<double> nrtl;
    // Wong-Sandler mixing only: k_ij of the cross second virial coefficient, one per pair;
    // empty: all 0
    std::vector<double> ws_kij;
};

// The model code of the back-end for an equation of state and a mixing rule; 0 with the reason
// in errormsg for a combination it does not offer.
int model_code(std::string_view eos, std::string_view mixing, std::string& errormsg);

// The lines of the fluid text of `m`, from the fluid database in `fluidpath` (the fluids
// directory with its final "/"). errormsg: "No errors" or why the mixture cannot be written.
void fluid_text(std::string_view fluidpath, const mixture& m, std::vector<std::string>& lines,
                std::string& errormsg);

// Writes "<name>.vmx" into `fluidpath`; an existing file is kept unless `replace`. `path`
// receives the file written.
void write_fluidfile(std::string_view fluidpath, const mixture& m, bool replace, std::string& path,
                     std::string& errormsg);

// the same in the fluids directory beside the library
void write_fluidfile(const mixture& m, bool replace, std::string& path, std::string& errormsg);

} // namespace varimol_fluidfile
