// The directory of a compiled help file, checked throughout before a library may read the file: the library
// trusts what the file says of itself.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/libraries/peFile.h"

namespace platform {

// One object of the file, with its place in the plain or in the compressed section.
struct ChmObject {
    std::string path;  // as "/welcome.html"; names of the format's own begin with "/#", "/$" or "::"
    std::uint64_t offset = 0;
    std::uint64_t length = 0;  // bytes
    bool compressed = false;
};

// Every object of the file, in the directory's order. Refuses with pathFileAccessError, whose description
// says what is wrong with `name`: a directory that runs in circles or leaves the file, an object outside its
// section, a compression that cannot be.
std::vector<ChmObject> chmDirectory(Bytes file, const std::string& name);

}  // namespace platform
