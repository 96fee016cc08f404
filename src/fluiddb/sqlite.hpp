#pragma once
// Read access to the fluid database "Fluids" in the fluids directory beside the library: per
// fluid the lines of its fluid text, and per back-end library the names of its fluids. Names and
// lines are stored scrambled with a fixed 16-value key. A fluid that the database does not hold is
// read from a plain fluid file of the same name in the same directory.
//
// The database connection is opened by the first call that needs it and kept to the end of the
// process; later calls reuse it whatever directory they name. Database failures are printed to
// standard output ("Database error during <operation> <code>"); callers see only an empty or short
// result. Returned lines are held without trailing blanks.
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace sqlite {

inline constexpr std::size_t key_length = 16;
// characters of a fluid name that take part in a database lookup
inline constexpr std::size_t name_length = 63;
// longest line returned; the rest of a longer line is dropped
inline constexpr std::size_t line_length = 1024;

using scrambling_key = std::array<std::int32_t, key_length>;
// the key with which the shipped database is written
extern const scrambling_key key;

// lines of the fluid text `fluidname` (".vmx" key of a Varimol fluid) from the database in the
// directory `dbpath` (with its final "/"), else from the plain file dbpath + fluidname; returns
// the number of lines placed in fluiddata (0: neither found)
int getfluid(std::string_view dbpath, std::string_view fluidname, std::span<std::string> fluiddata);
// lines of the plain file fluidpath + fluidname, one per element; 0 when the file cannot be read
// or the name would leave the directory ("/", "\", "..")
int getuserdefinedfluid(std::string_view fluidpath, std::string_view fluidname,
                        std::span<std::string> fluiddata);
// names of the database's fluids whose library name begins with `libraryname` ("" lists all);
// returns their number
int getfluidnames(std::string_view dbpath, std::string_view libraryname,
                  std::span<std::string> fluidnames);

// scrambles the text (without its trailing blanks) in place; the result holds no apostrophe and
// no blank
void encrypt(std::string& string, const scrambling_key& key);
// reverses encrypt for texts of character codes 1 to 127
void decrypt(std::string& string, const scrambling_key& key);
// prints a failed SQLite result code of `curroperation`; 0, 100 (row) and 101 (done) are silent
void checkerror(int ierr, std::string_view curroperation);
// characters of a NUL-terminated text returned by SQLite (0 for a null pointer)
std::size_t c_length(const unsigned char* text);

} // namespace sqlite
