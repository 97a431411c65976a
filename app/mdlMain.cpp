#include "app/mdlMain.h"

#include <QObject>
#include <QSocketNotifier>

#include "core/RegistryAPI.h"
#include "core/classLog.h"
#include "core/mdlHTMLHelp.h"
#include "core/mdlVerInfo.h"
#include "core/modLocalize.h"
#include "core/procedure.h"
#include "core/state.h"
#include "database/addressDetails.h"
#include "database/events.h"
#include "database/lifecycle.h"
#include "database/settings.h"
#include "platform/machine/clock.h"
#include "platform/machine/host.h"
#include "platform/prompts.h"
#include "server/legacyShortcuts.h"
#include "server/mdlCorvane.h"
#include "server/mdlCorvaneDatabase.h"
#include "server/serviceControl.h"
#include "server/serviceInstallation.h"
#include "ui/shell/frmMain.h"
#include "ui/widgets/keyedTree.h"

using modLocalize::myLoadResString;
using platform::BoxIcon;
using namespace core;

namespace mdlMain {

namespace {

constexpr char module[] = "mdlMain";

[[noreturn]] void refuse(const std::string& text, const std::string& title) {
    platform::prompts().messageBox({text, title, BoxIcon::critical});
    platform::program::end(1);
}

// What keeps the registry from being read, for the refusal that follows from it; empty when nothing does.
std::string registryTrouble() {
    try {
        RegistryAPI::registryKeyExists(RegistryAPI::HKEY_LOCAL_MACHINE, productRegistryKey);
        return {};
    } catch (const platform::Failure& failure) {
        return "\n\n" + failure.description();
    }
}

// The console runs on a Corvane server of version 3.1(1) or later, and nowhere else.
void checkEnvironment() {
    if (gCorvaneVersion.major == 0)
        refuse(mdlVerInfo::productName() + myLoadResString(1252) + registryTrouble(),
               mdlVerInfo::productName() + myLoadResString(1253));
    if (!mdlCorvane::isVersionAtLeast(3, 1, 1, 0))
        refuse(mdlVerInfo::productName() + myLoadResString(1254) + "\n" + myLoadResString(1255) +
                   gCorvaneVersion.text,
               mdlVerInfo::productName() + myLoadResString(1256));
}

// False when the database cannot be used. An empty tree alone would look as if there were nothing yet.
bool tellOfDatabaseTrouble() {
    const std::string notice = mdlDatabase::newDatabaseNotice();
    if (!notice.empty())
        platform::prompts().messageBox({notice, mdlVerInfo::productName(), BoxIcon::exclamation});
    const std::string trouble = mdlDatabase::databaseTrouble();
    if (!trouble.empty())
        platform::prompts().messageBox({trouble, mdlVerInfo::productName(), BoxIcon::critical});
    return trouble.empty();
}

void createMainWindow() {
    auto* window = new frmMain;
    window->setAttribute(Qt::WA_DeleteOnClose, false);
    QObject::connect(window, &frmMain::finalExitRequested, window, &myFinalExit);
}

}  // namespace

InstanceServer::InstanceServer(platform::WindowStation& station) {
    if (station.descriptor() < 0)
        return;
    station.setActions({[] {
        if (gMainWindow && gMainWindow->isMinimized())
            gMainWindow->showNormal();
                        },
                        [] {
        if (!gMainWindow)
            return;
        gMainWindow->raise();
        gMainWindow->activateWindow();
    }});
    requests_ = std::make_unique<QSocketNotifier>(station.descriptor(), QSocketNotifier::Read);
    QObject::connect(requests_.get(), &QSocketNotifier::activated, requests_.get(),
                     [&station] { station.serve(); });
}

InstanceServer::~InstanceServer() = default;

void Main(platform::WindowStation& station) {
    procedure(module, "Main", [&](Frame& frame) {
        frame.step([&] {
            if (station.earlierInstance())
                activatePrevInstance(station);
        });
        frame.step([&] { gViewsSupported = false; });
        frame.step([&] { gCorvaneVersion = mdlCorvane::getVersion(); });
        frame.step([&] { gCorvaneFourOrLater = gCorvaneVersion.major >= 4; });
        frame.step([&] { checkEnvironment(); });
        frame.step([&] { checkSupportNotificationDevices(); });
        frame.step([&] { modLocalize::InitalizeLanguages(); });
        frame.step([&] { gProductName = myLoadResString(1205); });
        frame.step([&] { mdlUtility::removeKTNShortcuts(); });
        frame.step([&] { mdlDatabase::openDatabase(); });
        // The administrator is told that it is left as it is, so the steps that write to it do not run then.
        bool usable = false;
        frame.step([&] { usable = tellOfDatabaseTrouble(); });
        if (usable)
            frame.step([&] { mdlDatabase::upgradeDatabase(); });
        bool installed = false;
        frame.step([&] { installed = mdlUtility::installQLNService(); });
        if (!installed)
            refuse(myLoadResString(1191), myLoadResString(1192));
        frame.step([&] { mdlCorvaneDatabase::openCorvaneDB(gCorvaneDb); });
        frame.step([&] { gIgnoreEventKey = mdlDatabase::getIgnoreEventKey(); });
        frame.step([&] { gViewsSupported = mdlCorvaneDatabase::determineViewsSupport(gCorvaneDb); });
        if (usable) {
            frame.step([] { mdlDatabase::rebuildAddressDetailsTable(); });
            frame.step([] { mdlDatabase::makeInitialDatabaseChanges(); });
        }
        frame.step([&] { createMainWindow(); });
        frame.step([&] { gMainWindow->loadNavigationTree(); });
        frame.step([&] { gMainWindow->selectNode(gMainWindow->nodeAt(1)); });
        frame.step([&] { gMainWindow->tvNavigation->scrollFullyLeft(); });
        frame.step([&] { gMainWindow->show(); });
        bool running = false;
        frame.step([&] { running = mdlUtility::isServiceRunning(serviceKeyName); });
        if (!running)
            platform::prompts().messageBox(
                {myLoadResString(1223), myLoadResString(1224), BoxIcon::exclamation});
    });
}

void myFinalExit() {
    procedure(module, "myFinalExit", [&](Frame& frame) {
        bool copied = false;
        frame.step([&] { copied = mdlDatabase::copyDatabase(); });
        if (!copied)
            gLog().log("Failed to make backup copy of QLNDB.MDB, make sure QLNDB_BKP.MDB is not read-only.",
                       logError, frame.tag());
        frame.step([&] { mdlHTMLHelp::closeHelpWindow(); });
        platform::program::end(0);
    });
    platform::program::end(0);
}

void checkSupportNotificationDevices() {
    procedure(module, "checkSupportNotificationDevices", [&](Frame& frame) {
        using namespace RegistryAPI;
        constexpr char snmpKey[] = "SYSTEM\\CurrentControlSet\\Services\\SNMP\\Parameters\\ExtensionAgents";
        constexpr char nodeManagerKey[] = "SOFTWARE\\Tessaly\\TsHubNodeMgr\\1.0";
        gPagerSupported = false;  // required: cleared and never set, pagers are hidden in this release
        gSnmpSupported = false;
        frame.step([&] {
            if (registryKeyExists(HKEY_LOCAL_MACHINE, snmpKey))
                gSnmpSupported = !getRegistryString(HKEY_LOCAL_MACHINE, snmpKey, "MeridaneCorvane").empty();
        });
        gFailoverSupported = false;
        frame.step([&] {
            if (registryKeyExists(HKEY_LOCAL_MACHINE, nodeManagerKey))
                gFailoverSupported = getRegistryDword(HKEY_LOCAL_MACHINE, nodeManagerKey, "Primary") != 0;
        });
    });
}

void activatePrevInstance(platform::WindowStation& station) {
    procedure(module, "activatePrevInstance", [&](Frame& frame) {
        // So that the search cannot find this very process; without an earlier window the title stays.
        const std::string title = platform::program::setTitle("unwanted instance");
        platform::WindowHandle window = 0;
        for (const char* className : {"ThunderRTMain", "ThunderRT5Main", "ThunderRT6Main"})
            if (window == 0)
                frame.step([&] { window = platform::findWindow(station, className, title); });
        // One that waits, say for a service, cannot answer; its lock proves that it lives.
        if (window == 0 && station.earlierIsBusy())
            platform::program::end(0);
        if (window == 0)
            return;
        frame.step([&] { window = platform::windowBefore(station, window); });
        frame.step([&] { platform::openIcon(station, window); });
        frame.step([&] { platform::setForegroundWindow(station, window); });
        platform::program::end(0);
    });
}

}  // namespace mdlMain
