// What was told and what waits, as one list: the history of the configuration database, with what the outbox
// knows beyond it.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/ado/ado.h"
#include "service/outbox/outbox.h"

namespace service {

enum class Fate { told, refused, givenUp, waiting, heldBack };

struct Notification {
    // Names it while the list is read anew: the history's row, or what waits by its key, or what is held back
    // by its event; higher for what stands before.
    std::uint64_t place = 0;
    std::int64_t key = 0;  // the message's, which is the history's LogKey; 0 for what is held back
    Fate fate = Fate::told;
    std::string time;  // stored form, local: of its outcome, or of its making while there is none
    std::string source;
    std::uint32_t id = 0;
    std::uint16_t type = 0;  // 1 error, 2 warning, 4 information; 0 when nobody knows it any more
    std::string computer;
    std::string event;  // title of the monitored event; empty when it is gone or not known
    std::string recipient;
    std::optional<DeviceKind> kind;
    std::string address;
    std::string words;                  // the receiver's, or what is held back and why
    std::optional<int> attempts;        // nothing when the outbox has forgotten it
    std::optional<Moment> nextAttempt;  // of one that waits
    std::string subject;
    std::string body;
    bool canBeSentAgain = false;
};

// The list at one moment, the newest first, page by page. Used by one thread.
class Notifications {
  public:
    // Raises platform::Failure for a database or an outbox that cannot be read. An outbox that is missing
    // tells nothing.
    Notifications(const std::filesystem::path& databaseFile, const std::filesystem::path& outboxFile);

    // What waits and what is held back; at most once.
    std::vector<Notification> open();
    bool hasEarlier() const noexcept { return hasEarlier_; }
    // Up to `most` rows of the history before those that were given. Raises platform::Failure.
    std::vector<Notification> earlier(std::size_t most);

  private:
    struct Receiver {
        std::string recipient;
        DeviceKind kind{};
    };
    void readNames();
    Notification notificationOf(const platform::Recordset& row);
    void addMessage(Notification& notification);
    std::string titleOf(long eventKey) const;

    platform::Connection database_;
    std::unique_ptr<Store> outbox_;  // none when there is no outbox yet
    std::unordered_map<long, std::string> titles_;
    std::unordered_map<std::string, std::string> titlesBySource_;  // "source\nid", with its case folded
    std::unordered_map<std::string, Receiver> receivers_;          // by address, with its case folded
    std::int64_t before_;                                          // the history's row that was given last
    bool hasEarlier_ = true;
};

// A text that is another one whenever the list may have changed.
std::string notificationsStamp(const std::filesystem::path& databaseFile,
                               const std::filesystem::path& outboxFile);

}  // namespace service
