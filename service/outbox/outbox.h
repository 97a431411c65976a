// What the service has to remember: how far it has read, what it has still to tell, and what it holds back.
// One file, one owner.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/machine/eventLog.h"
#include "service/decision/monitoring.h"
#include "service/outbox/store.h"

namespace service {

enum class State {
    waiting = 0,  // for its first or next attempt
    told,         // delivered or handed over; the history does not say so yet
    refused,      // for good; the history does not say so yet
    givenUp,      // after the last attempt; the history does not say so yet
    done          // and in the history
};

// Messages of a lane may all wait for one server, so each lane has threads of its own to keep.
enum class Lane { mail, other };

struct Outgoing {
    std::int64_t key = 0;  // 0 until it is stored; the history's LogKey
    long eventKey = 0;
    std::string eventSource;
    std::uint32_t eventId = 0;
    std::uint16_t eventType = 4;
    std::string computer;
    bool isTest = false;
    long deviceKey = 0;
    DeviceKind kind{};
    std::string recipient;
    std::string address;  // as the device has it
    std::string subject;
    std::string body;
    long priority = 1;
    std::string voiceFile;
    Moment created;
    int attempts = 0;
    Moment nextAttempt;
    Moment settled;  // when its outcome came
    std::string answer;
    State state = State::waiting;
    State outcome = State::waiting;  // of one that is done: what it was before
    std::string outboxId;            // of one that is on its way: the outbox that it is in
};

// Records of one event that were not told one by one.
struct HeldBack {
    long eventKey = 0;
    std::int64_t count = 0;
    std::string first;  // moments of the records, in stored form
    std::string last;
    platform::EventRecord record;  // the newest of them
};

class Outbox {
  public:
    // Opens the file or makes it, with keys from `firstKey` on. A damaged one is set aside as FILE.damaged
    // and a new one made: setAside() tells so then. Raises platform::Failure.
    Outbox(const std::filesystem::path& file, std::int64_t firstKey);

    // The name of the damaged file, where there was one.
    const std::optional<std::filesystem::path>& setAside() const noexcept { return setAside_; }
    // Unlike that of any other outbox: with it a message's key names the message for good.
    const std::string& id() const noexcept { return id_; }

    // All that one batch of records leads to happens or nothing. Raises platform::Failure.
    class Batch {
      public:
        explicit Batch(Outbox& outbox) : outbox_(outbox), transaction_(*outbox.store_) {}
        void setPosition(const std::string& source, const std::string& position);
        // Gives the message's key.
        std::int64_t add(const Outgoing& message);
        void holdBack(long eventKey, const platform::EventRecord& record);
        void forgetHeldBack(long eventKey);
        void commit() { transaction_.commit(); }

      private:
        Outbox& outbox_;
        Store::Transaction transaction_;
    };

    // Nothing for a source that was never read. All of these raise platform::Failure.
    std::optional<std::string> position(const std::string& source);
    std::vector<HeldBack> heldBack();
    std::optional<HeldBack> heldBack(long eventKey);
    // When the newest message of an event was made whose outcome no history tells, or which reached nobody.
    std::optional<Moment> pendingSince(long eventKey);

    // The message of a lane that has been due for longest by `now`, but for those to the addresses in `busy`,
    // as addressKey() has them, and behind it those that are due to the same address, `most` in all.
    std::vector<Outgoing> due(Moment now, Lane lane, const std::vector<std::string>& busy, std::size_t most);
    // When, after a moment, the next message is to be sent; nothing when none waits so.
    std::optional<Moment> nextAttemptAfter(Moment moment);
    // Keeps the state, attempts, moments and answer of messages, all or none.
    void update(const std::vector<Outgoing>& messages);
    // The oldest ones whose outcome is to be written into the history, some hundred at once.
    std::vector<Outgoing> unrecorded();
    // Drops what has been done since before `moment`.
    void dropDoneBefore(Moment moment);

  private:
    void open(const std::filesystem::path& file, std::int64_t firstKey);

    std::unique_ptr<Store> store_;
    std::optional<std::filesystem::path> setAside_;
    std::string id_;
};

Lane laneOf(DeviceKind kind);
// "4:night@example.org": what attempts to one address wait for.
std::string addressKey(const Outgoing& message);

}  // namespace service
