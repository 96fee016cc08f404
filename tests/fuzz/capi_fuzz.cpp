// A fuzz target over the C API (libFuzzer's entry point LLVMFuzzerTestOneInput). Each input is a
// program: its bytes are decoded into a sequence of calls of the exported procedures with hostile
// arguments (random and over-long texts, NaN, infinities, huge and denormal values, short or
// absent caller buffers, negative lengths), interleaved with a known good call whose answer is
// checked. The target aborts, so that the fuzzer keeps the input, when
//   - a text written into a caller's buffer is not NUL-terminated inside it, runs past its end,
//     or is an empty errormsg ("BAD TEXT");
//   - a caller's real or integer array is written past its length ("BAD TEXT" too: a buffer
//     overrun);
//   - the known good call, made after whatever came before, answers wrongly, or a malformed
//     request is answered with success ("WRONG ANSWER").
// A call that takes more processor time than the hang limit is counted and its input kept
// (ZP_FUZZ_HANGS).
// The same file, linked with fuzz_replay.cpp instead of libFuzzer, replays saved inputs.
#include "fuzz_target.hpp"

#include "zentropia/zentropia.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <chrono>
#include <cinttypes>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <initializer_list>
#include <limits>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include <unistd.h>

namespace {

// ---- Counting and reporting --------------------------------------------------------------------

zp_fuzz::statistics stats;
const std::uint8_t* current_data = nullptr;
std::size_t current_size = 0;

[[noreturn]] void fault(const char* kind, const char* procedure, const std::string& what) {
    std::fprintf(stderr, "ZENTROPIA-FUZZ %s: %s: %s\n", kind, procedure, what.c_str());
    std::fflush(stderr);
    std::abort();
}

// The raw input of the current run, kept in dir (for a hang: libFuzzer keeps only crashes).
void keep_input(const char* dir, const char* stem) {
    if (dir == nullptr || *dir == '\0' || current_data == nullptr) return;
    char name[512];
    std::snprintf(name, sizeof name, "%s/%s-%ld-%" PRIu64, dir, stem, static_cast<long>(getpid()),
                  stats.hangs);
    if (std::FILE* f = std::fopen(name, "wb")) {
        std::fwrite(current_data, 1, current_size, f);
        std::fclose(f);
    }
}

// The processor time of this thread in ms: a call's own work, which other programs on a busy
// machine do not stretch as they stretch the wall-clock time.
double cpu_ms() {
    timespec t{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return 1e3 * static_cast<double>(t.tv_sec) + 1e-6 * static_cast<double>(t.tv_nsec);
}

// The selection is a cubic model's fluid (its calls get cubic_hang_limit_ms).
bool cubic_selected = false;

// true for a model name that may select a cubic model's fluid (a caller may pass none)
bool names_cubic_model(const char* model) {
    if (model == nullptr) return false;
    std::string lower(model);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return lower.find("varimol") != std::string::npos;
}

// Runs one call of a procedure, timed by its processor time.
template <class Call> void timed(const char* procedure, Call&& call) {
    const double limit_ms = cubic_selected ? zp_fuzz::cubic_hang_limit_ms : zp_fuzz::hang_limit_ms;
    const double start = cpu_ms();
    call();
    const double ms = cpu_ms() - start;
    ++stats.calls;
    if (ms > stats.slowest_ms) {
        stats.slowest_ms = ms;
        std::snprintf(stats.slowest, sizeof stats.slowest, "%s", procedure);
    }
    if (ms > limit_ms) {
        ++stats.hangs;
        std::fprintf(stderr, "ZENTROPIA-FUZZ HANG: %s took %.1f ms\n", procedure, ms);
        keep_input(std::getenv("ZP_FUZZ_HANGS"), "hang");
    }
}

// ---- Reading the input -----------------------------------------------------------------------

class reader {
public:
    reader(const std::uint8_t* data, std::size_t size) : d_(data), n_(size) {}
    bool empty() const { return n_ == 0; }
    std::size_t remaining() const { return n_; }
    std::uint8_t byte() {
        if (n_ == 0) return 0;
        --n_;
        return *d_++;
    }
    std::uint16_t u16() { return static_cast<std::uint16_t>(byte() | byte() << 8); }
    // 0 .. k - 1
    unsigned below(unsigned k) { return k <= 256 ? byte() % k : u16() % k; }
    double raw() {
        std::uint64_t bits = 0;
        for (int i = 0; i < 8; ++i) bits |= static_cast<std::uint64_t>(byte()) << (8 * i);
        double x;
        std::memcpy(&x, &bits, sizeof x);
        return x;
    }
    std::string bytes(std::size_t n) {
        n = std::min(n, n_);
        std::string s(reinterpret_cast<const char*>(d_), n);
        d_ += n;
        n_ -= n;
        return s;
    }

private:
    const std::uint8_t* d_;
    std::size_t n_;
};

constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

// Values that break arithmetic, and values near real states in SI and in the internal units.
constexpr std::array<double, 48> hostile_reals{nan,
                                               -nan,
                                               inf,
                                               -inf,
                                               0.0,
                                               -0.0,
                                               std::numeric_limits<double>::denorm_min(),
                                               -std::numeric_limits<double>::denorm_min(),
                                               std::numeric_limits<double>::min(),
                                               std::numeric_limits<double>::max(),
                                               -std::numeric_limits<double>::max(),
                                               1e300,
                                               -1e300,
                                               1e-300,
                                               -8888.8,
                                               -8888.75,
                                               1.0,
                                               -1.0,
                                               0.5,
                                               2.0,
                                               1e5,
                                               3e6,
                                               22.064e6,
                                               101325.0,
                                               300.0,
                                               273.15,
                                               273.16,
                                               373.946,
                                               647.096,
                                               1000.0,
                                               2273.15,
                                               0.01,
                                               1e-12,
                                               1e-9,
                                               1e6,
                                               1e9,
                                               100.0,
                                               20.0,
                                               2800.0,
                                               2.8e6,
                                               0.001,
                                               0.018015257,
                                               -273.15,
                                               -1e5,
                                               1e20,
                                               0.999999995,
                                               1e-8,
                                               4e3};

double real(reader& r) {
    const unsigned pick = r.byte();
    if (pick < 200) return hostile_reals[pick % hostile_reals.size()];
    if (pick < 235) return r.raw();
    // a real state, slightly off
    return hostile_reals[r.byte() % hostile_reals.size()] * (1.0 + (r.byte() - 128) / 256.0);
}

int integer(reader& r) {
    static constexpr std::array<int, 16> values{0,  1,  2,   3,   20,      21,      -1, -20,
                                                27, 50, 100, 108, INT_MAX, INT_MIN, 4,  1000};
    const unsigned pick = r.byte();
    return pick < 200 ? values[pick % values.size()] : static_cast<int>(r.u16()) - 32768;
}

// ---- Texts in --------------------------------------------------------------------------------

enum class kind { model, component, unitset, basis, symbols, units, inputspec, keyword, table, n };

constexpr std::string_view models[] = {
    "IF97",     "if97",   "Varimol",     "liteVarimol", "RefProp", "PCP-SAFT", "sPCP-SAFT",
    "TPSI",     "Aerolt", "Kelvora",     "Critova",     "NH3-H2O", "LiBr-H2O", "Mesheq",
    "Msh_IF97", "Msh_",   "msh_RefProp", "Zentropia",   " IF97",   "IF97  "};
constexpr std::string_view components[] = {"water",    "Water", "H2O",       "methane", "ethanol",
                                           "nitrogen", "CO2",   "7732-18-5", "?",       ""};
constexpr std::string_view unitsets[] = {"SI", "Zentropia", "ZP", "Anglo-Saxon", "si", "SI  "};
constexpr std::string_view bases[] = {"PerMass", "PerMole", "permass", "PerMass  "};
constexpr std::string_view symbol_lists[] = {
    "P",         "T",      "v",          "d",          "h",     "s",    "u",
    "cp",        "cv",     "c",          "alpha",      "beta",  "chi",  "fi",
    "ksi",       "psi",    "zeta",       "theta",      "kappa", "eta",  "deta_dT",
    "deta_drho", "lambda", "dlambda_dT", "dlambda_dr", "sigma", "Mmol", "P,T",
    "T,P",       "P,T,h",  "h,s",        ",",          "P,,T",  "q"};
constexpr std::string_view unit_lists[] = {"MPa",
                                           "bar",
                                           "Pa",
                                           "psia",
                                           "C",
                                           "F",
                                           "K",
                                           "R",
                                           "kJ/kg",
                                           "J/kg",
                                           "J/mol",
                                           "kJ/mol",
                                           "kJ/kg/K",
                                           "m^3/kg",
                                           "kg/m^3",
                                           "mol/m^3",
                                           "m/s",
                                           "ft/s",
                                           "Pa.s",
                                           "W/m/K",
                                           "MPa,C",
                                           "C,MPa",
                                           "kJ/kg,kJ/kg/K",
                                           "m^x",
                                           "kg^99",
                                           "^",
                                           "lb",
                                           "mol",
                                           "kmol/m^3",
                                           "\xB0"
                                           "C",
                                           "\xC2\xB0"
                                           "C",
                                           "1/K"};
constexpr std::string_view inputspecs[] = {
    "PT",    "Ph",     "Ps",     "Pv",     "Pd",     "Pq",     "Tq",     "Td",
    "Tv",    "Th",     "Ts",     "hs",     "vu",     "du",     "hP",     "TP",
    "qP",    "pt",     "PT liq", "PT vap", "Pq_vap", "Ph liq", "PT  ph", "PT 1ph",
    "PTliq", "PT LIQ", "PTjunk", "P",      "PT ",    "PTx",    "uv"};
constexpr std::string_view keywords[] = {
    "h",         "p",        "T",         "enthalpy", "Pressure", "v",          "d",
    "s",         "u",        "q",         "cv",       "cp",       "c",          "alpha",
    "beta",      "chi",      "fi",        "ksi",      "psi",      "zeta",       "theta",
    "kappa",     "gamma",    "eta",       "lambda",   "sigma",    "dpdt",       "dpdv",
    "d2pdt2",    "d2pdv2",   "d2pdtdv",   "dcvdt",    "M_mol",    "T_crit",     "P_crit",
    "T_min",     "T_max",    "x",         "y",        "lnphi",    "dP_dv",      "dP_dT",
    "d2P_dv2",   "dCv_dT",   "w",         "v.",       "p,t,h.",   "soundspeed", "viscosity",
    "thermcond", "surftens", "vaporqual", "xyz",      ""};
constexpr std::string_view tables[] = {"table1", "IF97_PT", "", "bicubic", "linear", "PT"};

struct token_list {
    const std::string_view* first;
    std::size_t size;
};
template <std::size_t N> constexpr token_list list(const std::string_view (&a)[N]) {
    return {a, N};
}
constexpr std::array<token_list, static_cast<std::size_t>(kind::n)> tokens{
    list(models),     list(components), list(unitsets), list(bases), list(symbol_lists),
    list(unit_lists), list(inputspecs), list(keywords), list(tables)};

// A text argument: a NUL-terminated string, or NULL.
struct ctext {
    std::string s;
    bool null = false;
    const char* c() const { return null ? nullptr : s.c_str(); }
};

std::string_view token(reader& r, kind k) {
    const token_list& t = tokens[static_cast<std::size_t>(k)];
    return t.first[r.byte() % t.size];
}

ctext text(reader& r, kind k) {
    const unsigned pick = r.byte();
    ctext t;
    if (pick < 150) {
        t.s = token(r, k);
    } else if (pick < 180) { // random bytes (a NUL ends the text early)
        t.s = r.bytes(pick & 1 ? r.u16() % 512 : r.byte() % 40);
    } else if (pick < 200) { // a known word with junk behind it
        t.s = std::string(token(r, k)) + r.bytes(r.byte() % 16);
    } else if (pick < 215) { // over-long: up to 100,000 bytes
        t.s.assign(std::min<std::size_t>(r.u16() * 2u, 100000), static_cast<char>(r.byte() | 1));
        if (pick & 1) t.s = std::string(token(r, k)) + t.s;
    } else if (pick < 230) {
        t.s = "";
    } else if (pick < 240) {
        t.null = true;
    } else { // a word of another kind
        t.s = token(r, static_cast<kind>(r.byte() % static_cast<unsigned>(kind::n)));
    }
    return t;
}

// ---- Caller buffers --------------------------------------------------------------------------

constexpr std::size_t guard = 16;
constexpr char guard_byte = '\xA5';

int buffer_length(reader& r, int typical) {
    static constexpr std::array<int, 14> lengths{0,  1,  2,   3,    5,  8,  16,
                                                 32, 80, 256, 1024, -1, -7, 0};
    const unsigned pick = r.byte();
    if (pick < 100) return typical;
    if (pick < 230) return lengths[pick % lengths.size()];
    return static_cast<int>(r.byte() % 300);
}

// A caller's text buffer out (or in and out): the memory beyond its length is a guard that must
// stay untouched, and the text must end inside the buffer.
class text_buffer {
public:
    // errormsg buffers carry a text on entry: "No errors", an old failure, random or
    // unterminated bytes; it is never empty, so an empty text after the call is the callee's.
    text_buffer(reader& r, int typical, bool errormsg) : errormsg_(errormsg) {
        len_ = buffer_length(r, typical);
        null_ = r.byte() < 12;
        mem_.assign(static_cast<std::size_t>(std::max(len_, 0)) + guard, guard_byte);
        if (len_ < 1) return;
        std::fill_n(mem_.begin(), len_, 'Q');
        const unsigned pick = r.byte() % 8;
        if (pick == 7) return; // unterminated
        std::string entry = pick < 4   ? std::string("No errors")
                            : pick < 6 ? std::string("Error in Zentropia: an earlier failure")
                                       : r.bytes(r.byte() % 24);
        std::replace(entry.begin(), entry.end(), '\0', 'x');
        if (entry.empty()) entry = "x";
        entry.resize(std::min(entry.size(), static_cast<std::size_t>(len_ - 1)));
        std::memcpy(mem_.data(), entry.c_str(), entry.size() + 1);
        entered_success_ = entry == "No errors";
    }
    char* p() { return null_ ? nullptr : mem_.data(); }
    int len() const { return len_; }
    bool entered_success() const { return entered_success_; }
    std::string_view text() const {
        if (null_ || len_ < 1) return {};
        return {mem_.data(), strnlen(mem_.data(), static_cast<std::size_t>(len_))};
    }
    void check(const char* procedure, const char* argument) const {
        const std::size_t used = static_cast<std::size_t>(std::max(len_, 0));
        for (std::size_t i = used; i < mem_.size(); ++i)
            if (mem_[i] != guard_byte)
                fault("BAD TEXT", procedure,
                      std::string(argument) + " written past its " + std::to_string(len_) +
                          "-byte buffer");
        if (null_ || len_ < 1) return;
        if (std::memchr(mem_.data(), '\0', used) == nullptr)
            fault("BAD TEXT", procedure,
                  std::string(argument) + " not NUL-terminated in its " + std::to_string(len_) +
                      "-byte buffer");
        if (errormsg_ && len_ >= 2 && mem_[0] == '\0')
            fault("BAD TEXT", procedure, std::string(argument) + " left empty");
    }

private:
    std::vector<char> mem_;
    int len_ = 0;
    bool null_ = false;
    bool entered_success_ = false;
    bool errormsg_;
};

// count slots of width bytes, each a NUL-terminated text after the call.
class text_slots {
public:
    text_slots(reader& r, int typical_count, int typical_width) {
        count_ = r.byte() < 100 ? typical_count : integer(r) % 300;
        width_ = buffer_length(r, typical_width);
        null_ = r.byte() < 12;
        const std::size_t used = count_ > 0 && width_ > 0 ? static_cast<std::size_t>(count_) *
                                                                static_cast<std::size_t>(width_)
                                                          : 0;
        mem_.assign(used + guard, guard_byte);
        std::fill_n(mem_.begin(), used, 'Q');
        used_ = used;
    }
    char* p() { return null_ ? nullptr : mem_.data(); }
    int count() const { return count_; }
    int width() const { return width_; }
    void check(const char* procedure, const char* argument) const {
        for (std::size_t i = used_; i < mem_.size(); ++i)
            if (mem_[i] != guard_byte)
                fault("BAD TEXT", procedure, std::string(argument) + " written past its slots");
        if (null_) return;
        for (std::size_t at = 0; at < used_; at += static_cast<std::size_t>(width_))
            if (std::memchr(mem_.data() + at, '\0', static_cast<std::size_t>(width_)) == nullptr)
                fault("BAD TEXT", procedure,
                      std::string(argument) + " slot not NUL-terminated in its width");
    }

private:
    std::vector<char> mem_;
    int count_ = 0, width_ = 0;
    std::size_t used_ = 0;
    bool null_ = false;
};

// A caller's array of n values (in, out or both), followed by guard values that must stay.
template <class T> class array_buffer {
public:
    array_buffer(reader& r, int typical, bool hostile_values) {
        const unsigned pick = r.byte();
        len_ = pick < 120 ? typical
               : pick < 230
                   ? std::array<int, 12>{0, 1, 2, 3, 4, 19, 20, 21, 40, 100, -1, 5}[pick % 12]
                   : static_cast<int>(r.byte() % 64);
        null_ = r.byte() < 12;
        const std::size_t n = static_cast<std::size_t>(std::max(len_, 0));
        mem_.resize(n + guard);
        for (std::size_t i = 0; i < n; ++i) mem_[i] = hostile_values ? value(r) : T{};
        std::memset(static_cast<void*>(mem_.data() + n), guard_byte, guard * sizeof(T));
    }
    T* p() { return null_ ? nullptr : mem_.data(); }
    int len() const { return len_; }
    void check(const char* procedure, const char* argument) const {
        const std::size_t n = static_cast<std::size_t>(std::max(len_, 0));
        const auto* bytes = reinterpret_cast<const unsigned char*>(mem_.data() + n);
        for (std::size_t i = 0; i < guard * sizeof(T); ++i)
            if (bytes[i] != static_cast<unsigned char>(guard_byte))
                fault("BAD TEXT", procedure,
                      std::string(argument) + " array written past its length " +
                          std::to_string(len_));
    }

private:
    static T value(reader& r) {
        if constexpr (std::is_floating_point_v<T>)
            return r.byte() < 64 ? static_cast<T>(r.byte() % 3) * 0.5 : real(r);
        else
            return static_cast<T>(integer(r));
    }
    std::vector<T> mem_;
    int len_ = 0;
    bool null_ = false;
};
using reals = array_buffer<double>;
using ints = array_buffer<int>;

// Scalar outputs: the caller's variables, or NULL (which discards a value).
class scalars {
public:
    explicit scalars(reader& r) : mode_(r.byte() % 4), r_(r) {}
    double* d() { return take() ? &d_[next_d_++ % d_.size()] : nullptr; }
    int* i() { return take() ? &i_[next_i_++ % i_.size()] : nullptr; }

private:
    bool take() { return mode_ == 0 ? false : mode_ == 3 ? r_.byte() % 8 != 0 : true; }
    unsigned mode_;
    reader& r_;
    std::array<double, 64> d_{};
    std::array<int, 8> i_{};
    std::size_t next_d_ = 0, next_i_ = 0;
};

// ---- Oracles -----------------------------------------------------------------------------------

bool is_success(std::string_view e) {
    return e == "No errors" || e == "Same fluid";
}

// Two property letters, optionally followed by a phase marker at characters 4 to 6 ("PT liq",
// "Pq_vap", "PT 1ph"); anything else must be refused, whatever the back-end reads of it.
bool well_formed_inputspec(std::string_view read) {
    while (!read.empty() && read.back() == ' ') read.remove_suffix(1);
    if (read.size() == 2) return true;
    if (read.size() != 6) return false; // the third character is free
    const auto marker = read.substr(3);
    return marker == "liq" || marker == "vap" || marker.substr(1) == "ph";
}

// A state request answered with success must have been a well-formed one.
void check_inputspec_answer(const char* procedure, const ctext& inputspec,
                            const text_buffer& errormsg) {
    if (inputspec.null || errormsg.len() < 10 || !is_success(errormsg.text())) return;
    const std::string_view read = inputspec.c(); // what the library reads: up to the first NUL
    if (!well_formed_inputspec(read))
        fault("WRONG ANSWER", procedure,
              "input specification \"" + std::string(read.substr(0, 40)) +
                  "\" answered with success");
}

// A failure text about inputs that are not finite shows no finite number: such a number would be
// the value in internal units, which the caller never gave.
void check_non_finite_text(const char* procedure, const text_buffer& errormsg) {
    const auto e = errormsg.text();
    if (!e.starts_with("Error in Zentropia: input") || e.find("finite") == std::string_view::npos)
        return;
    if (e.size() + 1 >= static_cast<std::size_t>(errormsg.len())) return; // cut to its buffer
    std::string rest(e);
    for (const std::string_view allowed : {"inputs 1 and 2", "input 1", "input 2"})
        for (auto at = rest.find(allowed); at != std::string::npos; at = rest.find(allowed))
            rest.erase(at, allowed.size());
    if (std::any_of(rest.begin(), rest.end(), [](char c) { return c >= '0' && c <= '9'; }))
        fault("WRONG ANSWER", procedure,
              "non-finite input reported with a number: " + std::string(e));
}

// The known good call: water at 3 MPa and 300 K in SI, whose specific enthalpy IAPWS-IF97 gives as
// 115.331273 kJ/kg (verification table of region 1), after whatever the input did before.
void known_good_call() {
    char e[128];
    const char* water[] = {"water"};
    const double one[] = {1.0};
    timed("known good: setunits",
          [&] { zentropia_setunits("SI", "PerMass", "", "", e, sizeof e); });
    if (std::strcmp(e, "No errors") != 0) fault("WRONG ANSWER", "setunits", e);
    std::strcpy(e, "");
    // leaving a cubic model's fluid releases its caches: the limit of that fluid still holds
    timed("known good: setfluid",
          [&] { zentropia_setfluid("IF97", 1, water, 1, one, 1, e, sizeof e); });
    if (!is_success(e)) fault("WRONG ANSWER", "setfluid", e);
    cubic_selected = false;
    double h = 0;
    timed("known good: calcprop",
          [&] { h = zentropia_calcprop("h", "PT", 3e6, 300.0, e, sizeof e); });
    if (std::strcmp(e, "No errors") != 0) fault("WRONG ANSWER", "calcprop", e);
    if (!(std::fabs(h - 115331.273) <= 1e-8 * 115331.273))
        fault("WRONG ANSWER", "calcprop", "h(3 MPa, 300 K) = " + std::to_string(h));
    char unit[16];
    timed("known good: getunit", [&] { zentropia_getunit("s", unit, sizeof unit, e, sizeof e); });
    if (std::strcmp(unit, "J/kg/K") != 0 || std::strcmp(e, "No errors") != 0)
        fault("WRONG ANSWER", "getunit", std::string(unit) + " / " + e);
    ++stats.good_calls;
}

// ---- Selections ------------------------------------------------------------------------------

// A fluid selection for setfluid: a model, up to a few components and their concentrations, all
// hostile. Selections of the cubic models that succeed, with database fluids and compositions that
// add up, come from random_mixture further on.
struct selection {
    ctext model;
    int ncmp = 1;
    std::vector<ctext> names;
    std::vector<const char*> name_ptrs;
    int names_len = 0;
    reals conc;
};

selection random_selection(reader& r) {
    const unsigned pick = r.byte();
    const int typical = pick < 128 ? 1 : static_cast<int>(pick % 4) + 1;
    selection s{text(r, kind::model), typical, {}, {}, typical, reals(r, typical, true)};
    if (r.byte() < 40) s.ncmp = integer(r);
    // a caller's array holds as many names as its length says: at most a few dozen here
    if (r.byte() < 40) s.names_len = std::min(integer(r), 40);
    const int n = std::max(s.names_len, 0);
    s.names.reserve(static_cast<std::size_t>(n));
    for (int i = 0; i < n; ++i) s.names.push_back(text(r, kind::component));
    for (const auto& t : s.names) s.name_ptrs.push_back(t.c());
    return s;
}

void call_setfluid(reader& r) {
    selection s = random_selection(r);
    text_buffer e(r, 256, true);
    // a refused selection may leave the previous fluid selected
    const bool cubic = names_cubic_model(s.model.c());
    cubic_selected = cubic_selected || cubic;
    timed("setfluid", [&] {
        zentropia_setfluid(s.model.c(), s.ncmp, s.name_ptrs.empty() ? nullptr : s.name_ptrs.data(),
                           s.names_len, s.conc.p(), s.conc.len(), e.p(), e.len());
    });
    if (is_success(e.text())) cubic_selected = cubic;
    e.check("setfluid", "errormsg");
    s.conc.check("setfluid", "in_cnc");
}

// ---- Mixtures of the fluid database ------------------------------------------------------------

// Names the cubic models load: pure fluids by their short and long names, predefined blends, and
// the example fluid file; each with a typical state (K, Pa) near which its interesting states lie.
struct database_fluid {
    std::string_view name;
    double t, p;
};
constexpr database_fluid database_fluids[] = {
    {"CH4", 150.0, 1e6},     {"C2H6", 250.0, 1e6},    {"C3H8", 300.0, 1e6},
    {"nC4", 330.0, 5e5},     {"iC4", 320.0, 5e5},     {"nC5", 380.0, 2e5},
    {"nC6", 400.0, 2e5},     {"nC7", 420.0, 1e5},     {"nC10", 480.0, 1e5},
    {"nC20", 600.0, 1e4},    {"N2", 90.0, 5e5},       {"O2", 100.0, 5e5},
    {"Ar", 100.0, 5e5},      {"CO2", 260.0, 3e6},     {"H2S", 300.0, 2e6},
    {"H2O", 400.0, 1e5},     {"NH3", 300.0, 1e6},     {"H2", 25.0, 2e5},
    {"He", 5.0, 1e5},        {"R32", 280.0, 1e6},     {"R125", 280.0, 1e6},
    {"R134a", 290.0, 6e5},   {"R143a", 280.0, 1e6},   {"R1234yf", 290.0, 6e5},
    {"R152a", 290.0, 5e5},   {"R22", 280.0, 6e5},     {"R23", 250.0, 2e6},
    {"MeOH", 400.0, 1e5},    {"EtOH", 400.0, 1e5},    {"acetone", 380.0, 2e5},
    {"C6H6", 400.0, 2e5},    {"toluene", 420.0, 1e5}, {"cC6", 400.0, 2e5},
    {"SF6", 300.0, 2e6},     {"methane", 150.0, 1e6}, {"carbon dioxide", 260.0, 3e6},
    {"nitrogen", 90.0, 5e5}, {"R410A", 270.0, 8e5},   {"R404A", 260.0, 5e5},
    {"R407C", 270.0, 5e5},   {"R507A", 260.0, 5e5},   {"R513A", 280.0, 4e5},
    {"R454B", 270.0, 8e5},   {"air", 80.0, 2e5},      {"NG-GulfCoast", 200.0, 3e6},
    {"CO2-N2", 250.0, 3e6},  {"Xe", 250.0, 3e6},      {"D2O", 400.0, 1e5},
};

// A selection of a cubic model: a model, 1 to 25 database fluids (blends among them, repeated
// names, now and then a hostile text), concentrations that are valid or not (unnormalised, zero,
// at the threshold below which a component counts as absent, negative, not finite, fewer than the
// components), and component counts that disagree with the names given.
struct mixture_selection {
    std::string model;
    std::vector<ctext> names;
    std::vector<const char*> name_ptrs;
    std::vector<double> conc;
    int ncmp = 1;
    int conc_len = 0;
    double t = 300.0, p = 1e5; // a typical state of the first component
};

mixture_selection random_mixture(reader& r) {
    mixture_selection m;
    const unsigned model = r.byte();
    m.model = model < 115   ? "Varimol"
              : model < 230 ? "liteVarimol"
                            : std::string(token(r, kind::model));
    const unsigned size = r.byte();
    int n = size < 60    ? 1
            : size < 140 ? 2
            : size < 200 ? 3 + static_cast<int>(r.byte() % 4)
            : size < 245 ? 7 + static_cast<int>(r.byte() % 14) // up to 20: liteVarimol refuses > 10
                         : 21 + static_cast<int>(r.byte() % 5); // too many for either
    for (int i = 0; i < n; ++i) {
        if (r.byte() < 8) {
            m.names.push_back(text(r, kind::component));
            continue;
        }
        const auto& f = database_fluids[r.byte() % std::size(database_fluids)];
        if (i == 0) m.t = f.t, m.p = f.p;
        m.names.push_back(ctext{std::string(f.name), false});
    }
    for (const auto& t : m.names) m.name_ptrs.push_back(t.c());
    // concentrations: positive weights, then spoiled in one of several ways
    double sum = 0.0;
    for (int i = 0; i < n; ++i) {
        m.conc.push_back(1.0 + r.byte());
        sum += m.conc.back();
    }
    const unsigned how = r.byte();
    if (how < 150) { // mole fractions that add up to 1
        for (double& c : m.conc) c /= sum;
    } else if (how < 170) { // a sum off by a little or a lot
        for (double& c : m.conc) c /= sum * (how & 1 ? 1.0 + 1e-3 : 3.0);
    } else if (how < 200) { // one component absent or at the threshold of absence
        for (double& c : m.conc) c /= sum;
        m.conc[r.byte() % m.conc.size()] = r.byte() & 1 ? 0.0 : 1e-12;
    } else if (how < 230) { // one hostile value
        for (double& c : m.conc) c /= sum;
        m.conc[r.byte() % m.conc.size()] = real(r);
    } else { // fewer concentrations than components
        for (double& c : m.conc) c /= sum;
        m.conc.resize(r.byte() % (m.conc.size() + 1));
    }
    m.conc_len = static_cast<int>(m.conc.size());
    m.ncmp = r.byte() < 230 ? n : integer(r);
    return m;
}

void call_setfluid_mixture(reader& r) {
    mixture_selection m = random_mixture(r);
    // exactly conc_len values: AddressSanitizer sees a read past them. The errormsg buffer is a
    // caller's ordinary one (the hostile ones are call_setfluid's), so that a selection that
    // succeeds is seen to.
    char e[256 + guard];
    std::memset(e, guard_byte, sizeof e);
    std::strcpy(e, "No errors");
    cubic_selected = true;
    timed("setfluid (mixture)", [&] {
        zentropia_setfluid(m.model.c_str(), m.ncmp,
                           m.name_ptrs.empty() ? nullptr : m.name_ptrs.data(),
                           static_cast<int>(m.name_ptrs.size()), m.conc.data(), m.conc_len, e, 256);
    });
    if (std::memchr(e, '\0', 256) == nullptr || e[0] == '\0' ||
        std::any_of(e + 256, e + sizeof e, [](char c) { return c != guard_byte; }))
        fault("BAD TEXT", "setfluid (mixture)", "errormsg empty, unterminated or overrun");
    if (is_success(e)) ++stats.mixtures;
}

// Input pairs of the cubic models, with and without phase markers.
constexpr std::string_view mixture_inputspecs[] = {
    "PT", "Ph", "Ps", "Pv",     "Pd",     "Pu",     "Pq",     "Tq",     "Th",     "Ts",    "Tv",
    "Td", "Tu", "hs", "vu",     "du",     "uv",     "ud",     "hP",     "TP",     "qT",    "qP",
    "sh", "vT", "dT", "PT liq", "PT vap", "Ph 1ph", "Pq_vap", "Tq_liq", "Td 2ph", "vu 1ph"};

// A state near the selected fluid: a reference state at a pressure and temperature round the
// fluid's typical ones (in SI), whose properties then give the inputs of every other pair, a little
// perturbed, so that the pair's solver starts from a state that exists (or just misses one).
void call_mixture_states(reader& r) {
    char e[256];
    std::strcpy(e, "No errors");
    const auto& f = database_fluids[r.byte() % std::size(database_fluids)];
    const double t = f.t * (0.5 + r.byte() / 128.0),
                 p = f.p * std::pow(10.0, (r.byte() - 128) / 64.0);
    double v[8]{}, x[20]{}, y[20]{}, rest[20]{};
    timed("mixture states: allprops PT", [&] {
        zentropia_allprops("PT", p, t, &v[0], &v[1], &v[2], &v[3], &v[4], &v[5], &v[6], &v[7], x,
                           20, y, 20, &rest[0], &rest[1], &rest[2], &rest[3], &rest[4], &rest[5],
                           &rest[6], &rest[7], &rest[8], &rest[9], &rest[10], &rest[11], &rest[12],
                           &rest[13], &rest[14], e, sizeof e);
    });
    if (e[0] == '\0') fault("BAD TEXT", "allprops", "errormsg left empty");
    // the values by the letter the inputspecs name them: P T v d h s u q
    const std::string_view letters = "PTvdhsuq";
    const int calls = 1 + r.byte() % 6;
    for (int k = 0; k < calls; ++k) {
        const std::string_view pair_text =
            mixture_inputspecs[r.byte() % std::size(mixture_inputspecs)];
        const auto value = [&](char letter) {
            const auto at = letters.find(letter);
            double w = at == std::string_view::npos ? 0.0 : v[at];
            if (letter == 'q') w = r.byte() < 200 ? r.byte() / 250.0 : real(r);
            const unsigned jitter = r.byte();
            if (jitter >= 128) w *= 1.0 + (static_cast<int>(jitter) - 192) / 640.0;
            if (jitter == 255) w = real(r);
            return w;
        };
        const double in1 = value(pair_text[0]), in2 = value(pair_text[1]);
        const ctext inputspec{std::string(pair_text), false};
        text_buffer err(r, 256, true);
        reals ox(r, 20, false), oy(r, 20, false);
        const unsigned which = r.byte() % 6;
        const char* name = which == 0   ? "allprops"
                           : which == 1 ? "calcprop"
                           : which == 2 ? "allpropssat"
                           : which == 3 ? "liquidcmp"
                           : which == 4 ? "vaporcmp"
                                        : "fugacoef";
        double o[32];
        timed(name, [&] {
            const char* sp = inputspec.c();
            switch (which) {
            case 0:
                zentropia_allprops(sp, in1, in2, &o[0], &o[1], &o[2], &o[3], &o[4], &o[5], &o[6],
                                   &o[7], ox.p(), ox.len(), oy.p(), oy.len(), &o[8], &o[9], &o[10],
                                   &o[11], &o[12], &o[13], &o[14], &o[15], &o[16], &o[17], &o[18],
                                   &o[19], &o[20], &o[21], &o[22], err.p(), err.len());
                break;
            case 1:
                (void)zentropia_calcprop(token(r, kind::keyword).data(), sp, in1, in2, err.p(),
                                         err.len());
                break;
            case 2:
                zentropia_allpropssat(sp, in1, in2, &o[0], &o[1], &o[2], &o[3], &o[4], &o[5], &o[6],
                                      &o[7], ox.p(), ox.len(), oy.p(), oy.len(), &o[8], &o[9],
                                      &o[10], &o[11], &o[12], &o[13], &o[14], &o[15], &o[16],
                                      &o[17], &o[18], &o[19], &o[20], &o[21], &o[22], &o[23],
                                      &o[24], &o[25], &o[26], &o[27], &o[28], &o[29], &o[30],
                                      &o[31], &o[0], err.p(), err.len());
                break;
            case 3:
                zentropia_liquidcmp(sp, in1, in2, ox.p(), ox.len(), err.p(), err.len());
                break;
            case 4:
                zentropia_vaporcmp(sp, in1, in2, ox.p(), ox.len(), err.p(), err.len());
                break;
            default:
                zentropia_fugacoef(sp, in1, in2, ox.p(), ox.len(), err.p(), err.len());
            }
        });
        err.check(name, "errormsg");
        check_non_finite_text(name, err);
        if (which < 3) check_inputspec_answer(name, inputspec, err);
        if (err.len() >= 16 && is_success(err.text()) && !err.entered_success())
            ++stats.mixture_states;
        ox.check(name, "x"), oy.check(name, "y");
    }
}

// ---- The procedures --------------------------------------------------------------------------

// A state request: inputspec, input1, input2.
struct state {
    ctext inputspec;
    double input1, input2;
    explicit state(reader& r)
        : inputspec(text(r, kind::inputspec)), input1(real(r)), input2(real(r)) {}
};

template <class Call> void with_errormsg(reader& r, const char* name, Call&& call) {
    text_buffer e(r, 256, true);
    timed(name, [&] { call(e.p(), e.len()); });
    e.check(name, "errormsg");
    check_non_finite_text(name, e);
}

// One call of a state procedure with errormsg, whose success is checked against the inputspec.
// A procedure that may leave the caller's text as it was (keeps_text) answers "No errors" to
// anything when that was the text it was given.
enum class text_rule { writes, may_keep };
template <class Call>
void state_call(reader& r, const char* name, Call&& call, text_rule rule = text_rule::writes) {
    state st(r);
    text_buffer e(r, 256, true);
    timed(name, [&] { call(st, e.p(), e.len()); });
    e.check(name, "errormsg");
    check_non_finite_text(name, e);
    if (rule == text_rule::writes || !e.entered_success())
        check_inputspec_answer(name, st.inputspec, e);
}

using op = void (*)(reader&);

#define ZP_FUZZ_SINGLE(name)                                                                       \
    [](reader& r) {                                                                                \
        state_call(r, #name, [](const state& s, char* e, int n) {                                  \
            (void)zentropia_##name(s.inputspec.c(), s.input1, s.input2, e, n);                     \
        });                                                                                        \
    },
#define ZP_FUZZ_COMPOSITION(name)                                                                  \
    [](reader& r) {                                                                                \
        reals out(r, 20, false);                                                                   \
        state_call(                                                                                \
            r, #name,                                                                              \
            [&](const state& s, char* e, int n) {                                                  \
                zentropia_##name(s.inputspec.c(), s.input1, s.input2, out.p(), out.len(), e, n);   \
            },                                                                                     \
            text_rule::may_keep);                                                                  \
        out.check(#name, "output");                                                                \
    },                                                                                             \
        [](reader& r) {                                                                            \
            reals out(r, 20, false);                                                               \
            state_call(r, #name "_zp", [&](const state& s, char* e, int n) {                       \
                zentropia_##name##_zp(s.inputspec.c(), s.input1, s.input2, out.p(), out.len(), e,  \
                                      n);                                                          \
            });                                                                                    \
            out.check(#name "_zp", "output");                                                      \
        },
#define ZP_FUZZ_CONSTANT(name)                                                                     \
    [](reader& r) {                                                                                \
        with_errormsg(r, #name, [](char* e, int n) { (void)zentropia_##name(e, n); });             \
    },                                                                                             \
        [](reader& r) {                                                                            \
            with_errormsg(r, "zp_" #name,                                                          \
                          [](char* e, int n) { (void)zentropia_zp_##name(e, n); });                \
        },
#define ZP_FUZZ_DISPATCHER(name)                                                                   \
    [](reader& r) {                                                                                \
        scalars o(r);                                                                              \
        reals x(r, 20, true), y(r, 20, true);                                                      \
        state_call(r, #name, [&](const state& s, char* e, int n) {                                 \
            zentropia_##name(s.inputspec.c(), s.input1, s.input2, o.d(), o.d(), o.d(), o.d(),      \
                             o.d(), o.d(), o.d(), o.d(), x.p(), x.len(), y.p(), y.len(), o.d(),    \
                             o.d(), o.d(), o.d(), o.d(), o.d(), o.d(), o.d(), o.d(), o.d(), e, n); \
        });                                                                                        \
        x.check(#name, "usr_x");                                                                   \
        y.check(#name, "usr_y");                                                                   \
    },
#define ZP_FUZZ_ENVELOPE(name)                                                                     \
    [](reader& r) {                                                                                \
        scalars o(r);                                                                              \
        reals t(r, 50, false), p(r, 50, false), x(r, 1000, false), y(r, 1000, false);              \
        with_errormsg(r, #name, [&](char* e, int n) {                                              \
            zentropia_##name(o.i(), t.p(), t.len(), p.p(), p.len(), x.p(), x.len(), y.p(),         \
                             y.len(), e, n);                                                       \
        });                                                                                        \
        t.check(#name, "t"), p.check(#name, "p"), x.check(#name, "x"), y.check(#name, "y");        \
    },
#define ZP_FUZZ_UNIT_DESCRIPTION(name)                                                             \
    [](reader& r) {                                                                                \
        const ctext basis = text(r, kind::basis);                                                  \
        ints n_prop(r, 27, false);                                                                 \
        text_slots prop(r, 108, 4);                                                                \
        reals power(r, 108, false);                                                                \
        text_slots unit(r, 108, 8);                                                                \
        timed(#name, [&] {                                                                         \
            zentropia_##name(basis.c(), n_prop.p(), n_prop.len(), prop.p(), prop.count(),          \
                             prop.width(), power.p(), power.len(), unit.p(), unit.count(),         \
                             unit.width());                                                        \
        });                                                                                        \
        n_prop.check(#name, "n_prop"), prop.check(#name, "prop"), power.check(#name, "power");     \
        unit.check(#name, "unit");                                                                 \
    },
#define ZP_FUZZ_SATURATION_BUNDLE(name, ...)                                                       \
    [](reader& r) {                                                                                \
        scalars o(r);                                                                              \
        const double p = real(r), t = real(r);                                                     \
        with_errormsg(r, #name,                                                                    \
                      [&](char* e, int n) { zp_fuzz_saturation_##name(p, t, o, e, n); });          \
    },

void zp_fuzz_saturation_modelica_p(double p, double, scalars& o, char* e, int n) {
    zentropia_modelica_p(p, o.d(), o.d(), o.d(), o.d(), o.d(), o.d(), o.d(), o.d(), o.d(), o.d(), e,
                         n);
}
void zp_fuzz_saturation_modelica_p_mix(double p, double t, scalars& o, char* e, int n) {
    zentropia_modelica_p_mix(p, t, o.d(), o.d(), o.d(), o.d(), o.d(), o.d(), o.d(), o.d(), o.d(),
                             o.d(), e, n);
}

void units_call(reader& r) {
    const ctext set = text(r, kind::unitset), basis = text(r, kind::basis);
    const ctext symbols = text(r, kind::symbols), units = text(r, kind::units);
    if (r.byte() < 128) {
        with_errormsg(r, "setunits", [&](char* e, int n) {
            zentropia_setunits(set.c(), basis.c(), symbols.c(), units.c(), e, n);
        });
    } else {
        const double mmol = real(r);
        with_errormsg(r, "setunits_mmol", [&](char* e, int n) {
            zentropia_setunits_mmol(set.c(), basis.c(), symbols.c(), units.c(), mmol, e, n);
        });
    }
}

// The procedures, in a fixed order: a saved input means what this table and the token tables
// make of its bytes, so new procedures and words go at the ends of their tables.
std::vector<op> make_procedures() {
    std::vector<op> ops;
    const auto add = [&ops](std::initializer_list<op> some) { ops.insert(ops.end(), some); };
    add({call_setfluid, call_setfluid, units_call, units_call, [](reader&) { known_good_call(); },
         [](reader& r) { timed("isinit", [v = real(r)] { (void)zentropia_isinit(v); }); },
         [](reader& r) { timed("isnotinit", [v = real(r)] { (void)zentropia_isnotinit(v); }); },
         [](reader& r) {
             const ctext name = text(r, kind::model);
             scalars o(r);
             const int len = integer(r);
             // the name is read up to len characters, never beyond its NUL
             timed("zpgetindex", [&] { zentropia_zpgetindex(name.c(), o.i(), len); });
         },
         [](reader& r) {
             const ctext name = text(r, kind::model);
             ints version(r, 4, false);
             timed("zpgetversion",
                   [&] { zentropia_zpgetversion(name.c(), version.p(), version.len()); });
             version.check("zpgetversion", "version");
         },
         [](reader&) { timed("releaseobjects", [] { zentropia_releaseobjects(); }); },
         [](reader& r) {
             text_buffer model(r, 64, false);
             scalars o(r);
             text_slots comp(r, 20, 32);
             reals conc(r, 20, false);
             timed("getfluid", [&] {
                 zentropia_getfluid(model.p(), model.len(), o.i(), comp.p(), comp.count(),
                                    comp.width(), conc.p(), conc.len());
             });
             model.check("getfluid", "model"), comp.check("getfluid", "comp");
             conc.check("getfluid", "conc");
         }});
    add({ZENTROPIA_DISPATCHERS(ZP_FUZZ_DISPATCHER)});
    add({[](reader& r) {
             const ctext out = text(r, kind::keyword);
             state_call(r, "calculate", [&](const state& s, char* e, int n) {
                 (void)zentropia_calculate(s.inputspec.c(), s.input1, s.input2, out.c(), e, n);
             });
         },
         [](reader& r) {
             const ctext key = text(r, kind::keyword);
             with_errormsg(r, "getinfo",
                           [&](char* e, int n) { (void)zentropia_getinfo(key.c(), e, n); });
         },
         [](reader& r) {
             reals mmol(r, 20, false);
             with_errormsg(r, "zp_mmolcomp", [&](char* e, int n) {
                 zentropia_zp_mmolcomp(mmol.p(), mmol.len(), e, n);
             });
             mmol.check("zp_mmolcomp", "mmol");
         },
         [](reader& r) {
             reals cnc(r, 20, true);
             with_errormsg(r, "zp_mmol_cnc", [&](char* e, int n) {
                 (void)zentropia_zp_mmol_cnc(cnc.p(), cnc.len(), e, n);
             });
         },
         [](reader& r) {
             scalars o(r);
             double v = real(r), u = real(r);
             with_errormsg(r, "zflow_tmd_vu", [&](char* e, int n) {
                 zentropia_zflow_tmd_vu(o.d(), o.d(), r.byte() & 1 ? &v : nullptr, o.d(), o.d(),
                                        r.byte() & 1 ? &u : nullptr, o.d(), o.d(), o.d(), o.d(),
                                        o.d(), o.d(), o.d(), e, n);
             });
         },
         [](reader& r) {
             scalars o(r);
             std::array<reals, 13> phase{reals(r, 3, false), reals(r, 3, false), reals(r, 3, false),
                                         reals(r, 3, false), reals(r, 3, false), reals(r, 3, false),
                                         reals(r, 3, false), reals(r, 3, false), reals(r, 3, false),
                                         reals(r, 3, false), reals(r, 3, false), reals(r, 3, false),
                                         reals(r, 3, false)};
             reals x(r, 20, true), y(r, 20, true);
             state_call(
                 r, "zp_allpropsallphases",
                 [&](const state& s, char* e, int n) {
                     auto& a = phase;
                     zentropia_zp_allpropsallphases(
                         s.inputspec.c(), s.input1, s.input2, a[0].p(), a[0].len(), a[1].p(),
                         a[1].len(), a[2].p(), a[2].len(), a[3].p(), a[3].len(), a[4].p(),
                         a[4].len(), a[5].p(), a[5].len(), a[6].p(), a[6].len(), o.d(), x.p(),
                         x.len(), y.p(), y.len(), a[7].p(), a[7].len(), a[8].p(), a[8].len(),
                         a[9].p(), a[9].len(), a[10].p(), a[10].len(), a[11].p(), a[11].len(),
                         a[12].p(), a[12].len(), a[0].p(), a[0].len(), o.d(), o.d(), e, n);
                 },
                 text_rule::may_keep);
             for (const auto& a : phase) a.check("zp_allpropsallphases", "phase values");
             x.check("zp_allpropsallphases", "usr_x"), y.check("zp_allpropsallphases", "usr_y");
         },
         [](reader& r) {
             scalars o(r);
             reals x(r, 20, true), y(r, 20, true);
             state_call(
                 r, "zp_allpropssatext",
                 [&](const state& s, char* e, int n) {
                     zentropia_zp_allpropssatext(
                         s.inputspec.c(), s.input1, s.input2, o.d(), o.d(), o.d(), o.d(), o.d(),
                         o.d(), o.d(), o.d(), x.p(), x.len(), y.p(), y.len(), o.d(), o.d(), o.d(),
                         o.d(), o.d(), o.d(), o.d(), o.d(), o.d(), o.d(), e, n);
                 },
                 text_rule::may_keep);
             x.check("zp_allpropssatext", "usr_x"), y.check("zp_allpropssatext", "usr_y");
         },
         [](reader& r) {
             scalars o(r);
             const double t = real(r), d = real(r);
             with_errormsg(r, "alltransprops_zp", [&](char* e, int n) {
                 zentropia_alltransprops_zp(t, d, o.d(), o.d(), o.d(), o.d(), o.d(), o.d(), e, n);
             });
         },
         [](reader& r) {
             scalars o(r);
             reals lnphi(r, 20, false);
             state_call(r, "capeopenderiv_zp", [&](const state& s, char* e, int n) {
                 zentropia_capeopenderiv_zp(s.inputspec.c(), s.input1, s.input2, o.d(), o.d(),
                                            o.d(), o.d(), lnphi.p(), lnphi.len(), e, n);
             });
             lnphi.check("capeopenderiv_zp", "lnphi");
         },
         [](reader& r) {
             scalars o(r);
             const double k1 = real(r), t = real(r);
             with_errormsg(r, "psat_k1",
                           [&](char* e, int n) { zentropia_psat_k1(k1, t, o.d(), e, n); });
         },
         [](reader& r) {
             const double a = real(r), b = real(r), alfa = real(r), p = real(r), t = real(r);
             reals x(r, 2, true), y(r, 2, true);
             with_errormsg(r, "xy_a_alfa", [&](char* e, int n) {
                 zentropia_xy_a_alfa(a, b, alfa, p, t, x.p(), x.len(), y.p(), y.len(), e, n);
             });
             x.check("xy_a_alfa", "x"), y.check("xy_a_alfa", "y");
         },
         [](reader& r) {
             const double k = real(r), p = real(r), t = real(r);
             reals x(r, 2, true), y(r, 2, true);
             with_errormsg(r, "xy_kij", [&](char* e, int n) {
                 zentropia_xy_kij(k, p, t, x.p(), x.len(), y.p(), y.len(), e, n);
             });
             x.check("xy_kij", "x"), y.check("xy_kij", "y");
         },
         [](reader& r) {
             scalars o(r);
             const double p = real(r), t = real(r), m = real(r);
             reals x(r, 20, true), y(r, 20, true);
             with_errormsg(r, "hsxy_mp", [&](char* e, int n) {
                 zentropia_hsxy_mp(p, t, m, o.d(), o.d(), x.p(), x.len(), y.p(), y.len(), e, n);
             });
             x.check("hsxy_mp", "x"), y.check("hsxy_mp", "y");
         }});
    add({ZENTROPIA_PHASE_ENVELOPES(ZP_FUZZ_ENVELOPE)});
    add({[](reader& r) {
             const ctext a = text(r, kind::table), b = text(r, kind::table),
                         c = text(r, kind::table), d = text(r, kind::table),
                         f = text(r, kind::table);
             const int phase = integer(r);
             with_errormsg(r, "settable", [&](char* e, int n) {
                 zentropia_settable(a.c(), b.c(), c.c(), d.c(), f.c(), phase, e, n);
             });
         },
         [](reader& r) {
             const ctext a = text(r, kind::table), symbols = text(r, kind::inputspec),
                         b = text(r, kind::table), c = text(r, kind::table),
                         d = text(r, kind::table);
             const double v1 = real(r), v2 = real(r), v3 = real(r), v4 = real(r), v5 = real(r);
             with_errormsg(r, "settable_new", [&](char* e, int n) {
                 zentropia_settable_new(a.c(), symbols.c(), v1, v2, v3, v4, v5, b.c(), c.c(), d.c(),
                                        e, n);
             });
         },
         [](reader& r) {
             const ctext a = text(r, kind::table);
             with_errormsg(r, "usetable", [&](char* e, int n) { zentropia_usetable(a.c(), e, n); });
         },
         [](reader& r) {
             std::array<text_buffer, 6> t{text_buffer(r, 64, false), text_buffer(r, 64, false),
                                          text_buffer(r, 64, false), text_buffer(r, 64, false),
                                          text_buffer(r, 64, false), text_buffer(r, 64, false)};
             scalars o(r);
             with_errormsg(r, "alltableinfo", [&](char* e, int n) {
                 zentropia_alltableinfo(t[0].p(), t[0].len(), t[1].p(), t[1].len(), t[2].p(),
                                        t[2].len(), t[3].p(), t[3].len(), t[4].p(), t[4].len(),
                                        t[5].p(), t[5].len(), o.d(), o.d(), o.d(), o.d(), o.d(),
                                        o.i(), e, n);
             });
             for (const auto& b : t) b.check("alltableinfo", "text");
         },
         [](reader& r) {
             const int which = integer(r);
             const ctext model = text(r, kind::model);
             scalars o(r);
             text_slots names(r, 100, 32);
             with_errormsg(r, "getfluidnames", [&](char* e, int n) {
                 zentropia_getfluidnames(which, model.c(), o.i(), names.p(), names.count(),
                                         names.width(), e, n);
             });
             names.check("getfluidnames", "fluidset");
         },
         [](reader& r) {
             const ctext model = text(r, kind::model);
             scalars o(r);
             text_slots names(r, 100, 32);
             with_errormsg(r, "getcompset", [&](char* e, int n) {
                 zentropia_getcompset(model.c(), o.i(), names.p(), names.count(), names.width(), e,
                                      n);
             });
             names.check("getcompset", "compset");
         },
         [](reader& r) {
             with_errormsg(r, "readfluidstable",
                           [](char* e, int n) { zentropia_readfluidstable(e, n); });
         },
         [](reader& r) {
             const ctext s = text(r, kind::keyword);
             text_buffer out(r, 33, false);
             timed("tolower", [&] { zentropia_tolower(s.c(), out.p(), out.len()); });
             out.check("tolower", "lowered");
         }});
    add({ZENTROPIA_COMPOSITIONS(ZP_FUZZ_COMPOSITION)});
    add({ZENTROPIA_FLUID_CONSTANTS(ZP_FUZZ_CONSTANT)});
    add({[](reader& r) {
             scalars o(r);
             const state s(r);
             timed("inputconversion", [&] {
                 zentropia_inputconversion(s.inputspec.c(), s.input1, s.input2, o.d(), o.d());
             });
         },
         [](reader& r) {
             scalars o(r);
             const ctext symbols = text(r, kind::symbols);
             const double v = real(r);
             timed("outputconversion", [&] { zentropia_outputconversion(symbols.c(), v, o.d()); });
         },
         [](reader& r) {
             scalars o(r);
             const ctext symbols = text(r, kind::inputspec), out = text(r, kind::symbols);
             reals cnc(r, 20, true);
             const double v = real(r);
             timed("outputconversion_cnc", [&] {
                 zentropia_outputconversion_cnc(symbols.c(), cnc.p(), cnc.len(), out.c(), v, o.d());
             });
         },
         [](reader& r) {
             const ctext prop = text(r, kind::keyword);
             state_call(r, "calcprop", [&](const state& s, char* e, int n) {
                 (void)zentropia_calcprop(prop.c(), s.inputspec.c(), s.input1, s.input2, e, n);
             });
         },
         [](reader& r) {
             scalars o(r);
             reals x(r, 20, true), y(r, 20, true);
             state_call(r, "allprops", [&](const state& s, char* e, int n) {
                 zentropia_allprops(s.inputspec.c(), s.input1, s.input2, o.d(), o.d(), o.d(), o.d(),
                                    o.d(), o.d(), o.d(), o.d(), x.p(), x.len(), y.p(), y.len(),
                                    o.d(), o.d(), o.d(), o.d(), o.d(), o.d(), o.d(), o.d(), o.d(),
                                    o.d(), o.d(), o.d(), o.d(), o.d(), o.d(), e, n);
             });
             x.check("allprops", "x"), y.check("allprops", "y");
         },
         [](reader& r) {
             scalars o(r);
             reals x(r, 20, true), y(r, 20, true);
             state_call(r, "allpropssat", [&](const state& s, char* e, int n) {
                 zentropia_allpropssat(
                     s.inputspec.c(), s.input1, s.input2, o.d(), o.d(), o.d(), o.d(), o.d(), o.d(),
                     o.d(), o.d(), x.p(), x.len(), y.p(), y.len(), o.d(), o.d(), o.d(), o.d(),
                     o.d(), o.d(), o.d(), o.d(), o.d(), o.d(), o.d(), o.d(), o.d(), o.d(), o.d(),
                     o.d(), o.d(), o.d(), o.d(), o.d(), o.d(), o.d(), o.d(), o.d(), o.d(), e, n);
             });
             x.check("allpropssat", "x"), y.check("allpropssat", "y");
         },
         [](reader& r) {
             scalars o(r);
             reals x(r, 20, true), y(r, 20, true);
             state_call(
                 r, "allpropssatext",
                 [&](const state& s, char* e, int n) {
                     zentropia_allpropssatext(s.inputspec.c(), s.input1, s.input2, o.d(), o.d(),
                                              o.d(), o.d(), o.d(), o.d(), o.d(), o.d(), x.p(),
                                              x.len(), y.p(), y.len(), o.d(), o.d(), o.d(), o.d(),
                                              o.d(), o.d(), o.d(), o.d(), o.d(), o.d(), e, n);
                 },
                 text_rule::may_keep);
             x.check("allpropssatext", "x"), y.check("allpropssatext", "y");
         },
         [](reader& r) {
             scalars o(r);
             state_call(r, "allpropssu2", [&](const state& s, char* e, int n) {
                 zentropia_allpropssu2(s.inputspec.c(), s.input1, s.input2, o.d(), o.d(), o.d(),
                                       o.d(), o.d(), o.d(), o.d(), o.d(), o.d(), e, n);
             });
         },
         [](reader& r) {
             scalars o(r);
             state_call(r, "allpropstarn", [&](const state& s, char* e, int n) {
                 zentropia_allpropstarn(s.inputspec.c(), s.input1, s.input2, o.d(), o.d(), o.d(),
                                        o.d(), o.d(), o.d(), o.d(), o.d(), o.d(), o.d(), o.d(),
                                        o.d(), o.d(), o.d(), o.d(), o.d(), o.d(), o.d(), o.d(), e,
                                        n);
             });
         },
         [](reader& r) {
             scalars o(r);
             state_call(r, "alltransprops", [&](const state& s, char* e, int n) {
                 zentropia_alltransprops(s.inputspec.c(), s.input1, s.input2, o.d(), o.d(), o.d(),
                                         o.d(), o.d(), o.d(), o.d(), e, n);
             });
         },
         [](reader& r) {
             scalars o(r);
             const double t = real(r), d = real(r);
             with_errormsg(r, "alltransprops_old", [&](char* e, int n) {
                 zentropia_alltransprops_old(t, d, o.d(), o.d(), o.d(), o.d(), o.d(), o.d(), e, n);
             });
         },
         [](reader& r) {
             scalars o(r);
             const double v = real(r), u = real(r);
             with_errormsg(r, "zflow_vu", [&](char* e, int n) {
                 zentropia_zflow_vu(o.d(), o.d(), v, o.d(), o.d(), u, o.d(), o.d(), o.d(), o.d(),
                                    o.d(), o.d(), e, n);
             });
         },
         [](reader& r) {
             scalars o(r);
             timed("alloutputconv", [&] {
                 zentropia_alloutputconv(o.d(), o.d(), o.d(), o.d(), o.d(), o.d(), o.d(), o.d(),
                                         o.d(), o.d(), o.d(), o.d(), o.d(), o.d(), o.d(), o.d(),
                                         o.d(), o.d(), o.d(), o.d(), o.d());
             });
         },
         [](reader& r) {
             scalars o(r);
             timed("alloutputconvsu2", [&] {
                 zentropia_alloutputconvsu2(o.d(), o.d(), o.d(), o.d(), o.d(), o.d(), o.d(), o.d(),
                                            o.d());
             });
         },
         [](reader& r) {
             scalars o(r);
             timed("alloutputconvtarn", [&] {
                 zentropia_alloutputconvtarn(o.d(), o.d(), o.d(), o.d(), o.d(), o.d(), o.d(), o.d(),
                                             o.d(), o.d(), o.d(), o.d(), o.d(), o.d(), o.d());
             });
         },
         [](reader& r) {
             scalars o(r);
             reals x(r, 20, true), y(r, 20, true);
             with_errormsg(r, "alloutputconvext", [&](char* e, int n) {
                 zentropia_alloutputconvext(o.d(), o.d(), o.d(), o.d(), o.d(), o.d(), o.d(), x.p(),
                                            x.len(), y.p(), y.len(), o.d(), o.d(), o.d(), o.d(),
                                            o.d(), o.d(), o.d(), o.d(), o.d(), o.d(), e, n);
             });
         }});
    add({ZENTROPIA_SATURATION_BUNDLES(ZP_FUZZ_SATURATION_BUNDLE)});
    add({ZENTROPIA_SINGLE_PROPERTIES(ZP_FUZZ_SINGLE)});
    add({[](reader& r) {
             scalars o(r);
             with_errormsg(r, "allinfo", [&](char* e, int n) {
                 zentropia_allinfo(o.d(), o.d(), o.d(), o.d(), o.d(), e, n);
             });
         },
         [](reader& r) {
             const ctext f = text(r, kind::keyword), symbols = text(r, kind::inputspec);
             const double fv = real(r), fixed = real(r), lo = real(r), hi = real(r);
             const int targt = r.byte() < 200 ? 1 + r.byte() % 2 : integer(r);
             with_errormsg(r, "solve", [&](char* e, int n) {
                 (void)zentropia_solve(f.c(), fv, symbols.c(), targt, fixed, lo, hi, e, n);
             });
         },
         [](reader& r) {
             const ctext prop = text(r, kind::symbols), run = text(r, kind::symbols),
                         calc = text(r, kind::keyword);
             const double pv = real(r), lo = real(r), hi = real(r);
             const int npnts = r.byte() < 200 ? r.byte() % 40 : integer(r);
             reals runval(r, 40, false), calcval(r, 40, false);
             with_errormsg(r, "isoline", [&](char* e, int n) {
                 zentropia_isoline(prop.c(), pv, run.c(), calc.c(), lo, hi, npnts, runval.p(),
                                   runval.len(), calcval.p(), calcval.len(), e, n);
             });
             runval.check("isoline", "runval"), calcval.check("isoline", "calcval");
         },
         [](reader& r) {
             const double t = real(r), p = real(r);
             with_errormsg(r, "setrefstate",
                           [&](char* e, int n) { zentropia_setrefstate(t, p, e, n); });
         },
         [](reader& r) {
             const double t = real(r), p = real(r), v = real(r);
             with_errormsg(r, "setrefstate_nondim",
                           [&](char* e, int n) { zentropia_setrefstate_nondim(t, p, v, e, n); });
         },
         [](reader& r) {
             with_errormsg(r, "updaterefstate",
                           [](char* e, int n) { zentropia_updaterefstate(e, n); });
         },
         [](reader& r) {
             with_errormsg(r, "updaterefstate_nondim",
                           [](char* e, int n) { zentropia_updaterefstate_nondim(e, n); });
         },
         [](reader& r) {
             scalars o(r);
             with_errormsg(r, "getrefstate", [&](char* e, int n) {
                 zentropia_getrefstate(o.d(), o.d(), o.d(), e, n);
             });
         },
         [](reader&) { timed("isrefstateset", [] { (void)zentropia_isrefstateset(); }); },
         [](reader&) { timed("releaserefstate", [] { zentropia_releaserefstate(); }); },
         [](reader& r) {
             const ctext s = text(r, kind::symbols);
             timed("dimnondimconvfact", [&] { (void)zentropia_dimnondimconvfact(s.c()); });
         },
         [](reader& r) {
             const double m = real(r);
             with_errormsg(r, "setunits_phase",
                           [&](char* e, int n) { zentropia_setunits_phase(m, e, n); });
         },
         [](reader& r) {
             with_errormsg(r, "updateunits", [](char* e, int n) { zentropia_updateunits(e, n); });
         },
         [](reader& r) {
             std::array<text_buffer, 4> t{text_buffer(r, 256, false), text_buffer(r, 256, false),
                                          text_buffer(r, 256, false), text_buffer(r, 256, false)};
             timed("getunits", [&] {
                 zentropia_getunits(t[0].p(), t[0].len(), t[1].p(), t[1].len(), t[2].p(),
                                    t[2].len(), t[3].p(), t[3].len());
             });
             for (const auto& b : t) b.check("getunits", "text");
         },
         [](reader& r) {
             const ctext s = text(r, kind::symbols);
             text_buffer unit(r, 16, false);
             with_errormsg(r, "getunit", [&](char* e, int n) {
                 zentropia_getunit(s.c(), unit.p(), unit.len(), e, n);
             });
             unit.check("getunit", "unit");
         },
         [](reader& r) {
             const ctext s = text(r, kind::symbols);
             reals cf(r, 2, false);
             timed("getunitconvfact", [&] { zentropia_getunitconvfact(s.c(), cf.p(), cf.len()); });
             cf.check("getunitconvfact", "cf");
         }});
    add({ZENTROPIA_UNIT_DESCRIPTIONS(ZP_FUZZ_UNIT_DESCRIPTION)});
    add({[](reader& r) {
             const char c = static_cast<char>(r.byte());
             timed("isalfa", [c] { (void)zentropia_isalfa(c); });
             timed("isdigit", [c] { (void)zentropia_isdigit(c); });
             timed("isvalid", [c] { (void)zentropia_isvalid(c); });
         },
         [](reader& r) {
             const ctext s = text(r, kind::units);
             timed("isdigitstr", [&] { (void)zentropia_isdigitstr(s.c()); });
         },
         [](reader& r) {
             const ctext s = text(r, r.byte() & 1 ? kind::units : kind::symbols);
             scalars o(r);
             text_slots array(r, 27, 16);
             with_errormsg(r, "strtoarr", [&](char* e, int n) {
                 zentropia_strtoarr(s.c(), array.p(), array.count(), array.width(), o.i(), e, n);
             });
             array.check("strtoarr", "array");
         },
         [](reader& r) {
             const ctext s = text(r, kind::units);
             text_buffer string(r, 64, false);
             if (string.p() != nullptr && string.len() > 0) {
                 const auto n = std::min(s.s.size(), static_cast<std::size_t>(string.len() - 1));
                 std::memcpy(string.p(), s.s.data(), n);
                 string.p()[n] = '\0';
             }
             scalars o(r);
             text_buffer msg(r, 16, false);
             timed("strtoint", [&] {
                 zentropia_strtoint(string.p(), string.len(), o.i(), msg.p(), msg.len());
             });
             string.check("strtoint", "string"), msg.check("strtoint", "msg");
         }});
    // mixtures of the cubic models: a selection, then states round it
    add({call_setfluid_mixture, call_mixture_states, call_mixture_states});
    return ops;
}

const std::vector<op>& procedures() {
    static const std::vector<op> ops = make_procedures();
    return ops;
}

} // namespace

namespace zp_fuzz {

const statistics& counts() {
    return stats;
}

std::size_t procedure_count() {
    return procedures().size();
}

} // namespace zp_fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    current_data = data;
    current_size = size;
    reader r(data, size);
    const auto& ops = procedures();
    // ZP_FUZZ_TRACE=1: the offset at which each call's bytes begin, for a minimiser that drops
    // whole calls from a saved input
    static const bool trace = std::getenv("ZP_FUZZ_TRACE") != nullptr;
    // at most a few hundred calls per input, so that one input stays short
    for (int step = 0; step < 400 && !r.empty(); ++step) {
        if (trace) std::fprintf(stderr, "ZENTROPIA-FUZZ OP %zu\n", size - r.remaining());
        ops[r.below(static_cast<unsigned>(ops.size()))](r);
    }
    // whatever came before, the library answers a good question rightly
    known_good_call();
    ++stats.inputs;
    zp_fuzz::record(stats);
    current_data = nullptr;
    return 0;
}

namespace zp_fuzz {

namespace {
void write_counts() {
    const char* name = std::getenv("ZP_FUZZ_STATS");
    if (name == nullptr || *name == '\0') return;
    if (std::FILE* f = std::fopen(name, "w")) {
        const statistics& s = counts();
        std::fprintf(f,
                     "inputs %" PRIu64 "\ncalls %" PRIu64 "\ngood_calls %" PRIu64 "\nhangs %" PRIu64
                     "\nmixtures %" PRIu64 "\nmixture_states %" PRIu64 "\nslowest_ms %.3f %s\n",
                     s.inputs, s.calls, s.good_calls, s.hangs, s.mixtures, s.mixture_states,
                     s.slowest_ms, s.slowest[0] ? s.slowest : "-");
        std::fclose(f);
    }
}
} // namespace

void record(const statistics&) {
    static bool registered = false;
    static auto last = std::chrono::steady_clock::now();
    if (!registered) {
        registered = true;
        std::atexit(write_counts);
    }
    const auto now = std::chrono::steady_clock::now();
    if (now - last >= std::chrono::seconds(1)) {
        last = now;
        write_counts();
    }
}

} // namespace zp_fuzz
