#include "base/filelocation.hpp"

#include "base/common.hpp"
#include "base/ifwin.hpp"

#include <algorithm>

namespace filelocation {
namespace {

constexpr std::string_view data_subdirectory = "fluids/";

// Length of the directory part of a module path, final separator included; 0 when the path has
// no separator after its second character (a bare file name, or a root such as "/x" or "C:\x").
std::size_t directory_length(std::string_view fullpath) {
    const auto path = zp_common::trim(fullpath);
    const auto separator = path.find_last_of("/\\");
    return separator == std::string_view::npos || separator < 2 ? 0 : separator + 1;
}

} // namespace

std::string modulepath_of(std::string_view fullpath) {
    const auto n = directory_length(fullpath);
    return n == 0 ? std::string(default_directory) : std::string(fullpath.substr(0, n));
}

std::string fluidpath_of(std::string_view fullpath) {
    const auto n = directory_length(fullpath);
    if (n == 0) return std::string(default_directory);
    return std::string(fullpath.substr(0, n)).append(data_subdirectory);
}

std::string modulepath(std::string_view modulename) {
    return modulepath_of(ifwin::getmodulefilename(ifwin::getmodulehandle(modulename)));
}

std::string fluidpath(std::string_view modulename) {
    return fluidpath_of(ifwin::getmodulefilename(ifwin::getmodulehandle(modulename)));
}

int searchdirectory(std::string_view szdirname, std::string_view szfilespec,
                    std::vector<std::string>& filenames) {
    filenames.clear();
    const auto pattern = std::string(zp_common::trim(szdirname)).append(szfilespec);
    ifwin::find_data record;
    ifwin::search* search = ifwin::findfirstfile(pattern, record);
    if (search != nullptr) {
        do filenames.push_back(record.cfilename);
        while (ifwin::findnextfile(search, record));
        ifwin::findclose(search);
    }
    // The enumeration order of a directory is arbitrary: list in name order, then keep the first.
    std::sort(filenames.begin(), filenames.end());
    if (filenames.size() > static_cast<std::size_t>(max_files)) filenames.resize(max_files);
    return static_cast<int>(filenames.size());
}

} // namespace filelocation
