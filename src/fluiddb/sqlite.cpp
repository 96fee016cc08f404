#include "fluiddb/sqlite.hpp"

#include "base/common.hpp"

#include <sqlite3.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>

namespace sqlite {

// The scrambling key. The database generator (data/fluids/make_fluid_database.py) reads these
// values from this line, so the shipped database and the reader always agree. Every value lies in
// 1..126: a scrambled byte then stays a single non-zero byte.
constinit const scrambling_key key = {9, 4, 13, 2, 11, 6, 15, 1, 12, 7, 3, 14, 5, 10, 8, 16};

namespace {

constexpr std::string_view database_name = "Fluids";
// Codes that replace an apostrophe and a blank in a scrambled text.
constexpr int scrambled_apostrophe = 128;
constexpr int scrambled_blank = 129;

// The one connection of the process. `dbopened` is set by the first attempt to open it; when that
// attempt fails, `dbhandle` stays null and the database answers no rows from then on.
sqlite3* dbhandle = nullptr;
bool dbopened = false;

bool has_nul(std::string_view text) {
    return text.find('\0') != std::string_view::npos;
}

void open_database(std::string_view dbpath) {
    if (dbopened || has_nul(dbpath)) return;
    dbopened = true;
    const auto filename = std::string(zp_common::trim(dbpath)).append(database_name);
    // Read-only: a missing file is an error, never a new empty database.
    const int ierr = sqlite3_open_v2(filename.c_str(), &dbhandle, SQLITE_OPEN_READONLY, nullptr);
    checkerror(ierr, "open");
    if (ierr != SQLITE_OK) {
        sqlite3_close(dbhandle);
        dbhandle = nullptr;
        return;
    }
    // The file is only read and the connection lives as long as the process: keeping its shared
    // lock spares every later query the locking and the check for changes by other writers.
    sqlite3_exec(dbhandle, "PRAGMA locking_mode = EXCLUSIVE;", nullptr, nullptr, nullptr);
}

// column 0 of the current row, cut to line_length (a NULL value gives
// an empty text)
void take_column(sqlite3_stmt* statement, std::string& element) {
    const unsigned char* text = sqlite3_column_text(statement, 0);
    if (text == nullptr) {
        element.clear();
        return;
    }
    element.assign(reinterpret_cast<const char*>(text), std::min(c_length(text), line_length));
}

// a text inside a quoted SQL literal: apostrophes doubled
std::string quoted(std::string_view text) {
    std::string out;
    for (char c : text) {
        out += c;
        if (c == '\'') out += '\'';
    }
    return out;
}

// A file name that stays inside its directory: no separator, not "." or "..", no NUL.
bool plain_file_name(std::string_view name) {
    return !name.empty() && name != "." && name != ".." &&
           name.find_first_of(std::string_view("/\\\0", 3)) == std::string_view::npos;
}

} // namespace

std::size_t c_length(const unsigned char* text) {
    std::size_t n = 0;
    if (text != nullptr)
        while (text[n] != 0) ++n;
    return n;
}

void encrypt(std::string& string, const scrambling_key& key) {
    const auto length = zp_common::trim(string).size();
    for (std::size_t i = 0; i < length; ++i) {
        const int k = key[i % key_length];
        const int c = static_cast<unsigned char>(string[i]);
        int scrambled = c + k;
        if (scrambled > 127) scrambled = c - 127 + k;
        if (scrambled == '\'')
            scrambled = scrambled_apostrophe;
        else if (scrambled == ' ')
            scrambled = scrambled_blank;
        string[i] = static_cast<char>(static_cast<unsigned char>(scrambled));
    }
}

void decrypt(std::string& string, const scrambling_key& key) {
    // Written without branches on the data: the loader unscrambles every byte of a fluid's text.
    const auto length = zp_common::trim(string).size();
    auto* text = reinterpret_cast<unsigned char*>(string.data());
    for (std::size_t i = 0; i < length; ++i) {
        int s = text[i];
        s = s == scrambled_apostrophe ? '\'' : s == scrambled_blank ? ' ' : s;
        const int c = s - key[i % key_length];
        text[i] = static_cast<unsigned char>(c < 1 ? c + 127 : c);
    }
}

void checkerror(int ierr, std::string_view curroperation) {
    if (ierr == SQLITE_OK || ierr == SQLITE_ROW || ierr == SQLITE_DONE) return;
    std::printf("Database error during %.*s %d\n", static_cast<int>(curroperation.size()),
                curroperation.data(), ierr);
    std::fflush(stdout);
}

int getuserdefinedfluid(std::string_view fluidpath, std::string_view fluidname,
                        std::span<std::string> fluiddata) {
    const auto name = zp_common::trim(fluidname);
    if (!plain_file_name(name) || has_nul(fluidpath)) return 0;
    const auto path = std::string(zp_common::trim(fluidpath)).append(name);
    // Only regular files: a directory, a pipe or a device is not a fluid file.
    std::error_code ec;
    if (!std::filesystem::is_regular_file(path, ec)) return 0;
    std::FILE* file = std::fopen(path.c_str(), "rb");
    if (file == nullptr) return 0;
    int lines = 0;
    std::string line;
    bool in_line = false;
    const auto store = [&] {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        fluiddata[static_cast<std::size_t>(lines++)].assign(zp_common::trim(line));
        line.clear();
        in_line = false;
    };
    for (int ch;
         static_cast<std::size_t>(lines) < fluiddata.size() && (ch = std::fgetc(file)) != EOF;) {
        if (ch == '\n') {
            store();
            continue;
        }
        in_line = true;
        if (line.size() < line_length) line += static_cast<char>(ch);
    }
    if (in_line && static_cast<std::size_t>(lines) < fluiddata.size()) store();
    std::fclose(file);
    return lines;
}

int getfluid(std::string_view dbpath, std::string_view fluidname,
             std::span<std::string> fluiddata) {
    std::string scrambled(zp_common::trim(zp_common::fit(fluidname, name_length)));
    encrypt(scrambled, key);
    open_database(dbpath);

    int rows = 0;
    int ierr = SQLITE_OK;
    sqlite3_stmt* statement = nullptr;
    if (dbhandle != nullptr) {
        const auto sql = "SELECT Data FROM FluidData WHERE FluidName = '" + scrambled + "';";
        checkerror(sqlite3_prepare_v2(dbhandle, sql.c_str(), -1, &statement, nullptr),
                   "prepare select data");
    }
    if (statement != nullptr) {
        while (static_cast<std::size_t>(rows) < fluiddata.size() &&
               (ierr = sqlite3_step(statement)) == SQLITE_ROW) {
            auto& element = fluiddata[static_cast<std::size_t>(rows++)];
            take_column(statement, element);
            decrypt(element, key);
            element.resize(zp_common::trim(element).size());
        }
    }
    if (rows == 0) {
        // Not in the database: a plain fluid file of that name in the same directory.
        sqlite3_finalize(statement);
        return getuserdefinedfluid(dbpath, fluidname, fluiddata);
    }
    checkerror(ierr, "step select data");
    checkerror(sqlite3_finalize(statement), "finalize select data");
    return rows;
}

int getfluidnames(std::string_view dbpath, std::string_view libraryname,
                  std::span<std::string> fluidnames) {
    open_database(dbpath);
    if (dbhandle == nullptr || has_nul(libraryname)) return 0;
    const auto sql = "SELECT FluidName FROM Fluids WHERE LibraryName LIKE '" +
                     quoted(zp_common::trim(libraryname)) + "%';";
    sqlite3_stmt* statement = nullptr;
    checkerror(sqlite3_prepare_v2(dbhandle, sql.c_str(), -1, &statement, nullptr),
               "prepare select fluids");
    if (statement == nullptr) return 0;
    int count = 0;
    int ierr = SQLITE_OK;
    while (static_cast<std::size_t>(count) < fluidnames.size() &&
           (ierr = sqlite3_step(statement)) == SQLITE_ROW) {
        auto& element = fluidnames[static_cast<std::size_t>(count++)];
        take_column(statement, element);
        decrypt(element, key);
        element.resize(zp_common::trim(element).size());
    }
    checkerror(ierr, "step select fluids");
    checkerror(sqlite3_finalize(statement), "finalize select fluids");
    return count;
}

} // namespace sqlite
