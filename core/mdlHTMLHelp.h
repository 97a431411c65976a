// The help viewer.
#pragma once

#include <optional>
#include <string>

namespace mdlHTMLHelp {

// The compiled help viewer as the window system offers it. Until one is set, opening gives handle 0.
class HelpViewer {
  public:
    virtual ~HelpViewer() = default;
    // Shows the default page, or the topic; gives the viewer's handle, 0 when it fails.
    virtual long open(const std::string& helpFile, long ownerWindow, std::optional<long> topic) = 0;
    virtual bool isWindow(long handle) = 0;
    virtual void close(long handle) = 0;
};
void setHelpViewer(HelpViewer* viewer);

// Full path of the help file in the user's default language, else the English one, else the plain name.
std::string getHelpFileName();
// Opens the help file, at its default page without a topic, and keeps the handle in gHelpWindow.
void showCHMHelp(const std::string& helpFile, long ownerWindow, std::optional<long> topic = {});
// Closes the viewer if it is open, and pauses 500 ms in any case.
void closeHelpWindow();

}  // namespace mdlHTMLHelp
