// Which adapter answers each dispatcher for each model a caller can select, and the dispatchers'
// own failure texts. Back-ends that are not shipped answer "Error in <model>: back-end library
// not installed.", which names the adapter that was reached.
#include "base/zentropia_base.hpp"
#include "if97/if97.hpp"
#include "litevarimol/litevarimol.hpp"
#include "varimol/varimol.hpp"

#include <gtest/gtest.h>

#include <map>

namespace zb = zentropia_base;
using zp_common::composition;

namespace {

constexpr const char* untouched = "untouched";

// Outputs the dispatchers write to.
double p = 1, t = 20, v = 0.001, d = 1000, h = 0, s = 0, u = 100, q = 0, cv = 0, a = 0, b = 0;
composition x{}, y{};
zb::phase_values pv{};
std::array<double, 2> x2{}, y2{};
std::array<double, 4> ts{}, ps{};
std::array<composition, 4> xs{}, ys{};
int n = 0;

// One column per dispatcher, in the order of the answer strings below.
using dispatcher = void (*)(std::string&);
const dispatcher dispatchers[] = {
    [](std::string& e) {
        zb::allthermophys("PT", 1, 20, p, t, v, d, h, s, u, q, x, y, cv, a, a, a, a, a, a, a, a, b,
                          e);
    },
    [](std::string& e) {
        zb::allthermophyssu2("PT", 1, 20, p, t, v, d, h, s, u, q, x, y, cv, a, a, a, a, a, a, a, a,
                             b, e);
    },
    [](std::string& e) { zb::calculate("PT", 1, 20, "h", e); },
    [](std::string& e) { zb::getinfo("T_crit", e); },
    [](std::string& e) { zb::zflow_tmd_vu(p, t, v, h, s, u, cv, a, a, a, a, a, a, e); },
    [](std::string& e) {
        zb::zp_allpropsallphases("PT", 1, 20, pv, pv, pv, pv, pv, pv, pv, q, x, y, pv, pv, pv, pv,
                                 pv, pv, pv, a, b, e);
    },
    [](std::string& e) {
        zb::zp_allpropssatext("PT", 1, 20, p, t, v, d, h, s, u, q, x, y, a, a, a, a, a, b, b, b, b,
                              b, e);
    },
    [](std::string& e) { zb::alltransprops_zp(20, 1000, a, a, a, b, b, b, e); },
    [](std::string& e) { zb::capeopenderiv_zp("PT", 1, 20, v, h, s, a, x, e); },
    [](std::string& e) { zb::psat_k1(0.1, 20, p, e); },
    [](std::string& e) { zb::xy_a_alfa(1, 1, 0.3, 1, 20, x2, y2, e); },
    [](std::string& e) { zb::xy_kij(0.1, 1, 20, x2, y2, e); },
    [](std::string& e) { zb::hsxy_mp(1, 20, 1, a, b, x, y, e); },
    [](std::string& e) { zb::zp_saturationline(n, ts, ps, xs, ys, e); },
    [](std::string& e) { zb::liquidcmp_zp("PT", 1, 20, x, e); },
    [](std::string& e) { zb::fugacoef_zp("PT", 1, 20, x, e); },
};

// Expected answers, one letter per dispatcher in column order:
//   R  the adapter of the model answers ("Error in <adapter>: back-end library not installed.")
//   .  not checked here (IF97, Varimol and liteVarimol reach their real back-ends)
//   -  errormsg is left as it was
//   U  "model name unknown"     I  "invalid model name"      A  AllTransProps not available
//   C  CapeOpenDeriv_ZP text    P  Psat_k1 text              X  xy_A_alfa text
//   K  xy_kij text              H  hsxy_mp text              E  phase envelope text
//   L  liquid composition, F  fugacity coefficients not available for the model
struct row {
    const char* model;   // as the caller writes it; null: before any selection
    const char* adapter; // the adapter that answers R
    const char* name;    // the model's canonical name as it appears in texts (modelname)
    const char* alias;   // the dispatch key
    const char* answers;
};
// clang-format off
const row rows[] = {
    //  model         adapter        name           alias          all su2 calc info zflow phases satext trans cape psat xya kij hsxy env liq fug
    {nullptr,       "",            "",            "",            "UUIUUUUUCPXKH-UU"},
    {"TPSI",        "TPSI",        "TPSI",        "TPSI",        "RRRRR--ACPXKHELF"},
    {"litevarimol", "liteVarimol", "liteVarimol", "liteVarimol", ".....--AC.XKHE.F"},
    {"VARIMOL",     "Varimol",     "Varimol",     "Varimol",     ".....--AC..KH..."},
    {"if97",        "IF97",        "IF97",        "IF97",        ".....--ACPXKHELF"},
    {"Aerolt",      "Aerolt",      "Aerolt",      "Aerolt",      "RRRRR--ACPXKHERF"},
    {"refprop",     "RefProp",     "RefProp",     "RefProp",     "RRRRR--RCPXKHERR"},
    {"Kelvora",     "Kelvora",     "Kelvora",     "Kelvora",     "RRRRR--ACPXKHELF"},
    {"pcp-saft",    "PCP-SAFT",    "PCP-SAFT",    "PCP-SAFT",    "RRRRRRRARPXRRRRR"},
    {"sPCP-SAFT",   "PCP-SAFT",    "sPCP-SAFT",   "sPCP-SAFT",   "RRRRRRRARPXRRRRR"},
    {"critova",     "Critova",     "Critova",     "Critova",     "RRRRR--ACPXKHELF"},
    {"nh3-h2o",     "",            "NH3-H2O",     "NH3-H2O",     "UUIUU--UCPXKHEUU"},
    {"LIBR-H2O",    "",            "LiBr-H2O",    "LiBr-H2O",    "UUIUU--UCPXKHELF"},
    {"mesheq",      "Mesheq",      "Mesheq",      "Mesheq",      "RRRRR--ACPXKHELF"},
    {"Msh_refprop", "Mesheq",      "Msh_RefProp", "Mesheq",      "RRRRR--ACPXKHELF"},
};
// clang-format on

std::string expected(const row& r, char code) {
    const std::string z = "Error in Zentropia: ", to = std::string(" not available for ") + r.alias;
    const std::map<char, std::string> texts{
        {'R', std::string("Error in ") + r.adapter + ": back-end library not installed."},
        {'-', untouched},
        {'U', z + "model name unknown"},
        {'I', z + "invalid model name"},
        {'A', z + "AllTransProps method not available for this library..."},
        {'C', z + "CapeOpenDeriv_ZP not available for " + r.name + " ..."},
        {'P', z + "Psat_k1 not available for specified model"},
        {'X', z + "xy_A_alfa not available for specified model"},
        {'K', z + "xy_kij not available for specified model"},
        {'H', z + "hsxy_mp not available for specified model"},
        {'E', z + "phase envelope method for " + r.alias + "not available."},
        {'L', z + "liquid composition" + to},
        {'F', z + "fugacity coefficients" + to}};
    return texts.at(code);
}

std::string select(const std::vector<std::string>& names, const std::vector<double>& conc,
                   const char* model = "IF97") {
    std::string e;
    zb::setfluid(model, static_cast<int>(names.size()), names, conc, e);
    return e;
}

} // namespace

