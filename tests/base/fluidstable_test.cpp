// The fluid name table: the generated file beside the library, and the translation of the
// caller's component names.
#include "base/fluids_table_file.hpp"
#include "base/fluidstable.hpp"

#include <gtest/gtest.h>

using zp_models::model_id;

namespace {

// The generated table with the RefProp column filled with the short names and a TPSI column in
// which water is missing: every name the library ships, with back-end names to translate to.
std::string shipped_table_with_backend_names() {
    std::ifstream in(std::string(ZP_FLUIDS_DIR) + "FluidsTable.txt");
    const auto path = testing::TempDir() + "shipped_with_names.txt";
    std::ofstream out(path);
    std::string line;
    std::getline(in, line);
    out << line << '\n';
    while (std::getline(in, line)) {
        const auto short_name = line.substr(32, 32);
        line.replace(6 * 32, 32, short_name);
        std::string tpsi = line.starts_with("water ") ? "-" : "TP_" + short_name;
        tpsi.resize(32, ' ');
        line.replace(3 * 32, 32, tpsi);
        out << line << '\n';
    }
    return path;
}

void load(const std::string& path) {
    std::string e;
    fluidstable::readfluidstable_file(path, e);
    ASSERT_EQ(e, "No errors") << path;
}

std::string translate(model_id model, const std::vector<std::string>& names,
                      std::vector<std::string>& lib) {
    std::string e;
    lib.assign(names.size(), "unset");
    fluidstable::zp_to_libname(model, static_cast<int>(names.size()), names, lib, e);
    return e;
}

} // namespace

TEST(FluidsTable, TheGeneratedTableStandsBesideTheLibrary) {
    std::string e;
    fluidstable::readfluidstable(e);
    ASSERT_EQ(e, "No errors");
    // 223 fluids, then the 8 predefined mixtures
    EXPECT_EQ(fluidstable::nfluids(), 231);
    std::string water;
    for (int c = 0; c < 10; ++c) water += std::string(fluidstable::cell(0, c)) + "|";
    EXPECT_EQ(water, "water|H2O|7732-18-5|-|H2O|-|-|-|-||");
    EXPECT_EQ(fluidstable::cell(230, 0), "NG-GulfCoast");
    EXPECT_EQ(fluidstable::cell(231, 0), "");
}

TEST(FluidsTable, CallersNamesInAnyFormTranslate) {
    load(shipped_table_with_backend_names());
    using names = std::vector<std::string>;
    const std::string none = "Component(s), ";
    struct {
        model_id model;
        names in, lib;
        std::string errormsg;
    } const cases[] = {
        // long name, short name and CAS number of one fluid, in any case
        {model_id::refprop, {"water", "WATER", "h2o", "7732-18-5"}, names(4, "H2O"), "No errors"},
        // a long name of more than 32 characters finds its (cut) table entry; what follows the
        // 32nd character does not matter
        {model_id::refprop,
         {"1,1,2-trichloro-1,2,2-trifluoroethane", "carbon dioxide"},
         {"R113", "CO2"},
         "No errors"},
        {model_id::refprop, {"1,1,2-trichloro-1,2,2-trifluoroeXXXX"}, {"R113"}, "No errors"},
        {model_id::tpsi, {"nitrogen", "water"}, {"TP_N2", "-"}, none + "water not found..."},
        // the Varimol names of the shipped table: short names and predefined mixtures; NF3 has no
        // cubic-EOS data
        {model_id::varimol,
         {"Methane", "r410a", "NF3"},
         {"CH4", "R410A", "-"},
         none + "NF3 not found..."},
        {model_id::refprop,
         {"unobtainium", "nitrogen", "Phlogiston "},
         {"unset", "N2", "unset"},
         none + "unobtainium, Phlogiston not found..."},
        {model_id::refprop, {""}, {"unset"}, none + "not found..."},
        {model_id::refprop, {"-"}, {"unset"}, none + "- not found..."},
        // back-ends without a column of their own take the caller's names
        {model_id::if97, {"Steam"}, {"Steam"}, "No errors"},
        {model_id::mesheq, {"unobtainium"}, {"unobtainium"}, "No errors"},
    };
    for (const auto& c : cases) {
        std::vector<std::string> lib;
        EXPECT_EQ(translate(c.model, c.in, lib), c.errormsg) << c.in[0];
        EXPECT_EQ(lib, c.lib) << c.in[0];
    }
}

TEST(FluidsTable, SearchOrderIsColumnByColumn) {
    // "ab" is the short name of the first fluid and the long name of the second: the long-name
    // column is searched first
    load(write_fluids_table(
        "order.txt", {"first ab 1-1-1 - - - RP_first - -", "ab second 2-2-2 - - - RP_second - -"}));
    std::vector<std::string> lib;
    EXPECT_EQ(translate(model_id::refprop, {"AB"}, lib), "No errors");
    EXPECT_EQ(lib[0], "RP_second");
}

