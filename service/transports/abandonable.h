// A search that the system cannot end early: who asked goes on at his deadline, it goes on alone, and what it
// finds is dropped.
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

#include "service/transports/transport.h"

namespace service {

// What the search gives, or nothing at the deadline. It raises nothing, and uses nothing of its caller's.
template <class Result>
std::optional<Result> abandonable(std::function<Result()> search, const Deadline& deadline) {
    struct Shared {
        std::mutex mutex;
        std::condition_variable end;
        std::optional<Result> result;
    };
    const auto shared = std::make_shared<Shared>();
    std::thread([shared, search = std::move(search)] {
        Result result = search();
        const std::lock_guard lock(shared->mutex);
        shared->result = std::move(result);
        shared->end.notify_all();
    }).detach();
    std::unique_lock lock(shared->mutex);
    while (!shared->result && !deadline.isOver())
        shared->end.wait_for(lock, std::chrono::milliseconds(100));
    return std::move(shared->result);
}

}  // namespace service