TEST(DispatchRouting, EveryDispatcherForEveryModel) {
    for (const auto& r : rows) {
        if (r.model != nullptr) select({"water"}, {1.0}, r.model);
        const char* model = r.model != nullptr ? r.model : "(no selection)";
        ASSERT_EQ(zb::selection().modelname, r.name) << model;
        ASSERT_EQ(zb::selection().modelalias, r.alias) << model;
        if (r.model == nullptr) { // the dispatchers' results without a model
            std::string e, name = "old";
            EXPECT_EQ(zb::getinfo("T_crit", e), -8888.8);
            EXPECT_EQ(zb::calculate("PT", 1, 20, "h", e), 0.0);
            int ncomp = 7;
            std::array<std::string, 20> comp;
            zb::getfluid(name, ncomp, comp, x);
            EXPECT_EQ(name, "");
            EXPECT_EQ(ncomp, 7);
        }
        for (std::size_t i = 0; i < std::size(dispatchers); ++i) {
            if (r.answers[i] == '.') continue;
            std::string e = untouched;
            dispatchers[i](e);
            EXPECT_EQ(e, expected(r, r.answers[i])) << "model " << model << ", column " << i;
        }
    }
}

// Numeric results of a back-end that is not there are the not-computed value; composition
// outputs of the caller stay in place.
TEST(DispatchRouting, MissingBackEndsLeaveTheSentinel) {
    std::string e;
    select({"water"}, {1.0}, "RefProp");
    EXPECT_EQ(zb::calculate("PT", 1.0, 20.0, "h", e), -8888.8);
    EXPECT_EQ(zb::zp_pcrit(e), -8888.8);
    double p = 5, sigma = 3, a = 0;
    composition x{}, y{};
    x[0] = 0.25;
    zb::allthermophys("PT", 1, 20, p, a, a, a, a, a, a, a, x, y, a, a, a, a, a, a, a, a, a, sigma,
                      e);
    EXPECT_EQ(e, "Error in RefProp: back-end library not installed.");
    EXPECT_EQ(p, 5);
    EXPECT_TRUE(zb::isinit(sigma));
    EXPECT_EQ(x[0], 0.25); // the caller's composition passed through the work arrays unchanged
}

