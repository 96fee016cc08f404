#pragma once
// Parameter arrays of named components for the tests, built from data/fluids (components.csv,
// prsv_kappa1.csv and pr_kij.csv, by short name) in the layout of varimol/parameters.hpp.
#include "varimol/parameters.hpp"
#include "varimol/varimol.hpp"

#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace varimol_test {

using row = std::map<std::string, std::string>;

inline std::vector<std::string> split_csv(const std::string& line) {
    std::vector<std::string> out;
    std::string cur;
    bool quoted = false;
    for (char c : line) {
        if (c == '"')
            quoted = !quoted;
        else if (c == ',' && !quoted)
            out.push_back(cur), cur.clear();
        else
            cur += c;
    }
    out.push_back(cur);
    return out;
}

inline std::vector<row> read_csv(const std::string& path) {
    std::ifstream in(path);
    if (!in) throw std::runtime_error("cannot open " + path);
    std::string line;
    std::getline(in, line);
    const auto head = split_csv(line);
    std::vector<row> rows;
    while (std::getline(in, line)) {
        if (line.empty()) continue;
        const auto cells = split_csv(line);
        row r;
        for (std::size_t i = 0; i < head.size() && i < cells.size(); ++i) r[head[i]] = cells[i];
        rows.push_back(r);
    }
    return rows;
}

inline double num(const row& r, const std::string& key) {
    const auto it = r.find(key);
    if (it == r.end() || it->second.empty()) return 0.0;
    return std::stod(it->second);
}

struct mixture_recipe {
    std::vector<std::string> names;
    std::vector<double> x;
};

// Fills the arrays for the named components and mole fractions, with the data's kappa1 and kij.
inline void make_parameters(const mixture_recipe& m, varimol::fluid_parameters& fp,
                            varimol::binary_parameters& bp) {
    static const auto comps = read_csv(std::string(ZP_DATA_DIR) + "/fluids/components.csv");
    static const auto kappa = read_csv(std::string(ZP_DATA_DIR) + "/fluids/prsv_kappa1.csv");
    static const auto kij = read_csv(std::string(ZP_DATA_DIR) + "/fluids/pr_kij.csv");
    fp.fill(0.0);
    bp.fill(0.0);
    using namespace varimol;
    for (std::size_t i = 0; i < m.names.size(); ++i) {
        const row* c = nullptr;
        for (const auto& r : comps)
            if (r.at("short_name") == m.names[i]) c = &r;
        if (!c) throw std::runtime_error("unknown component " + m.names[i]);
        std::string cas = c->at("cas");
        std::string digits;
        for (char ch : cas)
            if (ch != '-') digits += ch;
        const int k = static_cast<int>(i);
        fp[parameter_index(row_id, k)] = std::stod(digits);
        fp[parameter_index(row_mole_fraction, k)] = m.x[i];
        fp[parameter_index(row_tc, k)] = num(*c, "tc_K");
        fp[parameter_index(row_pc, k)] = num(*c, "pc_Pa");
        fp[parameter_index(row_acentric, k)] = num(*c, "acentric");
        fp[parameter_index(row_molar_mass, k)] = num(*c, "molar_mass_kg_per_mol");
        for (const auto& r : kappa)
            if (r.at("short_name") == m.names[i])
                fp[parameter_index(row_kappa1, k)] = num(r, "kappa1");
        for (int a = 0; a < 5; ++a)
            fp[parameter_index(row_cp0_a0 + a, k)] = num(*c, "cp0_a" + std::to_string(a));
        fp[parameter_index(row_cp0_tmin, k)] = num(*c, "cp0_tmin_K");
        fp[parameter_index(row_cp0_tmax, k)] = num(*c, "cp0_tmax_K");
        fp[parameter_index(row_ttriple, k)] = num(*c, "ttriple_K");
        fp[parameter_index(row_vc, k)] = num(*c, "vc_m3_per_mol");
    }
    for (std::size_t i = 0; i < m.names.size(); ++i)
        for (std::size_t j = 0; j < m.names.size(); ++j)
            for (const auto& r : kij)
                if ((r.at("short_name1") == m.names[i] && r.at("short_name2") == m.names[j]) ||
                    (r.at("short_name2") == m.names[i] && r.at("short_name1") == m.names[j]))
                    bp[binary_index(bin_kij, int(i), int(j))] = num(r, "kij");
}

// Configures the back-end; returns its code.
inline int select(int model, const mixture_recipe& m) {
    varimol::fluid_parameters fp;
    varimol::binary_parameters bp;
    make_parameters(m, fp, bp);
    int ierr = -1;
    varimol::vm3_setfluid(model, fp, bp, static_cast<int>(m.names.size()), ierr);
    return ierr;
}

} // namespace varimol_test
