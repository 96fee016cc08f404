#include "base/fluidstable.hpp"

#include "base/common.hpp"
#include "base/filelocation.hpp"

#include <algorithm>
#include <array>
#include <fstream>
#include <string>

namespace fluidstable {
namespace {

using zp_common::lower;
using zp_common::trim;

constexpr std::string_view not_found_or_empty =
    "Error in Zentropia: file FluidsTable.txt not found or empty";
constexpr std::string_view not_offered = "-"; // a back-end cell of a fluid the back-end lacks
constexpr std::string_view not_found_start = "Component(s) ";
constexpr std::string_view not_found_end = " not found...";

using row = std::array<std::string, columns>;
std::vector<row> table;
bool table_read = false;

bool is_name(std::string_view cell) {
    return !cell.empty() && cell != not_offered;
}

// the first row (0-based) having a cell equal to `name` (lowered, cut to 32), searched column by
// column; -1 when none
int find_row(std::string_view name) {
    const auto key = tolower(name);
    for (int c = 0; c < columns; ++c)
        for (int r = 0; r < nfluids(); ++r)
            if (is_name(table[r][c]) && lower(table[r][c]) == key) return r;
    return -1;
}

bool ensure_read(std::string& errormsg) {
    if (!table_read) readfluidstable(errormsg);
    return table_read;
}

void set_invalid_model(std::string_view model, std::string& errormsg) {
    errormsg.assign("Error in Zentropia: invalid model name ").append(trim(model));
}

} // namespace

void readfluidstable_file(std::string_view filename, std::string& errormsg) {
    table.clear();
    table_read = false;
    std::ifstream in{std::string(filename)};
    std::string line;
    if (!in || !std::getline(in, line)) {
        errormsg = not_found_or_empty;
        return;
    }
    while (static_cast<int>(table.size()) < max_rows && std::getline(in, line)) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (trim(line).empty()) continue;
        row& fields = table.emplace_back();
        for (int c = 0; c < columns; ++c) {
            const auto start = static_cast<std::size_t>(c) * field_width;
            if (start < line.size())
                fields[c] = trim(std::string_view(line).substr(start, field_width));
        }
    }
    table_read = true;
    errormsg = zp_common::no_errors;
}

void readfluidstable(std::string& errormsg) {
    const auto directory = filelocation::fluidpath(filelocation::library_module);
    readfluidstable_file(std::string(trim(directory)).append(file_name), errormsg);
}

int nfluids() {
    return static_cast<int>(table.size());
}

std::string_view cell(int row, int column) {
    if (row < 0 || row >= nfluids() || column < 0 || column >= columns) return {};
    return table[row][column];
}

std::string tolower(std::string_view string) {
    return lower(trim(zp_common::fit(string, field_width)));
}

void zp_to_libname(zp_models::model_id model, int ncomp, std::span<const std::string> zp_comp,
                   std::span<std::string> lib_comp, std::string& errormsg) {
    errormsg = zp_common::no_errors;
    const auto n =
        std::min({static_cast<std::size_t>(std::max(ncomp, 0)), zp_comp.size(), lib_comp.size()});
    const int column = zp_models::of(model).column;
    // Back-ends without a column of their own (IF97, the table models, Critova, the absorption
    // pairs) take the caller's names as they are.
    if (column < 0) {
        for (std::size_t i = 0; i < n; ++i) lib_comp[i] = zp_comp[i];
        return;
    }
    if (!ensure_read(errormsg)) return;
    std::string missing(not_found_start);
    for (std::size_t i = 0; i < n; ++i) {
        const int r = find_row(zp_comp[i]);
        if (r >= 0) lib_comp[i] = table[r][column];
        if (r < 0 && zp_models::of(model).unknown_names_pass) {
            lib_comp[i] = zp_comp[i];
            continue;
        }
        if (r < 0 || lib_comp[i] == not_offered) {
            missing.resize(trim(missing).size());
            missing.append(", ").append(trim(zp_comp[i]));
        }
    }
    if (missing != not_found_start) errormsg.assign(trim(missing)).append(not_found_end);
}

void getfluidnames(int longshortcas, std::string_view model, int& nfluid,
                   std::vector<std::string>& fluidset, std::string& errormsg) {
    errormsg = zp_common::no_errors;
    fluidset.clear();
    nfluid = 0;
    if (longshortcas < long_name || longshortcas > cas_number) {
        errormsg.assign("Error in Zentropia: fluid name kind ")
            .append(std::to_string(longshortcas))
            .append(" is not 0 (long name), 1 (short name) or 2 (CAS number)");
        return;
    }
    int column = -1; // every fluid of the table
    if (!trim(model).empty()) {
        const auto& m = zp_models::by_text(model);
        if (m.id == zp_models::model_id::none) return set_invalid_model(model, errormsg);
        if (m.column < 0) {
            errormsg.assign("Error in Zentropia: the fluid table lists no fluids for ")
                .append(m.name);
            return;
        }
        column = m.column;
    }
    if (!ensure_read(errormsg)) return;
    for (const auto& fields : table)
        if (column < 0 || is_name(fields[column])) fluidset.push_back(fields[longshortcas]);
    nfluid = static_cast<int>(fluidset.size());
}

void getcompset(std::string_view model, int& ncomps, std::vector<std::string>& compset,
                std::string& errormsg) {
    errormsg = zp_common::no_errors;
    compset.clear();
    ncomps = 0;
    const auto& m = zp_models::by_text(model);
    if (m.id == zp_models::model_id::none) return set_invalid_model(model, errormsg);
    const auto* ops = m.adapter;
    if (ops != nullptr && ops->getcompset != nullptr)
        return ops->getcompset(ncomps, compset, errormsg);
    if (ops != nullptr && !ops->installed) return zp_adapter::not_installed(ops->model, errormsg);
    if (ops != nullptr && ops->getfluid != nullptr) {
        // a back-end of one fixed fluid offers just that fluid
        zp_adapter::component_names names;
        zp_adapter::composition conc{};
        int n = 0;
        ops->getfluid(n, names, conc);
        compset.assign(names.begin(), names.begin() + std::clamp(n, 0, zp_common::max_components));
        ncomps = static_cast<int>(compset.size());
        return;
    }
    errormsg.assign("Error in Zentropia: no component list available for ").append(m.name);
}

} // namespace fluidstable
