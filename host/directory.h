// The server's directory: its two layouts, and the rows that go into either.
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

#include "host/provision.h"
#include "host/sqliteFile.h"

namespace host {

struct Subscriber {
    std::string alias;
    std::string displayName;
    std::string firstName;
    std::string lastName;
    std::string extension;
    std::string type;         // a number; the directory's own classes of subscriber
    std::string directoryId;  // made from the alias when empty
};

struct DistributionList {
    std::string alias;
    std::string displayName;
    std::string extension;
    std::string directoryId;
};

// Adds rows to an open directory; a row of an alias that is there takes its place.
class DirectoryWriter {
  public:
    DirectoryWriter(SqliteFile& database, DirectoryLayout layout);
    void add(const Subscriber& subscriber);
    void add(const DistributionList& list);

  private:
    SqliteFile::Insert globalSubscribers_;
    SqliteFile::Insert subscribers_;
    SqliteFile::Insert callHandlers_;
    SqliteFile::Insert lists_;
    bool accessIdIsGlobal_;
};

// The id of an entry that was added without one; `kind` is "subscriber" or "list".
std::string directoryIdOf(std::string_view kind, std::string_view alias);

// Makes an empty directory of a layout and lets `fill` put its rows in.
void createDirectory(const std::filesystem::path& file, DirectoryLayout layout,
                     const std::function<void(DirectoryWriter&)>& fill);

// Believable people and lists, the same ones each time.
void fillDemonstrationDirectory(DirectoryWriter& writer, unsigned subscribers, unsigned distributionLists);

}  // namespace host
