// Runs one fuzz target on every file of its corpus, in the normal suite and without the fuzzer's runtime.
// Usage: fuzz_TARGET_corpus FOLDER. A property that does not hold ends the process.

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "fuzz.h"

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fputs("usage: corpus FOLDER\n", stderr);
        return 2;
    }
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(argv[1]))
        files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    for (const std::filesystem::path& file : files) {
        std::printf("%s\n", file.filename().c_str());
        std::fflush(stdout);  // so that the last name is there when a file ends the process
        std::ifstream stream(file, std::ios::binary);
        const std::vector<char> content{std::istreambuf_iterator<char>(stream), {}};
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(content.data()), content.size());
    }
    // An empty corpus proves nothing.
    return files.empty() ? 1 : 0;
}
