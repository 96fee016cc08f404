#pragma once
// Writes a fluid name table under the test's temporary directory: a header line, then one line per
// row of blank-separated cells, each cell padded to the table's 32 characters.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

inline std::string write_fluids_table(const std::string& name,
                                      const std::vector<std::string>& rows) {
    const auto path = testing::TempDir() + name;
    std::ofstream out(path);
    out << "header\n";
    for (const auto& row : rows) {
        std::istringstream cells(row);
        for (std::string cell; cells >> cell;) out << cell << std::string(32 - cell.size(), ' ');
        out << '\n';
    }
    return path;
}
