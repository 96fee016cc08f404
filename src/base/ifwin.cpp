#include "base/ifwin.hpp"

#include "base/common.hpp"

#include <dirent.h>
#include <dlfcn.h>
#include <fnmatch.h>
#include <link.h>
#include <sys/stat.h>

namespace ifwin {

struct search {
    DIR* dir;
    std::string directory; // with the final "/"
    std::string filespec;  // the wildcard file name
};

namespace {

// An object of this library: its address identifies the library's own module.
const char self_marker = 0;

bool names_this_library(std::string_view filename) {
    const auto name = zp_common::lower(zp_common::trim(filename));
    return name == "libzentropia.so" || name == "zentropia.dll";
}

std::string_view base_name(std::string_view path) {
    const auto slash = path.find_last_of('/');
    return slash == std::string_view::npos ? path : path.substr(slash + 1);
}

// "libif97.so" names both "libif97.so" and its versioned file "libif97.so.1"
bool matches_module(std::string_view path, std::string_view filename) {
    const auto name = base_name(path);
    return name == filename || (name.size() > filename.size() && name.starts_with(filename) &&
                                name[filename.size()] == '.');
}

struct module_query {
    std::string_view filename;
    const void* address = nullptr;
};

int find_module(dl_phdr_info* info, std::size_t, void* data) {
    auto& query = *static_cast<module_query*>(data);
    if (info->dlpi_name == nullptr || !matches_module(info->dlpi_name, query.filename)) return 0;
    for (int i = 0; i < info->dlpi_phnum; ++i)
        if (info->dlpi_phdr[i].p_type == PT_LOAD && info->dlpi_phdr[i].p_memsz > 0) {
            query.address =
                reinterpret_cast<const void*>(info->dlpi_addr + info->dlpi_phdr[i].p_vaddr);
            return 1;
        }
    return 0;
}

bool is_directory(const search& s, const dirent& entry) {
    if (entry.d_type != DT_UNKNOWN && entry.d_type != DT_LNK) return entry.d_type == DT_DIR;
    struct stat info {};
    const auto path = s.directory + entry.d_name;
    return stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

} // namespace

const void* getmodulehandle(std::string_view filename) {
    if (names_this_library(filename)) return &self_marker;
    const auto name = zp_common::trim(filename);
    if (name.empty()) return nullptr;
    module_query query{name};
    dl_iterate_phdr(&find_module, &query);
    return query.address;
}

std::string getmodulefilename(const void* handle) {
    Dl_info info{};
    if (handle == nullptr || dladdr(handle, &info) == 0 || info.dli_fname == nullptr) return {};
    return info.dli_fname;
}

search* findfirstfile(std::string_view pattern, find_data& record) {
    const auto slash = pattern.find_last_of('/');
    auto* s = new search{
        nullptr,
        slash == std::string_view::npos ? std::string("./")
                                        : std::string(pattern.substr(0, slash + 1)),
        std::string(slash == std::string_view::npos ? pattern : pattern.substr(slash + 1))};
    s->dir = opendir(s->directory.c_str());
    if (s->dir == nullptr || !findnextfile(s, record)) {
        findclose(s);
        return nullptr;
    }
    return s;
}

bool findnextfile(search* handle, find_data& record) {
    if (handle == nullptr || handle->dir == nullptr) return false;
    while (const dirent* entry = readdir(handle->dir)) {
        const std::string_view name = entry->d_name;
        if (name == "." || name == "..") continue;
        if (fnmatch(handle->filespec.c_str(), entry->d_name, 0) != 0) continue;
        if (is_directory(*handle, *entry)) continue;
        record.cfilename = name;
        return true;
    }
    return false;
}

void findclose(search* handle) {
    if (handle == nullptr) return;
    if (handle->dir != nullptr) closedir(handle->dir);
    delete handle;
}

} // namespace ifwin
