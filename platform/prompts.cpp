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

class NoPassword : public PasswordPrompt {
  public:
    std::optional<Secret> askPassword(const std::string&) override { return std::nullopt; }
    void unload() override {}
};

class NoSplash : public Splash {
  public:
    void splashOn(const std::string&, std::optional<short>) override {}
    void splashOff() override {}
};

Prompts* promptsInUse = nullptr;
PasswordPrompt* passwordPromptInUse = nullptr;
Splash* splashInUse = nullptr;

}  // namespace

Prompts& prompts() {
    static StandardErrorPrompts fallback;
    return promptsInUse ? *promptsInUse : fallback;
}

void setPrompts(Prompts* prompts) {
    promptsInUse = prompts;
}

PasswordPrompt& passwordPrompt() {
    static NoPassword fallback;
    return passwordPromptInUse ? *passwordPromptInUse : fallback;
}

void setPasswordPrompt(PasswordPrompt* prompt) {
    passwordPromptInUse = prompt;
}

Splash& splash() {
    static NoSplash fallback;
    return splashInUse ? *splashInUse : fallback;
}

void setSplash(Splash* splash) {
    splashInUse = splash;
}

}  // namespace platform
