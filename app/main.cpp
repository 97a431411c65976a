#include <cstdio>
#include <string_view>

#include "app/mdlMain.h"
#include "core/mdlVerInfo.h"
#include "platform/machine/host.h"
#include "platform/machine/language.h"
#include "platform/machine/windowStation.h"
#include "platform/prompts.h"
#include "ui/base/appearance.h"
#include "ui/base/application.h"
#include "ui/base/messageBoxes.h"
#include "ui/helpViewer/helpViewer.h"
#include "ui/shell/windowServices.h"

namespace {

// What a terminal asks every program, answered without a window, a host or a log. A run of the console knows
// no verbs; false for one.
bool isAnswered(int argc, char** argv) {
    const std::string_view asked = argc == 2 ? argv[1] : "";
    if (asked == "--version")
        std::printf("%s %s\n", mdlVerInfo::productName().c_str(),
                    mdlVerInfo::getFileVersionString(platform::program::file().string()).c_str());
    else if (asked == "--help")
        std::puts(
            "usage: QLNAdmin [debug]\n\n"
            "The administration console of the Quillon Service, on the host of its installation tree\n"
            "or of the environment's QLN_HOST. With debug its log is written to standard error as well.");
    return asked == "--version" || asked == "--help";
}

}  // namespace

int main(int argc, char** argv) {
    if (isAnswered(argc, argv))
        return 0;
    platform::program::setCommandLine(argc, argv);
    platform::setDateOrder(platform::userDateOrder());
    ui::Application application(argc, argv);
    ui::applyAppearance();
    QApplication::setQuitOnLastWindowClosed(false);
    ui::MessageBoxes boxes;
    platform::setPrompts(&boxes);
    const ui::WindowServices services;
    const ui::HelpViewer helpViewer;
    platform::WindowStation station(platform::program::name());
    const mdlMain::InstanceServer server(station);

    mdlMain::Main(station);

    // The last window's closing ends the run, but not the closing of a box during start-up.
    QApplication::setQuitOnLastWindowClosed(true);
    const int exitCode = QApplication::exec();
    platform::program::end(exitCode);
}
