// One thread of work beside a window, so that no file or lock holds the window up.
#pragma once

#include <QObject>
#include <atomic>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace viewer {

class Worker {
  public:
    Worker();
    // Drops what has not begun and waits for the end of what has.
    ~Worker();
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

    // Tasks run one after the other. A task raises nothing.
    void post(std::function<void()> task);
    // True when a task should come to its end: nobody waits for it any more.
    bool isEnding() const noexcept { return isEnding_; }

  private:
    void run();

    std::mutex mutex_;
    std::condition_variable news_;
    std::deque<std::function<void()>> tasks_;
    std::atomic<bool> isEnding_ = false;
    std::thread thread_;
};

// Calls `action` in the window's thread, unless `receiver` is gone by then.
void inWindow(QObject* receiver, std::function<void()> action);

// Runs a step that may fail; why it did, or nothing.
std::string failureOf(const std::function<void()>& step);

}  // namespace viewer
