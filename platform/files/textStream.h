// A text file opened for appending, created if needed (mode 0600, as the superuser with the folder's owner);
// a link in its place is not followed. Every write is one system call, so a
// line is in the file when write returns.
#pragma once

#include <filesystem>
#include <string_view>

#include "platform/files/descriptor.h"

namespace platform {

class TextStream {
  public:
    // Raises the file's failure number; the stream then stays closed.
    void open(const std::filesystem::path& path);
    void close() noexcept;
    bool isOpen() const noexcept { return static_cast<bool>(file_); }
    // Raises 424 when the stream is closed, 5 when the text is not valid UTF-8 (nothing is written then),
    // and the file's failure number otherwise.
    void write(std::string_view text);

  private:
    void writeAll(std::string_view text);

    Descriptor file_;
    bool torn_ = false;  // the last write ended in the middle of its text
};

// True when the text is well-formed UTF-8.
bool isValidUtf8(std::string_view text) noexcept;

}  // namespace platform
