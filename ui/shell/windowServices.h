// What the lower layers ask of windows besides boxes: the password prompt, the status line, painting during a
// wait, and fonts after a change of language.
#pragma once

#include <memory>

#include "platform/prompts.h"

class dlgServicePassword;
class frmSplash;

namespace ui {

// While it lives its windows serve; one instance, made after the application object.
class WindowServices : public platform::PasswordPrompt, public platform::Splash {
  public:
    WindowServices();
    ~WindowServices() override;
    WindowServices(const WindowServices&) = delete;
    WindowServices& operator=(const WindowServices&) = delete;

    std::optional<platform::Secret> askPassword(const std::string& text) override;
    void unload() override;
    void splashOn(const std::string& status, std::optional<short> delay) override;
    void splashOff() override;

  private:
    std::unique_ptr<dlgServicePassword> dlgServicePassword_;
    std::unique_ptr<frmSplash> frmSplash_;  // made at its first use
};

}  // namespace ui
