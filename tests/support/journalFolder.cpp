#include "support/journalFolder.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <memory>

namespace support {

namespace {

constexpr char writer[] = "/lib/systemd/systemd-journal-remote";

std::string exported(const JournalEntry& entry) {
    const std::string microseconds = std::to_string(entry.second) + "000000";
    std::string text = "__REALTIME_TIMESTAMP=" + microseconds + "\n__MONOTONIC_TIMESTAMP=" + microseconds +
                       "\n_BOOT_ID=0123456789abcdef0123456789abcdef\n";
    for (const auto& [name, value] : entry.fields) {
        text += name + "\n";
        for (std::size_t size = value.size(), i = 0; i < 8; ++i, size >>= 8)
            text.push_back(static_cast<char>(size & 0xFF));
        text += value + "\n";
    }
    return text + "\n";
}

}  // namespace

JournalFolder::JournalFolder(std::filesystem::path folder) : folder_(std::move(folder)) {}

bool JournalFolder::isPossible() {
    return std::filesystem::exists(writer);
}

void JournalFolder::append(const std::string& name, const std::vector<JournalEntry>& entries) const {
    std::filesystem::create_directories(folder_);
    const std::string command = std::string(writer) + " -o '" + file(name).string() + "' - >/dev/null 2>&1";
    FILE* const pipe = ::popen(command.c_str(), "w");
    ASSERT_NE(pipe, nullptr);
    for (const JournalEntry& entry : entries) {
        const std::string text = exported(entry);
        EXPECT_EQ(std::fwrite(text.data(), 1, text.size(), pipe), text.size());
    }
    EXPECT_EQ(::pclose(pipe), 0) << command;
}

JournalEntry JournalFolder::message(std::uint64_t second, const std::string& identifier,
                                    const std::string& text) {
    return {
        second,
        {{"SYSLOG_IDENTIFIER", identifier}, {"MESSAGE", text}, {"PRIORITY", "6"}, {"_HOSTNAME", "node1"}}};
}

}  // namespace support
