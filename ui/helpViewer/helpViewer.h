// The help viewer as the console calls it: one window for the run, known by its handle.
#pragma once

#include <memory>

#include "core/mdlHTMLHelp.h"

namespace ui {

class HelpWindow;

// While it lives it serves mdlHTMLHelp; one instance, made after the application object.
class HelpViewer : public mdlHTMLHelp::HelpViewer {
  public:
    HelpViewer();
    ~HelpViewer() override;
    HelpViewer(const HelpViewer&) = delete;
    HelpViewer& operator=(const HelpViewer&) = delete;

    // Reads the file afresh each time. A file that cannot be shown gives handle 0 and a warning in the log
    // that says why; a window that was open stays as it is. An unknown topic shows the default page.
    long open(const std::string& helpFile, long ownerWindow, std::optional<long> topic) override;
    bool isWindow(long handle) override;
    void close(long handle) override;

  private:
    std::unique_ptr<HelpWindow> window_;  // made at its first use
};

}  // namespace ui
