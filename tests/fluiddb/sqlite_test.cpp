// The fluid database reader against the database the build generates, the plain-file fallback and
// the scrambling.
#include "fluiddb/sqlite.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

namespace {

const std::string fluids_dir = ZP_FLUIDS_DIR;
const std::string examples_dir = std::string(ZP_DATA_DIR) + "/fluids/examples/";

// The connection is opened once per process: open it on the shipped database before any test.
struct open_shipped_database : testing::Environment {
    void SetUp() override { sqlite::getfluidnames(fluids_dir, "", {}); }
};
[[maybe_unused]] const auto* const environment =
    testing::AddGlobalTestEnvironment(new open_shipped_database);

std::vector<std::string> fluid(const std::string& name, const std::string& dir = fluids_dir) {
    std::vector<std::string> lines(400);
    lines.resize(static_cast<std::size_t>(sqlite::getfluid(dir, name, lines)));
    return lines;
}

std::vector<std::string> names(const std::string& library) {
    std::vector<std::string> out(1000);
    out.resize(static_cast<std::size_t>(sqlite::getfluidnames(fluids_dir, library, out)));
    return out;
}

bool contains(const std::vector<std::string>& v, const std::string& s) {
    return std::find(v.begin(), v.end(), s) != v.end();
}

// a column of components.csv for the fluid with short name `short_name` (of a fluid whose long
// name has no comma)
double csv_value(const std::string& short_name, int column) {
    std::ifstream in(std::string(ZP_DATA_DIR) + "/fluids/components.csv");
    for (std::string line; std::getline(in, line);) {
        std::vector<std::string> cells;
        std::stringstream row(line);
        for (std::string cell; std::getline(row, cell, ',');) cells.push_back(cell);
        if (cells.size() > 1 && cells[1] == short_name) return std::stod(cells.at(column));
    }
    return -1;
}

} // namespace

TEST(FluidDatabase, ScramblingRoundTripsAsciiAndNeverMakesQuotesBlanksOrNul) {
    // every character code 1..127 at every position of the key
    for (int offset = 0; offset < 16; ++offset) {
        std::string text(offset, 'a');
        for (int c = 1; c < 128; ++c) text += static_cast<char>(c);
        text += 'z'; // keeps a blank (32) inside the text, not in its trailing padding
        std::string scrambled = text;
        sqlite::encrypt(scrambled, sqlite::key);
        EXPECT_EQ(scrambled.find_first_of(std::string("' \0", 3)), std::string::npos) << offset;
        sqlite::decrypt(scrambled, sqlite::key);
        EXPECT_EQ(scrambled, text) << offset;
    }
    // bytes above 127 stay single non-zero bytes that are neither an apostrophe nor a blank
    for (int c = 128; c < 256; ++c) {
        std::string text(16, static_cast<char>(c));
        sqlite::encrypt(text, sqlite::key);
        EXPECT_EQ(text.find_first_of(std::string("' \0", 3)), std::string::npos) << c;
    }
    // trailing blanks are padding and stay as they are
    std::string padded = "CH4   ";
    sqlite::encrypt(padded, sqlite::key);
    EXPECT_EQ(padded.substr(3), "   ");
    EXPECT_NE(padded.substr(0, 3), "CH4");
}

TEST(FluidDatabase, PureFluidTextsHoldTheComponentData) {
    for (const std::string name : {"CH4", "H2O", "C3H8", "nC6"}) {
        const auto lines = fluid(name + ".vmx");
        ASSERT_EQ(lines.size(), 120u) << name;
        EXPECT_EQ(lines[0], "1 1");
        EXPECT_EQ(lines[1], name);
        EXPECT_EQ(std::stod(lines[5]), 1.0);
        // Tc, Pc, acentric factor and molar mass, as components.csv has them
        for (int row = 0; row < 2; ++row)
            EXPECT_EQ(std::stod(lines[6 + row]), csv_value(name, 5 + row)) << name;
        EXPECT_EQ(std::stod(lines[8]), csv_value(name, 9)) << name;
        EXPECT_EQ(std::stod(lines[9]), csv_value(name, 4)) << name;
        // the binary block: 100 lines of 20 values
        for (std::size_t i = 20; i < 120; ++i) {
            std::istringstream values(lines[i]);
            EXPECT_EQ(std::distance(std::istream_iterator<double>(values), {}), 20) << i;
        }
    }
}

