// Plays the console as its administrator would, on a host of its own, and leaves a picture of every stop. The
// first round is the run that installs the service; the second, with a newer service at hand, is a later one
// that ends with the service's removal.
//
// Usage: tour HOSTROOT PICTUREDIR first|later, where HOSTROOT holds the host and the installation tree. The
// language is the environment's, the scale QT_SCALE_FACTOR; TOUR_LOOK=dark gives the screen a dark palette.

#include <unistd.h>

#include <QFileInfo>
#include <cstdio>

#include "app/mdlMain.h"
#include "core/classLog.h"
#include "core/state.h"
#include "platform/files/files.h"
#include "platform/machine/host.h"
#include "platform/machine/language.h"
#include "platform/prompts.h"
#include "platform/registry/registry.h"
#include "platform/services/serviceManager.h"
#include "tour/chapters.h"
#include "tour/hands.h"
#include "tour/stage.h"
#include "ui/base/appearance.h"
#include "ui/base/application.h"
#include "ui/base/messageBoxes.h"
#include "ui/base/text.h"
#include "ui/helpViewer/helpViewer.h"
#include "ui/shell/windowServices.h"

namespace {

using tour::insist;

std::filesystem::path root;
bool serviceStays = true;

bool isServiceInstalled() {
    return platform::queryServiceStatus(core::serviceKeyName).error == platform::noError;
}

// The end of the run: what it must leave behind, then the tour's own exit code.
void endOfRun(int exitCode) {
    insist(exitCode == 0, "the run ended with " + QString::number(exitCode));
    insist(std::filesystem::exists(root / "Database" / "QLNDB_BKP.MDB"), "no backup after the exit");
    insist(QFileInfo(ui::fromUtf8(core::gLog().strLogFile())).size() > 0, "no log");
    insist(isServiceInstalled() == serviceStays, "the service is not as the round leaves it");
    std::puts("tour: done");
    std::fflush(nullptr);
    _exit(0);
}

// A newer service than the one that runs comes with the next update, and it does not start.
void deliverNewerService() {
    const std::filesystem::path delivered = root / "Service" / "HbQlnSvc.ex_";
    std::filesystem::remove(delivered);
    platform::files::copyFile(NEWER_SERVICE_PROGRAM, delivered);
    platform::registry().setValue("HKEY_LOCAL_MACHINE\\" + std::string(core::productRegistryKey),
                                  "ServiceBehaviour", std::string("failToStart"));
}

void playFirst(const tour::Play& play) {
    tour::playCatchAll(play);
    tour::playEvents(play);
    tour::playRecipients(play);
    tour::playAssignment(play);
    tour::playNotification(play);
    tour::playExclusions(play);
    tour::playTools(play);
    insist(play.script.finished(), "a window that was expected never came");
    tour::chooseMenu(play.window, {"mnuFile", "mnuExit"}, "file-menu");
}

void playLater(const tour::Play& play) {
    tour::playDormant(play);
    insist(play.script.finished(), "a window that was expected never came");
    serviceStays = false;
    tour::playRemoval(play);
}

}  // namespace

int main(int argc, char** argv) {
    const std::string round = argc == 4 ? argv[3] : "";
    const bool first = round == "first";
    if (!first && round != "later") {
        std::fputs("usage: tour HOSTROOT PICTUREDIR first|later\n", stderr);
        return 2;
    }
    root = std::filesystem::absolute(argv[1]);
    platform::setDateOrder(platform::userDateOrder());
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" TOUR_SCREEN);
    ui::Application application(argc, argv);
    if (qEnvironmentVariable("TOUR_LOOK") == "dark")
        tour::darken();
    ui::applyAppearance();
    QApplication::setQuitOnLastWindowClosed(false);
    tour::setPictures(QString::fromLocal8Bit(argv[2]), first ? 1 : 2);
    platform::host::setFolder(root / "Host");
    platform::program::setFile(root / "QLNAdmin" / "QLNAdmin");
    platform::program::setEnder(endOfRun);
    ui::MessageBoxes boxes;
    platform::setPrompts(&boxes);
    const ui::WindowServices services;
    const ui::HelpViewer helpViewer;
    platform::WindowStation station(platform::program::name());
    support::WindowScript script([](const QString& message) { insist(false, message); });
    if (first) {
        tour::expectInstallation(script);
    } else {
        deliverNewerService();
        tour::expectUpgrade(script);
    }
    mdlMain::Main(station);
    const tour::Play play{*gMainWindow, script, root};
    tour::waitFor([&] { return play.window.isVisible(); }, "the main window does not show");
    first ? playFirst(play) : playLater(play);
    insist(false, "the last chapter did not end the run");
}
