// Answers the boxes that a test expects, in order, and fails the test on any other box and on one that
// never came.
#pragma once

#include <deque>
#include <string>

#include "platform/prompts.h"

namespace support {

class ScriptedPrompts : public platform::Prompts {
  public:
    ScriptedPrompts();
    ~ScriptedPrompts() override;

    void expect(platform::MessageBox box, platform::BoxAnswer answer);
    void expectInput(std::string text, std::string title, std::optional<std::string> answer);
    bool finished() const { return boxes_.empty() && inputs_.empty(); }

    platform::BoxAnswer messageBox(const platform::MessageBox& box) override;
    std::optional<std::string> inputBox(const std::string& text, const std::string& title) override;
    std::optional<std::string> openFile(const std::string& title, const std::string& filter) override;

  private:
    struct Expected {
        platform::MessageBox box;
        platform::BoxAnswer answer;
    };
    struct ExpectedInput {
        std::string text, title;
        std::optional<std::string> answer;
    };
    std::deque<Expected> boxes_;
    std::deque<ExpectedInput> inputs_;
};

}  // namespace support
