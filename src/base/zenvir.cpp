#include "base/zenvir.hpp"

#include "base/common.hpp"

#include <cstdio>

namespace zenvir {
namespace {

status_record record;
std::string line;
int log_unit = 0;
std::FILE* log_file = nullptr;

// The log file when unit names it, standard output otherwise.
std::FILE* stream_of(int unit) {
    return unit >= 1 && unit == log_unit && log_file != nullptr ? log_file : stdout;
}

void write_line(std::FILE* stream, std::string_view first, std::string_view second = {}) {
    for (std::string_view part : {first, second})
        if (!part.empty()) std::fwrite(part.data(), 1, part.size(), stream);
    std::fputc('\n', stream);
    // Flushed at once so that the log survives a host program that ends abruptly.
    std::fflush(stream);
}

void close_log() {
    if (log_file != nullptr) std::fclose(log_file);
    log_file = nullptr;
    log_unit = 0;
}

} // namespace

status_record& status() {
    return record;
}

void set_error(std::string_view mdl, std::string_view sub, std::string_view msg) {
    record.err = true;
    record.mdl = zp_common::fit(mdl, field_length);
    record.sub = zp_common::fit(sub, field_length);
    record.msg = zp_common::fit(msg, field_length);
}

std::string& msg() {
    return line;
}

int idf() {
    return log_unit;
}

void imessage(int iunit, bool app, std::string_view logn) {
    close_log();
    log_unit = iunit;
    if (iunit < 1) return;
    // An unopenable file leaves the unit without a file: messages then reach standard output only.
    const std::string path = std::string(zp_common::trim(logn)) + ".log";
    log_file = std::fopen(path.c_str(), app ? "a" : "w");
}

void xmessage() {
    const std::string_view text = zp_common::trim(zp_common::fit(line, line_length));
    write_line(stdout, text);
    if (log_unit >= 1 && log_file != nullptr) write_line(log_file, text);
}

void xerror(int iunit) {
    std::FILE* stream = stream_of(iunit);
    if (record.err) {
        write_line(stream, "MOD: ", zp_common::trim(record.mdl));
        write_line(stream, "SUB: ", zp_common::trim(record.sub));
        write_line(stream, "MSG: ", zp_common::trim(record.msg));
    } else {
        write_line(stream, "NO ERROR DETECTED");
    }
    close_log();
}

} // namespace zenvir
