// The attempts that are on their way: a few threads, each with ways out of its own.
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "platform/files/descriptor.h"
#include "service/outbox/outbox.h"
#include "service/transports/transport.h"

namespace service {

// Makes the way out to a kind of device; nothing for one that is not set up. Called by several threads.
using MakeTransport = std::function<std::unique_ptr<Transport>(DeviceKind)>;

class Dispatcher {
  public:
    struct Job {
        Outgoing stored;
        Message message;
    };

    // Completes a job in its thread, before it is sent; gives the outcome where it cannot even be sent.
    using Prepare = std::function<std::optional<Outcome>(Job&, const Deadline&)>;

    // Raises platform::Failure or std::system_error when the machine has no thread or descriptor left.
    Dispatcher(std::size_t threads, MakeTransport make, Prepare prepare);
    // Ends the attempts that are on their way, early.
    ~Dispatcher();
    Dispatcher(const Dispatcher&) = delete;
    Dispatcher& operator=(const Dispatcher&) = delete;

    // The following are for the owner's thread. Starts an attempt; there must be an idle() thread for it.
    void start(Job job);
    std::size_t idle() const { return threads_.size() - busy_.size(); }
    std::size_t busyIn(Lane lane) const;
    // The addresses that attempts are on their way to, as addressKey() has them.
    std::vector<std::string> busy() const;
    // Transports are made anew, each before its next attempt: what they were made of has changed.
    void renewTransports() { ++generation_; }
    // What has come to an end since the last call.
    std::vector<std::pair<Outgoing, Outcome>> take();
    // Ends all attempts early and waits for them; take() then gives the last ones.
    void stop();
    // Readable when take() has something.
    int descriptor() const noexcept { return wake_.get(); }

  private:
    void work();

    struct Attempt {
        std::string address;
        Lane lane;
    };
    MakeTransport make_;
    Prepare prepare_;
    platform::Descriptor wake_;
    std::atomic<bool> isStopping_ = false;
    std::atomic<unsigned> generation_ = 0;
    std::map<std::int64_t, Attempt> busy_;  // of the owner
    std::mutex mutex_;                      // guards the two below
    std::deque<Job> jobs_;
    std::vector<std::pair<Outgoing, Outcome>> finished_;
    std::condition_variable news_;
    std::vector<std::thread> threads_;
};

}  // namespace service
