// A resource-only library (PE file) opened as data for its string table. Bounds-checked throughout: a
// malformed library fails to open or lacks strings, and never reads outside its bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <span>
#include <string>

namespace platform {

class StringLibrary {
  public:
    // Nothing when the file cannot be read or is no such library.
    static std::optional<StringLibrary> open(const std::filesystem::path& file);
    // The same on bytes in memory.
    static std::optional<StringLibrary> parse(std::span<const std::uint8_t> bytes);

    // The string with that id as UTF-8, cut to `maxUnits` UTF-16 units (never inside a pair); empty when
    // the table has no such entry.
    std::string loadString(std::uint32_t id, std::size_t maxUnits = 1200) const;

  private:
    std::map<std::uint32_t, std::u16string> strings_;
};

}  // namespace platform
