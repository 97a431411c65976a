// Files with their failure numbers (see failure.h). Paths are native. New files and folders are not
// readable by others.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace platform::files {

using Path = std::filesystem::path;

// True for a regular file (a link counts as what it points to); false on any failure.
bool fileExists(const Path& path) noexcept;
bool folderExists(const Path& path) noexcept;
// True when the name is taken by anything at all; a link counts as itself, also one that leads nowhere.
bool entryExists(const Path& path) noexcept;

// True for a folder that is no link and belongs to this user or to the owner of the folder that it lies in:
// what is written and deleted there is not somebody else's.
bool isOwnFolder(const Path& path) noexcept;
// Raises 70 with the folder's name when it is not.
void requireOwnFolder(const Path& path);

// Creates one folder with mode 0700; one that the superuser makes belongs to the owner of the folder that it
// lies in. Raises 58 when it exists, 76 when the parent does not.
void createFolder(const Path& path);

// Copies file to file, overwriting: written beside the target, synced, renamed, so that a copy that fails
// leaves the old target. A link under the target's name is replaced, never followed. Raises 53 for a missing
// source, 70 for a target whose owner may not write it and for a program that runs.
void copyFile(const Path& source, const Path& target);

// Deletes one file. Raises 53 when missing, 70 when it is read-only and `force` is false.
void deleteFile(const Path& path, bool force = false);

// The read-only attribute: true when the owner may not write. Raise 53 when the file is missing.
bool isReadOnly(const Path& path);
void setReadOnly(const Path& path, bool readOnly);

struct Entry {
    std::string name;
    std::uint64_t size;  // bytes
    std::chrono::system_clock::time_point modified;
};
// The regular files of a folder, sorted by name. Raises 76 when the folder is missing.
std::vector<Entry> listFiles(const Path& folder);

// Whole content of a file. Raises 53, 70, or 75 when it is larger than `limit` bytes.
std::string readFile(const Path& path, std::uint64_t limit = 64ull << 20);
// Replaces a file's content: temporary file beside it, fsync, rename. `mode` is the new file's mode.
void writeFile(const Path& path, std::string_view content, unsigned mode = 0600);

struct DiskSpace {
    std::uint64_t freeBytes;
    std::uint64_t totalBytes;
};
// Space of the file system that holds `path`. Raises 76.
DiskSpace diskSpace(const Path& path);

}  // namespace platform::files
