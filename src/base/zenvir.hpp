#pragma once
// Status record and message log of the library, offered to callers.
//
// Unit numbers: a unit number names the one log file opened by imessage. Writing to that number
// while the log is open goes to the file; writing to any other number (6 included), or to any
// number while no log is open, goes to standard output. Numbers below 1 mean "no log".
#include <cstddef>
#include <string>
#include <string_view>

namespace zenvir {

// Length of the module, procedure and message fields of the status record.
inline constexpr std::size_t field_length = 72;
// Length of the message line.
inline constexpr std::size_t line_length = 78;

// The last error: whether one occurred, and in which module, procedure, with which message.
struct status_record {
    bool err = false;
    std::string mdl;
    std::string sub;
    std::string msg;
};

// the process-wide status record
status_record& status();
// records an error: err set, each text cut to 72 characters
void set_error(std::string_view mdl, std::string_view sub, std::string_view msg);

// the current message line (written by xmessage, cut to 78 characters)
std::string& msg();
// unit number of the open log file; below 1 when none is open
int idf();

// opens "<logn>.log" on unit iunit: appended to when app is true, otherwise written anew
void imessage(int iunit, bool app, std::string_view logn);
// writes the message line to standard output and, when a log is open, to the log
void xmessage();
// writes the status record (or "NO ERROR DETECTED") to unit iunit, then closes the log
void xerror(int iunit);

} // namespace zenvir
