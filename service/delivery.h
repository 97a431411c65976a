// The way of a message from the outbox to its receiver, and of its outcome into the history.
#pragma once

#include <cstddef>
#include <deque>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "service/decision/configuration.h"
#include "service/outbox/dispatcher.h"
#include "service/outbox/outbox.h"
#include "service/program/serviceLog.h"

namespace service {

struct DeliveryOptions {
    MakeTransport makeTransport;
    std::function<std::string()> mailDomain;  // of the people and lists in the directory
    std::filesystem::path voiceFolder;
    std::size_t threads = 4;
    // Called with the name of each point that a crash has to be survived at.
    std::function<void(std::string_view)> passes = [](std::string_view) {};
};

// Used by the thread that the outbox belongs to. What it does raises platform::Failure when the outbox cannot
// be read or written, and is done again by the next call.
class Delivery {
  public:
    // Raises platform::Failure when the machine has no descriptor or thread left.
    Delivery(DeliveryOptions options, ServiceLog& log);

    // Takes what has ended, to be settled when there is an outbox to settle it in.
    void collect();
    // Keeps the outcomes of attempts that have ended.
    void settle(Outbox& outbox);
    // Starts attempts for the messages that are due, as many as there are threads for.
    void sendDue(Outbox& outbox);
    // Writes some hundred of what is settled into the history. Raises platform::Failure.
    void record(Outbox& outbox, Configuration& configuration);
    // What the transports were made of has changed.
    void renewTransports() { dispatcher_.renewTransports(); }
    // Ends all attempts early.
    void stop() { dispatcher_.stop(); }
    // Readable when there is something to settle.
    int descriptor() const noexcept { return dispatcher_.descriptor(); }

  private:
    Outgoing settledOf(Outgoing message, const Outcome& outcome, std::vector<std::string>& lines) const;
    Dispatcher::Job jobOf(const Outbox& outbox, const Outgoing& message) const;
    std::optional<Outcome> prepare(Dispatcher::Job& job, const Deadline& deadline) const;

    DeliveryOptions options_;
    ServiceLog& log_;
    Dispatcher dispatcher_;
    std::deque<std::pair<Outgoing, Outcome>> ended_;  // attempts whose outcome is not in the outbox yet
};

}  // namespace service
