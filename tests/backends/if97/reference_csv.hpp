#pragma once
// Reads the reference tables under data/: comma-separated, one header line, fields optionally
// in double quotes (with "" for a quote), lines starting with '#' are comments.
#include <cstdlib>
#include <fstream>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace reference_csv {

struct row {
    std::map<std::string, std::string, std::less<>> field;

    const std::string& operator[](std::string_view name) const {
        static const std::string empty;
        const auto it = field.find(name);
        return it == field.end() ? empty : it->second;
    }
    bool has(std::string_view name) const { return !(*this)[name].empty(); }
    double number(std::string_view name) const {
        return std::strtod((*this)[name].c_str(), nullptr);
    }
};

inline std::vector<std::string> split(const std::string& line) {
    std::vector<std::string> fields(1);
    bool quoted = false;
    for (std::size_t k = 0; k < line.size(); ++k) {
        const char c = line[k];
        if (quoted) {
            if (c == '"' && k + 1 < line.size() && line[k + 1] == '"') {
                fields.back() += '"';
                ++k;
            } else if (c == '"') {
                quoted = false;
            } else {
                fields.back() += c;
            }
        } else if (c == '"') {
            quoted = true;
        } else if (c == ',') {
            fields.emplace_back();
        } else if (c != '\r') {
            fields.back() += c;
        }
    }
    return fields;
}

// All rows of the file; empty when it cannot be read.
inline std::vector<row> read(const std::string& path) {
    std::vector<row> rows;
    std::ifstream in(path);
    std::string line;
    std::vector<std::string> header;
    while (std::getline(in, line)) {
        if (line.empty() || line[0] == '#') continue;
        if (header.empty()) {
            header = split(line);
            continue;
        }
        const std::vector<std::string> fields = split(line);
        row r;
        for (std::size_t k = 0; k < header.size() && k < fields.size(); ++k)
            r.field.emplace(header[k], fields[k]);
        rows.push_back(std::move(r));
    }
    return rows;
}

} // namespace reference_csv
