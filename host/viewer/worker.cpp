#include "host/viewer/worker.h"

#include <chrono>
#include <exception>
#include <utility>

#include "platform/ado/ado.h"

namespace viewer {

Worker::Worker() : thread_([this] { run(); }) {}

Worker::~Worker() {
    {
        const std::lock_guard lock(mutex_);
        isEnding_ = true;
        tasks_.clear();
    }
    news_.notify_one();
    thread_.join();
}

void Worker::post(std::function<void()> task) {
    {
        const std::lock_guard lock(mutex_);
        tasks_.push_back(std::move(task));
    }
    news_.notify_one();
}

void Worker::run() {
    // A window that is closed waits for this thread.
    platform::setLockPatience(std::chrono::milliseconds(500));
    for (;;) {
        std::function<void()> task;
        {
            std::unique_lock lock(mutex_);
            news_.wait(lock, [this] { return isEnding_ || !tasks_.empty(); });
            if (isEnding_)
                return;
            task = std::move(tasks_.front());
            tasks_.pop_front();
        }
        task();
    }
}

void inWindow(QObject* receiver, std::function<void()> action) {
    QMetaObject::invokeMethod(receiver, std::move(action), Qt::QueuedConnection);
}

std::string failureOf(const std::function<void()>& step) {
    try {
        step();
        return {};
    } catch (const platform::Failure& failure) {
        return failure.description();
    } catch (const std::exception& error) {
        return error.what();
    }
}

}  // namespace viewer
