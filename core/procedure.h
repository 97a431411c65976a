// The frame around nearly every procedure of the console: it traces the call in the log, and decides what
// a failure does. A failing step is logged and the next one runs; the eleventh failure of one call abandons
// the call. A failure never crosses a frame.
#pragma once

#include <concepts>
#include <exception>
#include <functional>
#include <memory>
#include <source_location>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "platform/failure.h"

namespace core {

class Frame {
  public:
    Frame(std::string_view module, std::string_view name);
    Frame(const Frame&) = delete;
    Frame& operator=(const Frame&) = delete;

    // "[module]procedure", the tag of the procedure's log lines.
    const std::string& tag() const noexcept { return tag_; }

    // Runs one step, a statement of the body that can fail on its own, with the line it stands on. A failure
    // is counted and logged, or handled by a case of its own; then the caller's next statement runs. Returns
    // false when the step failed.
    template <std::invocable Action>
    bool step(Action&& action, std::source_location where = std::source_location::current()) {
        void* const callable = const_cast<void*>(static_cast<const void*>(std::addressof(action)));
        return run(
            callable, [](void* object) { (*static_cast<std::remove_reference_t<Action>*>(object))(); },
            where.line());
    }
    // States what this procedure does on a failure of that number instead of the log line.
    void on(long number, std::function<void(const platform::Failure&)> action);

  private:
    template <class Result, class Body>
    friend Result procedure(std::string_view, std::string_view, Result, Body&&);

    // Thrown at the eleventh failure, caught by procedure(). Required: the call leaves no exit line, so the
    // log's indent stays one step deeper.
    struct Abandoned {};

    void enter() const;
    bool run(void* callable, void (*call)(void*), unsigned line);
    void exit() const;
    // Counts and answers a failure; true when the failing statement shall run again.
    bool fail(const platform::Failure& failure, unsigned line);

    std::string tag_;
    int errorCount_ = 0;
    std::vector<std::pair<long, std::function<void(const platform::Failure&)>>> cases_;
};

// Runs `body(frame, result)` in a frame and returns what the result held at its end, also when the body
// returned early or was abandoned.
template <class Result, class Body>
Result procedure(std::string_view module, std::string_view name, Result initial, Body&& body) {
    Frame frame(module, name);
    Result result = std::move(initial);
    frame.enter();
    try {
        try {
            body(frame, result);
        } catch (const platform::Failure& failure) {
            frame.fail(failure, 0);
        } catch (const std::exception& error) {
            frame.fail(platform::Failure(platform::invalidProcedureCall, error.what()), 0);
        }
    } catch (const Frame::Abandoned&) {
        return result;
    }
    frame.exit();
    return result;
}

// The same for a procedure without a result.
template <class Body>
void procedure(std::string_view module, std::string_view name, Body&& body) {
    procedure(module, name, 0, [&](Frame& frame, int&) { body(frame); });
}

}  // namespace core
