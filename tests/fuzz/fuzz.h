// What the fuzz targets share. A target is the function that libFuzzer calls with one input; the normal suite
// calls it with the files of its corpus.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace fuzz {

// Ends the process where a property does not hold, so that fuzzer and suite both see it.
inline void insist(bool holds, const char* property) {
    if (holds)
        return;
    std::fprintf(stderr, "fuzz: does not hold: %s\n", property);
    std::abort();
}

inline std::string_view textOf(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

}  // namespace fuzz
