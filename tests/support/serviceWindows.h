// Takes the place of the status window and of the password prompt.
#pragma once

#include <gtest/gtest.h>

#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/prompts.h"

namespace support {

class RecordedSplash : public platform::Splash {
  public:
    RecordedSplash() { platform::setSplash(this); }
    ~RecordedSplash() override { platform::setSplash(nullptr); }
    void splashOn(const std::string& status, std::optional<short> delay) override {
        shown.push_back(status + (delay ? " (" + std::to_string(*delay) + ")" : ""));
        up = true;
    }
    void splashOff() override { up = false; }

    std::vector<std::string> shown;  // lines, with a delay in parentheses
    bool up = false;
};

// Gives the scripted answers in order, then none; fails the test when more is asked.
class ScriptedPassword : public platform::PasswordPrompt {
  public:
    ScriptedPassword() { platform::setPasswordPrompt(this); }
    ~ScriptedPassword() override {
        platform::setPasswordPrompt(nullptr);
        EXPECT_TRUE(answers.empty()) << "a password that the test expects to be asked for was not";
    }
    std::optional<platform::Secret> askPassword(const std::string& text) override {
        asked.push_back(text);
        if (answers.empty()) {
            ADD_FAILURE() << "a password was asked for: " << text;
            return std::nullopt;
        }
        const std::optional<std::string> answer = answers.front();
        answers.pop_front();
        return answer ? std::optional<platform::Secret>(*answer) : std::nullopt;
    }
    void unload() override { ++unloaded; }

    std::deque<std::optional<std::string>> answers;  // nothing is a cancelled prompt
    std::vector<std::string> asked;
    int unloaded = 0;
};

}  // namespace support
