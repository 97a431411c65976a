#include "support/scriptedPrompts.h"

#include <gtest/gtest.h>

namespace support {

using namespace platform;

ScriptedPrompts::ScriptedPrompts() {
    setPrompts(this);
}

ScriptedPrompts::~ScriptedPrompts() {
    setPrompts(nullptr);
    EXPECT_TRUE(finished()) << "a box that the test expects never came";
}

void ScriptedPrompts::expect(MessageBox box, BoxAnswer answer) {
    boxes_.push_back({std::move(box), answer});
}

void ScriptedPrompts::expectInput(std::string text, std::string title, std::string initial,
                                  std::optional<std::string> answer) {
    inputs_.push_back({std::move(text), std::move(title), std::move(initial), std::move(answer)});
}

void ScriptedPrompts::expectFile(FileQuestion question, std::optional<std::string> answer) {
    files_.push_back({std::move(question), std::move(answer)});
}

BoxAnswer ScriptedPrompts::messageBox(const MessageBox& box) {
    if (boxes_.empty()) {
        ADD_FAILURE() << "unexpected box '" << box.title << "': " << box.text;
        return box.buttons == BoxButtons::ok ? BoxAnswer::ok : BoxAnswer::no;
    }
    const Expected expected = boxes_.front();
    boxes_.pop_front();
    EXPECT_EQ(box.text, expected.box.text);
    EXPECT_EQ(box.title, expected.box.title);
    EXPECT_EQ(box.icon, expected.box.icon) << box.title;
    EXPECT_EQ(box.buttons, expected.box.buttons) << box.title;
    return expected.answer;
}

std::optional<std::string> ScriptedPrompts::inputBox(const std::string& text, const std::string& title,
                                                     const std::string& initial) {
    if (inputs_.empty()) {
        ADD_FAILURE() << "unexpected input box '" << title << "': " << text;
        return std::nullopt;
    }
    const ExpectedInput expected = inputs_.front();
    inputs_.pop_front();
    EXPECT_EQ(text, expected.text);
    EXPECT_EQ(title, expected.title);
    EXPECT_EQ(initial, expected.initial);
    return expected.answer;
}

std::optional<std::string> ScriptedPrompts::openFile(const FileQuestion& question) {
    if (files_.empty()) {
        ADD_FAILURE() << "unexpected file dialog '" << question.title << "'";
        return std::nullopt;
    }
    const ExpectedFile expected = files_.front();
    files_.pop_front();
    EXPECT_EQ(question.title, expected.question.title);
    EXPECT_EQ(question.filter, expected.question.filter);
    EXPECT_EQ(question.defaultExtension, expected.question.defaultExtension);
    EXPECT_EQ(question.folder, expected.question.folder);
    return expected.answer;
}

}  // namespace support