TEST(FluidDatabase, PredefinedMixturesResolveIntoTheirPureFluids) {
    struct {
        const char* mixture;
        std::vector<const char*> components;
        std::vector<double> mole_fractions; // published, to the digits given
        double tolerance;
    } const cases[] = {
        // R410A, 50/50 mass %: 0.698/0.302 mole
        {"R410A", {"R32", "R125"}, {0.698, 0.302}, 5e-4},
        {"air", {"N2", "Ar", "O2"}, {0.7812, 0.0092, 0.2096}, 1e-12},
        {"NG-GulfCoast", {"CH4", "N2"}, {0.965222, 0.002595}, 1e-12},
    };
    for (const auto& c : cases) {
        const auto mixture = fluid(std::string(c.mixture) + ".vmx");
        const int n = std::stoi(mixture.at(0).substr(2));
        ASSERT_EQ(mixture.size(), 104u + 16u * static_cast<unsigned>(n)) << c.mixture;
        for (std::size_t i = 0; i < c.components.size(); ++i) {
            const auto pure = fluid(std::string(c.components[i]) + ".vmx");
            ASSERT_EQ(pure.size(), 120u) << c.components[i];
            EXPECT_EQ(mixture[4 + 16 * i], pure[4]) << c.mixture << ' ' << i; // the same id
            EXPECT_NEAR(std::stod(mixture[5 + 16 * i]), c.mole_fractions[i], c.tolerance);
        }
    }
    // the kij of methane-nitrogen (pr_kij.csv) stands at (1, 2) and (2, 1) of natural gas
    const auto gas = fluid("NG-GulfCoast.vmx");
    EXPECT_EQ(gas[164].substr(0, 11), "0.0 0.0289 ");
    EXPECT_EQ(gas[165].substr(0, 11), "0.0289 0.0 ");
}

TEST(FluidDatabase, TransportTextsAndBinaryPairs) {
    const auto methane = fluid("CH4.trn");
    ASSERT_GE(methane.size(), 18u);
    EXPECT_EQ(methane[0], "CH4");
    EXPECT_EQ(std::stod(methane[1]), csv_value("CH4", 5));
    EXPECT_EQ(methane.size(), 18u + 2u * std::stoul(methane[16]));
    EXPECT_EQ(fluid("binaries.vmb").size(), 170u);
}

TEST(FluidDatabase, FluidNamesPerLibrary) {
    const auto all = names("");
    EXPECT_EQ(all.size(), 600u);
    const auto varimol = names("Varimol");
    EXPECT_EQ(varimol.size(), 193u);
    for (const char* n : {"CH4", "R1234yf", "R410A", "air", "NG-GulfCoast"})
        EXPECT_TRUE(contains(varimol, n)) << n;
    EXPECT_FALSE(contains(varimol, "binaries.vmb"));
    EXPECT_EQ(names("liteVarimol").size(), 193u);
    EXPECT_EQ(names("Transport   ").size(), 214u);
    EXPECT_EQ(names("x' OR '1'='1").size(), 0u);
    std::vector<std::string> few(5);
    EXPECT_EQ(sqlite::getfluidnames(fluids_dir, "", few), 5);
    EXPECT_EQ(few[0], "H2O");
}

