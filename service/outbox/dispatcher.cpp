#include "service/outbox/dispatcher.h"

#include <signal.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <exception>
#include <iterator>

#include "platform/failure.h"

namespace service {

namespace {

// A relay may look through a mail for minutes before it takes it.
constexpr std::chrono::minutes longestAttempt(10);
constexpr std::chrono::milliseconds longestTogether(500);

platform::Descriptor makeWake() {
    platform::Descriptor wake(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
    if (!wake)
        throw platform::failureFromErrno(errno, "eventfd");
    return wake;
}

}  // namespace

Dispatcher::Dispatcher(std::size_t threads, MakeTransport make, Prepare prepare)
    : make_(std::move(make)), prepare_(std::move(prepare)), wake_(makeWake()) {
    // Signals are for the owner's thread, which waits for them.
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    try {
        while (threads_.size() < threads)
            threads_.emplace_back([this] { work(); });
    } catch (...) {
        pthread_sigmask(SIG_SETMASK, &before, nullptr);
        stop();
        throw;
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

Dispatcher::~Dispatcher() {
    stop();
}

void Dispatcher::start(Jobs jobs) {
    const Outgoing& first = jobs.front().stored;
    busy_.emplace(first.key, Attempt{addressKey(first), laneOf(first.kind)});
    {
        const std::lock_guard lock(mutex_);
        jobs_.push_back(std::move(jobs));
    }
    news_.notify_one();
}

std::size_t Dispatcher::busyIn(Lane lane) const {
    return static_cast<std::size_t>(
        std::ranges::count_if(busy_, [&](const auto& each) { return each.second.lane == lane; }));
}

std::vector<std::string> Dispatcher::busy() const {
    std::vector<std::string> addresses;
    for (const auto& [key, attempt] : busy_)
        addresses.push_back(attempt.address);
    return addresses;
}

std::vector<std::pair<Outgoing, Outcome>> Dispatcher::take() {
    std::uint64_t count = 0;
    [[maybe_unused]] const ssize_t drained = ::read(wake_.get(), &count, sizeof count);
    std::vector<Ended> finished;
    {
        const std::lock_guard lock(mutex_);
        finished.swap(finished_);
    }
    std::vector<std::pair<Outgoing, Outcome>> all;
    for (Ended& ended : finished) {
        busy_.erase(ended.firstKey);
        std::ranges::move(ended.outcomes, std::back_inserter(all));
    }
    return all;
}

void Dispatcher::stop() {
    isStopping_ = true;
    {
        // A thread that is about to wait has seen it, or is woken.
        const std::lock_guard lock(mutex_);
    }
    news_.notify_all();
    for (std::thread& thread : threads_)
        if (thread.joinable())
            thread.join();
}

Outcome Dispatcher::attempt(Job& job, Transports& transports) {
    try {
        auto& transport = transports[job.stored.kind];
        if (!transport)
            transport = make_(job.stored.kind);
        // What is not set up may be again, within the day that a message is kept.
        if (!transport)
            return {Result::tryAgain, "This host is not set up for such devices at present"};
        const Deadline deadline{std::chrono::steady_clock::now() + longestAttempt, &isStopping_};
        auto settled = prepare_(job, deadline);
        return settled ? std::move(*settled) : transport->send(job.message, deadline);
    } catch (const std::exception& error) {
        return {Result::tryAgain, error.what()};
    }
}

Dispatcher::Ended Dispatcher::attemptAll(Jobs jobs, Transports& transports) {
    const auto end = std::chrono::steady_clock::now() + longestTogether;
    Ended ended{jobs.front().stored.key, {}};
    bool goesOn = true;
    for (Job& job : jobs) {
        if (!goesOn)
            break;
        Outcome outcome = attempt(job, transports);
        goesOn = outcome.result != Result::tryAgain && !isStopping_ && std::chrono::steady_clock::now() < end;
        ended.outcomes.emplace_back(std::move(job.stored), std::move(outcome));
    }
    return ended;
}

void Dispatcher::work() {
    Transports transports;
    unsigned generation = generation_;
    for (;;) {
        Jobs jobs;
        {
            std::unique_lock lock(mutex_);
            news_.wait(lock, [this] { return isStopping_ || !jobs_.empty(); });
            if (isStopping_)
                return;
            jobs = std::move(jobs_.front());
            jobs_.pop_front();
        }
        if (generation != generation_) {
            generation = generation_;
            transports.clear();
        }
        Ended ended = attemptAll(std::move(jobs), transports);
        {
            const std::lock_guard lock(mutex_);
            finished_.push_back(std::move(ended));
        }
        const std::uint64_t one = 1;
        [[maybe_unused]] const ssize_t written = ::write(wake_.get(), &one, sizeof one);
    }
}

}  // namespace service
