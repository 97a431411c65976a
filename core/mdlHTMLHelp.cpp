#include "core/mdlHTMLHelp.h"

#include <chrono>

#include "core/classLog.h"
#include "core/modLocalize.h"
#include "core/procedure.h"
#include "core/state.h"
#include "platform/files/files.h"
#include "platform/machine/clock.h"
#include "platform/machine/host.h"

namespace mdlHTMLHelp {

namespace {

constexpr char moduleName[] = "mdlHTMLHelp";
constexpr auto closingPause = std::chrono::milliseconds(500);

HelpViewer* viewer = nullptr;

}  // namespace

void setHelpViewer(HelpViewer* newViewer) {
    viewer = newViewer;
}

std::string getHelpFileName() {
    return core::procedure(moduleName, "getHelpFileName", std::string(),
                           [](core::Frame& frame, std::string& path) {
        frame.step([&] {
            const std::string base = (platform::program::folder() / "QuillonService").string();
            // The user's default language decides, not the one chosen in the About window.
            for (const std::string& code : {modLocalize::userLanguageCode(), std::string("ENU")}) {
                path = base;
                path.append("_").append(code).append(".chm");
                if (platform::files::fileExists(path))
                    return;
            }
            path = base + ".chm";
        });
    });
}

void showCHMHelp(const std::string& helpFile, long ownerWindow, std::optional<long> topic) {
    core::procedure(moduleName, "showCHMHelp", [&](core::Frame& frame) {
        frame.step([&] { core::gHelpWindow = viewer ? viewer->open(helpFile, ownerWindow, topic) : 0; });
        core::gLog().log("hwndHelp returned = " + std::to_string(core::gHelpWindow), core::logVersionInfo,
                         frame.tag());
    });
}

void closeHelpWindow() {
    core::procedure(moduleName, "closeHelpWindow", [](core::Frame& frame) {
        frame.step([] {
            if (viewer && viewer->isWindow(core::gHelpWindow))
                viewer->close(core::gHelpWindow);
        });
        frame.step([] { platform::clock().sleep(closingPause); });
    });
}

}  // namespace mdlHTMLHelp
