#include "core/procedure.h"

#include "core/classLog.h"

namespace core {

namespace {
constexpr int failureLimit = 10;
}

Frame::Frame(std::string_view module, std::string_view name) {
    tag_.reserve(module.size() + name.size() + 2);
    tag_.append("[").append(module).append("]").append(name);
}

void Frame::enter() const {
    gLog().enterProc(tag_);
}

void Frame::exit() const {
    gLog().exitProc(tag_);
}

void Frame::on(long number, std::function<void(const platform::Failure&)> action) {
    cases_.emplace_back(number, std::move(action));
}

bool Frame::fail(const platform::Failure& failure, unsigned line) {
    const std::string text =
        "Err.Number = " + std::to_string(failure.number()) + " Err.Description = " + failure.description();
    if (++errorCount_ > failureLimit) {
        gLog().log(text, logError, tag_);
        gLog().log("Error count exceeded, forcing exit from " + tag_, logError, tag_);
        throw Abandoned{};
    }
    for (const auto& [number, action] : cases_) {
        if (number == failure.number()) {
            action(failure);
            return false;
        }
    }
    gLog().log(text + " Line: " + std::to_string(line), logError, tag_);
    return gLog().DebugMode();
}

bool Frame::run(void* callable, void (*call)(void*), unsigned line) {
    for (;;) {
        try {
            call(callable);
            return true;
        } catch (const platform::Failure& failure) {
            if (!fail(failure, line))
                return false;
        } catch (const std::exception& error) {
            if (!fail(platform::Failure(platform::invalidProcedureCall, error.what()), line))
                return false;
        }
    }
}

}  // namespace core
