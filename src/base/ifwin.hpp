#pragma once
// The few platform services the file location rests on: the path of a loaded library, and a
// directory listing filtered by a wildcard pattern ("*" and "?", as in a shell).
#include <string>
#include <string_view>

namespace ifwin {

// An address inside a loaded module, or null when no module of that file name is loaded. The
// names "libzentropia.so" and "Zentropia.dll" both mean this library itself.
const void* getmodulehandle(std::string_view filename);
// full path of the module that holds `handle` ("" when there is none)
std::string getmodulefilename(const void* handle);

struct find_data {
    std::string cfilename; // name of the file found, without its directory
};
struct search; // an open enumeration

// Starts listing the files that match `pattern`: a directory and a wildcard file name, as in
// "/data/fluids/*.vmx". Returns null when nothing matches; otherwise the first match is in
// `record` and the enumeration must be closed with findclose.
search* findfirstfile(std::string_view pattern, find_data& record);
// the next match into `record`; false at the end
bool findnextfile(search* handle, find_data& record);
// ends an enumeration
void findclose(search* handle);

} // namespace ifwin
