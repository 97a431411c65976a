#include "platform/prompts.h"

#include <cstdio>

namespace platform {

namespace {

// For programs without windows: the text is seen, and the answer changes nothing.
class StandardErrorPrompts : public Prompts {
  public:
    BoxAnswer messageBox(const MessageBox& box) override {
        std::fprintf(stderr, "%s: %s\n", box.title.c_str(), box.text.c_str());
        switch (box.buttons) {
            case BoxButtons::yesNo:
                return BoxAnswer::no;
            case BoxButtons::yesNoCancel:
                return BoxAnswer::cancel;
            case BoxButtons::ok:
                break;
        }
        return BoxAnswer::ok;
    }
    std::optional<std::string> inputBox(const std::string&, const std::string&, const std::string&) override {
        return std::nullopt;
    }
    std::optional<std::string> openFile(const FileQuestion&) override { return std::nullopt; }
};

Prompts* promptsInUse = nullptr;

}  // namespace

Prompts& prompts() {
    static StandardErrorPrompts fallback;
    return promptsInUse ? *promptsInUse : fallback;
}

void setPrompts(Prompts* prompts) {
    promptsInUse = prompts;
}

}  // namespace platform
