// Replays saved fuzz inputs (files, or every file of a directory) through the fuzz target without
// libFuzzer: a fault aborts, as under the fuzzer.
#include "fuzz_target.hpp"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

namespace fs = std::filesystem;

namespace {
void replay(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(in), {}};
    std::fprintf(stderr, "replaying %s (%zu bytes)\n", file.string().c_str(), bytes.size());
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
}
} // namespace

int main(int argc, char** argv) {
    std::size_t files = 0;
    for (int i = 1; i < argc; ++i) {
        const fs::path path(argv[i]);
        if (fs::is_directory(path)) {
            std::vector<fs::path> entries;
            for (const auto& entry : fs::directory_iterator(path))
                if (entry.is_regular_file()) entries.push_back(entry.path());
            std::sort(entries.begin(), entries.end());
            for (const auto& entry : entries) replay(entry), ++files;
        } else {
            replay(path), ++files;
        }
    }
    const auto& s = zp_fuzz::counts();
    std::printf("replayed %zu inputs: %llu calls of %zu procedures, %llu known good calls answered "
                "rightly, slowest call %.2f ms (%s)\n",
                files, static_cast<unsigned long long>(s.calls), zp_fuzz::procedure_count(),
                static_cast<unsigned long long>(s.good_calls), s.slowest_ms,
                s.slowest[0] ? s.slowest : "-");
    return files == 0 ? 1 : 0;
}
