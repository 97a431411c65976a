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
    void expectInput(std::string text, std::string title, std::string initial,
                     std::optional<std::string> answer);
    void expectFile(platform::FileQuestion question, std::optional<std::string> answer);
    bool finished() const { return boxes_.empty() && inputs_.empty() && files_.empty(); }

    platform::BoxAnswer messageBox(const platform::MessageBox& box) override;
    std::optional<std::string> inputBox(const std::string& text, const std::string& title,
                                        const std::string& initial) override;
    std::optional<std::string> openFile(const platform::FileQuestion& question) override;

  private:
    struct Expected {
        platform::MessageBox box;
        platform::BoxAnswer answer;
    };
    struct ExpectedInput {
        std::string text, title, initial;
        std::optional<std::string> answer;
    };
    struct ExpectedFile {
        platform::FileQuestion question;
        std::optional<std::string> answer;
    };
    std::deque<Expected> boxes_;
    std::deque<ExpectedInput> inputs_;
    std::deque<ExpectedFile> files_;
};

}  // namespace support
