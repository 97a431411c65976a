// A text file that others write: what came to it since the last look.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <filesystem>
#include <string>

namespace viewer {

class GrowingFile {
  public:
    // Of a larger file the last `mostBytes` are read.
    explicit GrowingFile(std::filesystem::path path, std::uint64_t mostBytes = 8ull << 20);

    struct News {
        std::string bytes;
        bool fromTheStart =
            false;  // another file has the name now, or the file was cut: forget what was read
    };
    // What was added, a few megabytes at most; ask again until there is nothing. Raises the file's failure
    // number.
    News look();
    // Bytes at the beginning that were left out.
    std::uint64_t leftOut() const noexcept { return leftOut_; }

  private:
    std::filesystem::path path_;
    std::uint64_t mostBytes_;
    std::uint64_t read_ = 0;
    std::uint64_t leftOut_ = 0;
    dev_t device_ = 0;
    ino_t inode_ = 0;
};

}  // namespace viewer
