// What carries a message to its receiver. One file each; none knows the database.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include "service/decision/message.h"

namespace service {

struct Outcome {
    enum class Kind {
        delivered,   // the receiver has confirmed it
        handedOver,  // it is on its way, and nobody confirms it
        tryAgain,    // not now: worth another attempt
        refused      // never: another attempt would end alike
    };
    Kind kind = Kind::tryAgain;
    std::string answer;  // the receiver's words, or what went wrong; one line, without any secret
};

// How long an attempt may last, and whether it shall end at once because the service ends.
struct Deadline {
    std::chrono::steady_clock::time_point at;
    std::function<bool()> isStopping;  // may be empty; asked at least five times a second while waiting
};

// Used from several threads at a time, each call on its own; what is kept between calls (a connection) is
// kept for the calling thread.
class Transport {
  public:
    virtual ~Transport() = default;
    Transport(const Transport&) = delete;
    Transport& operator=(const Transport&) = delete;

    // Sends one message. Never throws: whatever goes wrong is an outcome with its reason.
    virtual Outcome send(const Message& message, const Deadline& deadline) = 0;
    // Whether the receiver answers, without sending anything: `address` is a device's, empty where the
    // receiver is the same for all.
    virtual Outcome check(const std::string& address, const Deadline& deadline) = 0;
    // What it is set to, in one line for an administrator; no secret.
    virtual std::string settings() const = 0;

  protected:
    Transport() = default;
};

}  // namespace service
