// The large installation that the recipients' operations and the windows are measured on.
#pragma once

#include <filesystem>

#include "bench/workplace.h"

namespace bench {

inline constexpr long recipientCount = 5000;
inline constexpr long deviceCount = 15000;
inline constexpr long eventCount = 1000;
inline constexpr long assignmentCount = 20000;
inline constexpr long subscriberCount = 50000;
inline constexpr long listCount = 2000;
inline constexpr long bigRecipient = recipientCount;  // has 20 devices, of which the last is a syslog host
inline constexpr long bigFirstDevice = deviceCount - 19;

// The installation below a folder of its own, with both of its databases open in this process, gone with the
// object. A recipient has a voice mailbox, a pager and an e-mail address, and one in ten is switched off; an
// event goes to twenty devices, of which a third is switched off for it. What the addresses stand for is
// filled in from the directory, which also has an index for a peer that looks them up one by one.
class LargeInstallation {
  public:
    explicit LargeInstallation(const std::filesystem::path& parent);
    ~LargeInstallation();
    LargeInstallation(const LargeInstallation&) = delete;
    LargeInstallation& operator=(const LargeInstallation&) = delete;

    std::filesystem::path database() const { return folder_.path() / "Database" / "QLNDB.MDB"; }
    std::filesystem::path directory() const;
    std::filesystem::path peerLog() const { return folder_.path() / "peer.LOG"; }

  private:
    Folder folder_;
};

}  // namespace bench
