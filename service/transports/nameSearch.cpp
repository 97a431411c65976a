#include "service/transports/nameSearch.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>

namespace service {

namespace {

// The system's search cannot be ended early: it goes on alone, and what it finds is dropped.
struct Search {
    std::mutex mutex;
    std::condition_variable end;
    bool hasEnded = false;
    int error = 0;
    Addresses addresses;
};

}  // namespace

Addresses findHost(const std::string& host, const std::string& port, const Deadline& deadline,
                   std::string& reason) {
    const auto search = std::make_shared<Search>();
    std::thread([search, host, port] {
        addrinfo hints{};
        hints.ai_socktype = SOCK_DGRAM;
        hints.ai_flags = AI_ADDRCONFIG;
        addrinfo* found = nullptr;
        const int error = ::getaddrinfo(host.c_str(), port.c_str(), &hints, &found);
        const std::lock_guard lock(search->mutex);
        search->addresses.reset(error == 0 ? found : nullptr);
        search->error = error;
        search->hasEnded = true;
        search->end.notify_all();
    }).detach();
    std::unique_lock lock(search->mutex);
    while (!search->hasEnded && !deadline.isOver())
        search->end.wait_for(lock, std::chrono::milliseconds(100));
    reason = !search->hasEnded    ? "the name server does not answer"
             : search->error != 0 ? ::gai_strerror(search->error)
                                  : "";
    return std::move(search->addresses);
}

}  // namespace service
