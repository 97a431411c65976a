// Contents and index of a compiled help file: lists of named pages in the format's own dialect of HTML.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace platform {

struct ChmEntry {
    std::string title;
    std::string page;  // as the file has it, with an anchor behind "#"; empty for a heading
    std::vector<ChmEntry> children;
};

// The entries of a contents or index page, nested as its lists are. Tags that mean nothing here are passed
// over; a text without entries gives none. Entries nested deeper than 32 lists stand at that depth.
std::vector<ChmEntry> parseSitemap(std::string_view text);

}  // namespace platform
