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

    // Messages to one address, sent one after the other by one thread.
    using Jobs = std::vector<Job>;

    // Completes a job in its thread, before it is sent; gives the outcome where it cannot even be sent.
    using Prepare = std::function<std::optional<Outcome>(Job&, const Deadline&)>;

    // Raises platform::Failure or std::system_error when the machine has no thread or descriptor left.
    Dispatcher(std::size_t threads, MakeTransport make, Prepare prepare);
    // Ends the attempts that are on their way, early.
    ~Dispatcher();
    Dispatcher(const Dispatcher&) = delete;
    Dispatcher& operator=(const Dispatcher&) = delete;

    // The following are for the owner's thread. Starts attempts, one at least; there must be an idle() thread
    // for them. They end together, so that one write keeps all their outcomes: after half a second, or with
    // the first that is to be tried again. What was not tried until then is given by nobody, and is due as
    // before.
    void start(Jobs jobs);
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
    struct Ended {
        std::int64_t firstKey;
        std::vector<std::pair<Outgoing, Outcome>> outcomes;
    };
    using Transports = std::map<DeviceKind, std::unique_ptr<Transport>>;
    Outcome attempt(Job& job, Transports& transports);
    Ended attemptAll(Jobs jobs, Transports& transports);

    MakeTransport make_;
    Prepare prepare_;
    platform::Descriptor wake_;
    std::atomic<bool> isStopping_ = false;
    std::atomic<unsigned> generation_ = 0;
    std::map<std::int64_t, Attempt> busy_;  // of the owner, by the key of the first message
    std::mutex mutex_;                      // guards the two below
    std::deque<Jobs> jobs_;
    std::vector<Ended> finished_;
    std::condition_variable news_;
    std::vector<std::thread> threads_;
};

}  // namespace service
