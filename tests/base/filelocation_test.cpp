// Where the library finds its data: the fluids/ directory beside the loaded library file.
#include "base/filelocation.hpp"
#include "base/ifwin.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace fl = filelocation;
namespace fs = std::filesystem;

TEST(FileLocation, DataDirectoryBesideTheLoadedLibrary) {
    const auto fluids = fl::fluidpath(fl::library_module);
    EXPECT_EQ(fs::canonical(fluids), fs::canonical(ZP_FLUIDS_DIR));
    EXPECT_EQ(fluids.back(), '/');
    EXPECT_TRUE(fs::exists(fluids + "FluidsTable.txt"));
    EXPECT_EQ(fl::modulepath(fl::library_module) + "fluids/", fluids);
    // the name of the original platform and the plain library name both mean this library
    EXPECT_EQ(fl::fluidpath("Zentropia.dll"), fluids);
    // another loaded library is found by its file name, also when the file carries a version
    EXPECT_EQ(fl::modulepath("libif97.so"), fl::modulepath(fl::library_module));
}

TEST(FileLocation, ModulesThatAreNotLoadedGetTheDefault) {
    EXPECT_EQ(ifwin::getmodulehandle("libnot_loaded_anywhere.so"), nullptr);
    EXPECT_EQ(ifwin::getmodulehandle(""), nullptr);
    EXPECT_EQ(ifwin::getmodulefilename(nullptr), "");
    EXPECT_EQ(fl::fluidpath("libnot_loaded_anywhere.so"), "/opt/Zentropia/fluids/");
    EXPECT_EQ(fl::modulepath("libnot_loaded_anywhere.so"), "/opt/Zentropia/fluids/");
}

TEST(FileLocation, DirectoryOfAModulePath) {
    struct {
        const char* path;
        const char* modulepath;
        const char* fluidpath;
    } const cases[] = {
        {"/usr/lib/libzentropia.so", "/usr/lib/", "/usr/lib/fluids/"},
        {"/usr/lib/libzentropia.so   ", "/usr/lib/", "/usr/lib/fluids/"},
        {"lib/x.so", "lib/", "lib/fluids/"},
        {"ab/x.so", "ab/", "ab/fluids/"},
        {"C:\\Program Files\\Zentropia.dll", "C:\\Program Files\\", "C:\\Program Files\\fluids/"},
        // no separator, or one at the first or second character: the default directory
        {"libzentropia.so", "/opt/Zentropia/fluids/", "/opt/Zentropia/fluids/"},
        {"/libzentropia.so", "/opt/Zentropia/fluids/", "/opt/Zentropia/fluids/"},
        {"a/libzentropia.so", "/opt/Zentropia/fluids/", "/opt/Zentropia/fluids/"},
        {"", "/opt/Zentropia/fluids/", "/opt/Zentropia/fluids/"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(fl::modulepath_of(c.path), c.modulepath) << c.path;
        EXPECT_EQ(fl::fluidpath_of(c.path), c.fluidpath) << c.path;
    }
}

TEST(FileLocation, SearchDirectoryByPattern) {
    const auto dir = fs::path(testing::TempDir()) / "zp_search";
    fs::remove_all(dir);
    fs::create_directories(dir / "sub.vmx");
    for (const char* name : {"b.vmx", "a.vmx", "c.txt", ".hidden.vmx", "ab.vmx"})
        std::ofstream(dir / name).close();
    const auto d = dir.string() + "/";
    struct {
        std::string dirname;
        const char* pattern;
        std::vector<std::string> names;
    } const cases[] = {
        {d, "*.vmx", {".hidden.vmx", "a.vmx", "ab.vmx", "b.vmx"}}, // directories are not listed
        {d + "   ", "?.vmx", {"a.vmx", "b.vmx"}},
        {d, "*", {".hidden.vmx", "a.vmx", "ab.vmx", "b.vmx", "c.txt"}},
        {d, "c.txt", {"c.txt"}},
        {d, "*.fld", {}},
        {d + "sub.vmx/", "*", {}},
        {d + "does_not_exist/", "*", {}},
    };
    for (const auto& c : cases) {
        std::vector<std::string> names{"stale"};
        EXPECT_EQ(fl::searchdirectory(c.dirname, c.pattern, names),
                  static_cast<int>(c.names.size()))
            << c.pattern;
        EXPECT_EQ(names, c.names) << c.dirname << c.pattern;
    }
}

TEST(FileLocation, SearchDirectoryKeepsTheFirst500Names) {
    const auto dir = fs::path(testing::TempDir()) / "zp_many";
    fs::remove_all(dir);
    fs::create_directories(dir);
    for (int i = 0; i < 520; ++i) {
        char name[16];
        std::snprintf(name, sizeof name, "f%03d.vmx", i);
        std::ofstream(dir / name).close();
    }
    std::vector<std::string> names;
    EXPECT_EQ(fl::searchdirectory(dir.string() + "/", "*.vmx", names), 500);
    EXPECT_EQ(names.front(), "f000.vmx");
    EXPECT_EQ(names.back(), "f499.vmx");
}