TEST(FluidDatabase, NamesAreCutTo63CharactersAndFilledUpToTheCallersSpace) {
    EXPECT_EQ(fluid("CH4.vmx" + std::string(56, ' ') + "is not part of the name").size(), 120u);
    EXPECT_EQ(fluid("CH4.vmx" + std::string(55, ' ') + "x").size(), 0u);
    std::vector<std::string> ten(10, "stale");
    EXPECT_EQ(sqlite::getfluid(fluids_dir, "CH4.vmx", ten), 10);
    EXPECT_EQ(ten[9], fluid("CH4.vmx")[9]);
}

TEST(FluidDatabase, HostileNamesFindNothingAndHarmNothing) {
    const std::string names_to_try[] = {
        "'",
        "CH4.vmx' OR '1'='1",
        "x'; DROP TABLE FluidData; --",
        "CH4.vmx'--",
        "%",
        "",
        std::string(10000, 'q'),
        std::string("CH4.vmx\0", 8),
        "m\xc3\xa9thane.vmx",
        "../../etc/passwd",
        "..",
        ".",
        "/etc/passwd",
        "..\\..\\boot.ini",
        "../FluidsTable.txt",
    };
    for (const auto& name : names_to_try) {
        EXPECT_EQ(fluid(name).size(), 0u) << name.substr(0, 40);
        EXPECT_EQ(fluid(name, examples_dir).size(), 0u) << name.substr(0, 40);
    }
    EXPECT_EQ(fluid("CH4.vmx").size(), 120u);
    EXPECT_EQ(names("").size(), 600u);
}

TEST(FluidDatabase, PlainFluidFilesStandInForMissingFluids) {
    // the example of a user's fluid file, through the database's fallback and directly
    const auto example = fluid("CO2-N2.vmx", examples_dir);
    ASSERT_EQ(example.size(), 136u);
    EXPECT_EQ(example[0], "1 2");
    EXPECT_EQ(example[4], fluid("CO2.vmx")[4]);
    EXPECT_EQ(fluid("CO2-N2.vmx").size(), 0u); // not in the shipped fluids directory
    // Windows line ends and trailing blanks go; an over-long line is cut; no final newline
    const auto dir = testing::TempDir();
    std::ofstream(dir + "odd.vmx", std::ios::binary) << "1 1  \r\n\r\n"
                                                     << std::string(5000, '7') << "\nlast";
    std::vector<std::string> lines(10);
    ASSERT_EQ(sqlite::getuserdefinedfluid(dir, "odd.vmx", lines), 4);
    EXPECT_EQ(lines[0], "1 1");
    EXPECT_EQ(lines[1], "");
    EXPECT_EQ(lines[2], std::string(sqlite::line_length, '7'));
    EXPECT_EQ(lines[3], "last");
    std::vector<std::string> two(2);
    EXPECT_EQ(sqlite::getuserdefinedfluid(dir, "odd.vmx", two), 2);
    // missing files and directories are no fluid files
    EXPECT_EQ(sqlite::getuserdefinedfluid(dir, "missing.vmx", lines), 0);
    EXPECT_EQ(sqlite::getuserdefinedfluid(ZP_DATA_DIR "/", "fluids", lines), 0);
}

TEST(FluidDatabase, NoPlainFluidNameInTheFile) {
    std::ifstream in(fluids_dir + "Fluids", std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(in), {}};
    ASSERT_GT(bytes.size(), 100000u);
    for (const char* name : {"methane", "nitrogen", "tetrafluoroethane", "R134a", "R410A",
                             "GulfCoast", "carbon dioxide", "ASHRAE", "components.csv"})
        EXPECT_EQ(bytes.find(name), std::string::npos) << name;
}

TEST(FluidDatabase, ResultCodesArePrintedExceptSuccessRowAndDone) {
    testing::internal::CaptureStdout();
    for (int ok : {0, 100, 101}) sqlite::checkerror(ok, "open");
    sqlite::checkerror(26, "prepare select data");
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "Database error during prepare select data 26\n");
    const unsigned char text[] = "abc\0def";
    EXPECT_EQ(sqlite::c_length(text), 3u);
    EXPECT_EQ(sqlite::c_length(nullptr), 0u);
}
