// Journal files of a test's own, made by the system's own writer from export text.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace support {

// One record: its fields as they are, and when it was written.
struct JournalEntry {
    std::uint64_t second = 0;  // since 1970; also its monotonic time
    std::map<std::string, std::string> fields;
};

class JournalFolder {
  public:
    explicit JournalFolder(std::filesystem::path folder);

    // True where this machine can make journals (package systemd-journal-remote).
    static bool isPossible();
    const std::filesystem::path& path() const { return folder_; }
    std::filesystem::path file(const std::string& name) const { return folder_ / (name + ".journal"); }
    // Appends records to a file, which is made where it is missing. Fails the test when that does not work.
    void append(const std::string& name, const std::vector<JournalEntry>& entries) const;
    // Fields of an ordinary message.
    static JournalEntry message(std::uint64_t second, const std::string& identifier, const std::string& text);

  private:
    std::filesystem::path folder_;
};

}  // namespace support