TEST(DispatchRouting, VersionsOfEveryModelName) {
    const std::map<std::string, int> expected_fill{
        {"Aerolt", -9},    {"Mesheq", -9},         {"PCP-SAFT", -9}, {"RefProp", -9},
        {"Critova", -9},   {"TPSI", -9},           {"Kelvora", -9},  {"LiBr-H2O", -9},
        {"sPCP-SAFT", -8}, {"NH3-H2O", -8},        {"refprop", -8},  {"Zentropia", -8},
        {"", -8},          {"IF97 but longer", -8}};
    std::array<int, 4> version{1, 2, 3, 4}, direct{};
    for (const auto& [name, fill] : expected_fill) {
        zb::zpgetversion(name, version);
        EXPECT_EQ(version, (std::array<int, 4>{fill, fill, fill, fill})) << name;
    }
    // the back-ends that are shipped report their own
    if97::getversion(direct);
    zb::zpgetversion("IF97", version);
    EXPECT_EQ(version, direct);
    EXPECT_NE(version, (std::array<int, 4>{-9, -9, -9, -9}));
    varimol::vm3_getversion(direct);
    zb::zpgetversion("Varimol", version);
    EXPECT_EQ(version, direct);
    litevarimol::lvm_getversion(direct);
    zb::zpgetversion("liteVarimol", version);
    EXPECT_EQ(version, direct);
}

TEST(DispatchRouting, IndexOfModelNames) {
    struct {
        const char* name;
        int length, index;
    } const cases[] = {
        {"Zentropia", 9, 0}, {"zentropia", 9, -1}, {"IF97", 4, 3},     {"IF97    ", 8, 3},
        {"IF97xyz", 4, 3},   {"IF97xyz", 7, -1},   {"Kelvora", 7, 11}, {"sPCP-SAFT", 9, -1},
        {"IF97", 0, -1},     {"IF97", -3, -1},     {"IF97", 400, 3},   {" IF97", 5, -1},
        {"", 0, -1},
    };
    for (const auto& c : cases) {
        int index = 99;
        zb::zpgetindex(c.name, index, c.length);
        EXPECT_EQ(index, c.index) << '"' << c.name << "\" length " << c.length;
    }
}

// Look-up table operations go to the Mesheq back-end whatever is selected.
TEST(DispatchRouting, TableOperationsReachMesheq) {
    const std::string expected = "Error in Mesheq: back-end library not installed.";
    std::string e, s;
    zb::settable("t1", "bicubic", "linear", "mesh", "tree", 1, e);
    EXPECT_EQ(e, expected);
    e.clear();
    zb::settable_new("t1", "PT", 1, 10, 20, 200, 0.5, "bicubic", "linear", "tree", e);
    EXPECT_EQ(e, expected);
    e.clear();
    zb::usetable("t1", e);
    EXPECT_EQ(e, expected);
    double x0 = 1;
    int nzones = 6;
    e.clear();
    zb::alltableinfo(s, s, s, s, s, s, x0, x0, x0, x0, x0, nzones, e);
    EXPECT_EQ(e, expected);
    EXPECT_EQ(nzones, 6);
}

TEST(DispatchRouting, ReleaseKeepsTheSelection) {
    select({"ammonia", "water"}, {0.4, 0.6}, "NH3-H2O");
    zb::releaseobjects();
    EXPECT_EQ(zb::selection().modelname, "NH3-H2O");
    EXPECT_EQ(zb::selection().usr_ncmp, 2);
}

// Water given to IF97 with a second component of zero concentration: the back-end sees water
// alone, the caller's second position receives 0.
TEST(DispatchRouting, If97WithAZeroConcentrationComponent) {
    ASSERT_EQ(select({"water", "ethanol"}, {1.0, 0.0}), "Same fluid");
    EXPECT_EQ(zb::selection().ncmps, 1);
    double sigma = 0;
    composition x{}, y{};
    x.fill(7.0);
    std::string e;
    zb::allthermophys("Pq", 1.0, 0.25, p, t, v, d, h, s, u, q, x, y, cv, a, a, a, a, a, a, a, a,
                      sigma, e);
    ASSERT_EQ(e, "No errors");
    EXPECT_DOUBLE_EQ(x[0], 0.75);
    EXPECT_DOUBLE_EQ(y[0], 0.25);
    EXPECT_EQ(x[1] + y[1], 0.0);
    EXPECT_EQ(x[2], 7.0);
    EXPECT_TRUE(zb::isinit(sigma));
    EXPECT_EQ(zb::zp_mmol_cnc(x, e), 0.018015257);
}
