// Questions and words to the person at the console. A lower layer asks and tells; a window, or a test's
// script, answers and shows.
#pragma once

#include <optional>
#include <string>

#include "platform/services/secret.h"

namespace platform {

enum class BoxIcon { none, critical, question, exclamation, information };
enum class BoxButtons { ok, yesNo, yesNoCancel };
enum class BoxAnswer { ok, yes, no, cancel };

struct MessageBox {
    std::string text;
    std::string title;
    BoxIcon icon = BoxIcon::none;
    BoxButtons buttons = BoxButtons::ok;
};

struct FileQuestion {
    std::string title;
    std::string filter;            // of the form "Audio file (*.wav)|*.wav"
    std::string defaultExtension;  // for a name typed without one; ".wav"
    std::string folder;            // shown first
};

class Prompts {
  public:
    virtual ~Prompts() = default;
    // Modal. Closing the box without a button counts as cancel where there is one, else as no or ok.
    virtual BoxAnswer messageBox(const MessageBox& box) = 0;
    // One line of text, `initial` to begin with; nothing when cancelled.
    virtual std::optional<std::string> inputBox(const std::string& text, const std::string& title,
                                                const std::string& initial) = 0;
    // An existing file's path; nothing when cancelled.
    virtual std::optional<std::string> openFile(const FileQuestion& question) = 0;
};

// Asks for the password of the service's account.
class PasswordPrompt {
  public:
    virtual ~PasswordPrompt() = default;
    // Modal; nothing when cancelled. The window is the same one at every call.
    virtual std::optional<Secret> askPassword(const std::string& text) = 0;
    // The last question is answered: the window goes.
    virtual void unload() = 0;
};

// One line of status while something slow goes on.
class Splash {
  public:
    virtual ~Splash() = default;
    // Shows the line, painted before the call returns. It stays until splashOff, or with a delay, in seconds,
    // goes by itself. A later call replaces line and delay.
    virtual void splashOn(const std::string& status, std::optional<short> delay = std::nullopt) = 0;
    // Harmless when nothing is shown.
    virtual void splashOff() = 0;
};

// Without an implementation a box goes to standard error and is answered with its most careful button.
Prompts& prompts();
// A null pointer goes back to standard error. The caller keeps ownership.
void setPrompts(Prompts* prompts);

// Without an implementation the password is not given, and nothing is shown.
PasswordPrompt& passwordPrompt();
void setPasswordPrompt(PasswordPrompt* prompt);
Splash& splash();
void setSplash(Splash* splash);

}  // namespace platform
