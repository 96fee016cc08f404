#pragma once
// What the fuzz target over the C API counts, shared by the libFuzzer build and the replay
// program.
#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace zp_fuzz {

// A call that takes more processor time than this counts as a hang.
inline constexpr double hang_limit_ms = 50.0;
// The same for a selection of a cubic model's fluid and the calls made on it: a selection of 20
// components computes its critical point and reads 20 texts, and the first calls after it trace
// the phase envelope or resolve a blend into its pure fluids (tens of ms in a release build,
// several times that under the sanitizers).
inline constexpr double cubic_hang_limit_ms = 1000.0;

struct statistics {
    std::uint64_t inputs = 0;
    std::uint64_t calls = 0;          // calls of exported procedures, the known good ones included
    std::uint64_t good_calls = 0;     // known good calls answered rightly
    std::uint64_t hangs = 0;          // calls slower than hang_limit_ms
    std::uint64_t mixtures = 0;       // selections of a cubic model's mixture that were accepted
    std::uint64_t mixture_states = 0; // states of such a selection answered with success
    double slowest_ms = 0.0;
    char slowest[64] = {}; // the procedure of the slowest call
};

const statistics& counts();
// Number of procedures the decoder chooses from.
std::size_t procedure_count();
// Writes the counts to the file named by ZP_FUZZ_STATS, at most once a second and at exit.
void record(const statistics& s);

} // namespace zp_fuzz
