// Parts of a file, taken out as they are asked for: a program with its debugging information is many times
// larger than what a reader wants of it.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <vector>

#include "platform/files/descriptor.h"
#include "platform/libraries/peFile.h"

namespace platform {

class FileParts {
  public:
    // Of bytes that outlive the object.
    explicit FileParts(Bytes content) : content_(content), size_(content.size()) {}
    // Of a file. One that is missing or cannot be opened has no bytes.
    explicit FileParts(const std::filesystem::path& file);

    // Bytes of the whole.
    std::uint64_t size() const { return size_; }
    // The part [offset, offset + size); nothing when it reaches beyond the end or cannot be read.
    std::optional<std::vector<std::uint8_t>> read(std::uint64_t offset, std::uint64_t size) const;

  private:
    Bytes content_;
    Descriptor file_;
    std::uint64_t size_ = 0;
};

}  // namespace platform
