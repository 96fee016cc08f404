// The one database connection of a process: which directory it reads, and what a missing, empty,
// truncated or corrupt database file gives. The connection lives as long as its process, so every
// case runs in a process of its own (a forked child, as GoogleTest's death tests run).
#include "fluiddb/sqlite.hpp"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

namespace fs = std::filesystem;
const std::string shipped = ZP_FLUIDS_DIR;

// A directory with a database file made by `make` and a plain fluid file "mine.vmx" of 3 lines.
std::string directory(const std::string& name, void (*make)(const std::string& file)) {
    const auto dir = testing::TempDir() + "connection_" + name + "/";
    fs::remove_all(dir);
    fs::create_directories(dir);
    if (make != nullptr) make(dir + "Fluids");
    std::ofstream(dir + "mine.vmx") << "1 1\nmine\nuser's fluid\n";
    return dir;
}

// Runs in the child: the shipped methane text, the fluid names and the plain file, read from
// `dir` after the connection was opened on `first`. Reports the counts and everything printed on
// standard error, for the parent to match, and exits normally.
[[noreturn]] void read_after_opening(const std::string& first, const std::string& dir) {
    std::fflush(stdout);
    dup2(STDERR_FILENO, STDOUT_FILENO);
    std::vector<std::string> lines(1000);
    if (first != dir) sqlite::getfluidnames(first, "", {});
    const int methane = sqlite::getfluid(dir, "CH4.vmx", lines);
    const int names = sqlite::getfluidnames(dir, "", lines);
    const int mine = sqlite::getfluid(dir, "mine.vmx", lines);
    std::fprintf(stderr, "methane %d names %d mine %d\n", methane, names, mine);
    std::exit(0);
}

void empty(const std::string& file) {
    std::ofstream{file};
}
void garbage(const std::string& file) {
    std::ofstream out(file);
    for (int i = 0; i < 500; ++i) out << "not a database; DROP TABLE x; -- ' \" \n";
}
void truncated(const std::string& file) {
    std::ifstream in(shipped + "Fluids", std::ios::binary);
    std::string bytes{std::istreambuf_iterator<char>(in), {}};
    std::ofstream(file, std::ios::binary) << bytes.substr(0, bytes.size() / 3);
}
} // namespace

TEST(FluidDatabaseConnectionDeathTest, TheFirstDirectoryStaysInUse) {
    // a later directory with a corrupt database: still the shipped rows, nothing printed; the
    // plain-file fallback looks in the directory of each call
    const auto later = directory("later", garbage);
    EXPECT_EXIT(read_after_opening(shipped, later), testing::ExitedWithCode(0),
                "^methane 120 names 600 mine 3\n$");
    // a first directory without a database: the shipped one is not opened later either
    const auto missing = testing::TempDir() + "no_such_directory/";
    EXPECT_EXIT(read_after_opening(missing, shipped), testing::ExitedWithCode(0),
                "^Database error during open 14\nmethane 0 names 0 mine 0\n$");
}

TEST(FluidDatabaseConnectionDeathTest, BadDatabaseFilesGiveEmptyResults) {
    struct {
        const char* name;
        void (*make)(const std::string&);
        const char* expected; // what the child reports
    } const cases[] = {
        {"absent", nullptr, "^Database error during open 14\nmethane 0 names 0 mine 3\n$"},
        // no tables (1), not a database (26): each query reports, then the plain file is read
        {"empty", empty,
         "^Database error during prepare select data 1\n"
         "Database error during prepare select fluids 1\n"
         "Database error during prepare select data 1\nmethane 0 names 0 mine 3\n$"},
        {"garbage", garbage,
         "^Database error during prepare select data 26\n"
         "Database error during prepare select fluids 26\n"
         "Database error during prepare select data 26\nmethane 0 names 0 mine 3\n$"},
        // a third of the file: what survives may be read, the rest is an error, never a crash
        {"truncated", truncated, "methane [0-9]+ names [0-9]+ mine 3\n$"},
    };
    for (const auto& c : cases) {
        const auto dir = directory(c.name, c.make);
        EXPECT_EXIT(read_after_opening(dir, dir), testing::ExitedWithCode(0), c.expected) << c.name;
    }
}
