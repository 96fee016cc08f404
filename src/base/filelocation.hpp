#pragma once
// Where the library and its data files are: the data directory "fluids/" stands beside the loaded
// library file.
#include <string>
#include <string_view>
#include <vector>

namespace filelocation {

// The module name of this library.
inline constexpr std::string_view library_module = "libzentropia.so";
// Directory used when the library's own location cannot be found.
inline constexpr std::string_view default_directory = "/opt/Zentropia/fluids/";
// Most file names searchdirectory returns.
inline constexpr int max_files = 500;

// directory of the loaded module `modulename`, with the final "/"
std::string modulepath(std::string_view modulename);
// the data directory of the module: its directory followed by "fluids/"
std::string fluidpath(std::string_view modulename);
// modulepath and fluidpath of a module whose full path is `fullpath`: the default directory when
// the path has no "/" or "\" after its second character
std::string modulepath_of(std::string_view fullpath);
std::string fluidpath_of(std::string_view fullpath);
// names of the files in `szdirname` matching `szfilespec` ("*.vmx"), in ascending order, at most
// 500; returns their number
int searchdirectory(std::string_view szdirname, std::string_view szfilespec,
                    std::vector<std::string>& filenames);

} // namespace filelocation
