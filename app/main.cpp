#include "app/mdlMain.h"
#include "platform/machine/host.h"
#include "platform/machine/language.h"
#include "platform/machine/windowStation.h"
#include "platform/prompts.h"
#include "ui/base/appearance.h"
#include "ui/base/application.h"
#include "ui/base/messageBoxes.h"
#include "ui/helpViewer/helpViewer.h"
#include "ui/shell/windowServices.h"

int main(int argc, char** argv) {
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
