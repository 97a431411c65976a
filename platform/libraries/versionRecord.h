// The version record of a file: the package note of an ELF program (.note.package, JSON), or the version
// resource of a resource-only library. Read as data, bounds-checked; nothing of the file is run.
#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>

namespace platform {

struct VersionRecord {
    std::array<std::uint16_t, 4> numbers{};  // major, minor, build, revision
    std::string productName;                 // may be empty
};

// Nothing when the bytes hold no version record, or a malformed one.
std::optional<VersionRecord> parseVersionRecord(std::span<const std::uint8_t> bytes);
// Nothing when the file is missing, unreadable or without a record.
std::optional<VersionRecord> versionRecord(const std::filesystem::path& file);

}  // namespace platform