TEST(FluidsTable, AtMostOneThousandFluidsAreRead) {
    std::vector<std::string> rows;
    for (int i = 0; i < 1005; ++i) {
        const auto n = std::to_string(i);
        rows.push_back("fluid_" + n + " f" + n + " " + n + " - - - RP" + n + " - -");
    }
    load(write_fluids_table("big.txt", rows));
    EXPECT_EQ(fluidstable::nfluids(), 1000);
    std::vector<std::string> lib;
    EXPECT_EQ(translate(model_id::refprop, {"fluid_999"}, lib), "No errors");
    EXPECT_EQ(lib[0], "RP999");
    EXPECT_EQ(translate(model_id::refprop, {"fluid_1000"}, lib),
              "Component(s), fluid_1000 not found...");
}

TEST(FluidsTable, MissingOrEmptyFileAndShortLines) {
    const std::string not_found = "Error in Zentropia: file FluidsTable.txt not found or empty";
    std::string e;
    fluidstable::readfluidstable_file(testing::TempDir() + "no_such_table.txt", e);
    EXPECT_EQ(e, not_found);
    std::ofstream(testing::TempDir() + "empty.txt").close();
    fluidstable::readfluidstable_file(testing::TempDir() + "empty.txt", e);
    EXPECT_EQ(e, not_found);
    // a header alone is a table without fluids
    load(write_fluids_table("header_only.txt", {}));
    EXPECT_EQ(fluidstable::nfluids(), 0);
    // short lines, blank lines and Windows line ends
    std::ofstream(testing::TempDir() + "ragged.txt")
        << "header\r\nwater" << std::string(27, ' ') << "H2O\r\n\r\nair\n";
    load(testing::TempDir() + "ragged.txt");
    EXPECT_EQ(fluidstable::nfluids(), 2);
    EXPECT_EQ(fluidstable::cell(0, 1), "H2O");
    EXPECT_EQ(fluidstable::cell(0, 6), "");
    EXPECT_EQ(fluidstable::cell(1, 0), "air");
}

TEST(FluidsTable, LowerCaseCutTo32) {
    EXPECT_EQ(fluidstable::tolower("R1233ZD(E)  "), "r1233zd(e)");
    EXPECT_EQ(fluidstable::tolower(std::string(40, 'A')), std::string(32, 'a'));
    EXPECT_EQ(fluidstable::tolower("ÄBC"), "Äbc"); // ASCII letters only
}

TEST(FluidsTable, FluidNamesOfTheTableAndOfABackEnd) {
    load(shipped_table_with_backend_names());
    const std::string z = "Error in Zentropia: ";
    struct {
        int kind;
        const char* model;
        int count;
        const char* first;
        std::string errormsg;
    } const cases[] = {
        {fluidstable::long_name, "", 231, "water", "No errors"},
        {fluidstable::short_name, " ", 231, "H2O", "No errors"},
        {fluidstable::cas_number, "", 231, "7732-18-5", "No errors"},
        {fluidstable::long_name, "refprop", 231, "water", "No errors"},
        {fluidstable::long_name, "TPSI", 230, "heavy water", "No errors"}, // water lacks TPSI
        {fluidstable::long_name, "Kelvora", 0, "", "No errors"},
        {fluidstable::long_name, "IF97", 0, "", z + "the fluid table lists no fluids for IF97"},
        {fluidstable::long_name, "nonsense", 0, "", z + "invalid model name nonsense"},
        {3, "", 0, "",
         z + "fluid name kind 3 is not 0 (long name), 1 (short name) or 2 (CAS number)"},
    };
    for (const auto& c : cases) {
        int n = -1;
        std::vector<std::string> names{"stale"};
        std::string e;
        fluidstable::getfluidnames(c.kind, c.model, n, names, e);
        EXPECT_EQ(e, c.errormsg) << c.model << ' ' << c.kind;
        EXPECT_EQ(n, c.count) << c.model << ' ' << c.kind;
        ASSERT_EQ(names.size(), static_cast<std::size_t>(c.count));
        EXPECT_EQ(names.empty() ? "" : names[0], c.first);
    }
}

TEST(FluidsTable, ComponentSetsOfTheBackEnds) {
    struct {
        const char* model;
        std::vector<std::string> names;
        std::string errormsg;
    } const cases[] = {
        {"if97", {"H2O"}, "No errors"},
        {"RefProp", {}, "Error in RefProp: back-end library not installed."},
        {"spcp-saft", {}, "Error in PCP-SAFT: back-end library not installed."},
        {"NH3-H2O", {}, "Error in Zentropia: no component list available for NH3-H2O"},
        {"xyz", {}, "Error in Zentropia: invalid model name xyz"},
    };
    for (const auto& c : cases) {
        int n = -1;
        std::vector<std::string> names{"stale"};
        std::string e;
        fluidstable::getcompset(c.model, n, names, e);
        EXPECT_EQ(e, c.errormsg) << c.model;
        EXPECT_EQ(names, c.names) << c.model;
        EXPECT_EQ(n, static_cast<int>(c.names.size())) << c.model;
    }
}
