// The import's menu entry: its questions, and the legacy service that has to be down.

#include <filesystem>
#include <fstream>

#include "server/serviceControl.h"
#include "support/mainWindowFixture.h"
#include "support/serviceHost.h"

namespace {

using platform::BoxAnswer;
using platform::BoxButtons;
using platform::BoxIcon;
using Lines = std::vector<std::string>;

constexpr char legacyService[] = "tskesnsvr";

class ImportEvents : public uiTest::MainWindowOn<support::ServiceHost> {
  protected:
    ImportEvents() {
        const std::filesystem::path folder = host.root() / "Kesn";
        std::filesystem::create_directory(folder);
        host.setRegistry("Software\\Tessaly\\Kesn", "DataPath", folder.string());
        std::ofstream(folder / "KESN.MDB").close();
        support::run(folder / "KESN.MDB",
                     "CREATE TABLE Properties(PropName TEXT(50), PropVal TEXT(255), Key LONG);"
                     "INSERT INTO Properties VALUES('Source', 'backup', 1), ('EventId', '7', 1)");
        open();
    }
    // A second service of this machine, by the service's own program.
    void runLegacyService() {
        host.placeProgram(support::serviceProgram(), "HbQlnSvc.exe");
        const std::string key = "SYSTEM\\CurrentControlSet\\Services\\" + std::string(legacyService);
        host.setRegistry(key, "ImagePath", "\"" + host.serviceFile("HbQlnSvc.exe").string() + "\"");
        host.setRegistry(key, "ObjectName", std::string(support::serviceAccount));
        platform::Service service(platform::ServiceManager(platform::managerExecute), legacyService,
                                  platform::serviceChangeConfig);
        platform::ServiceConfiguration configuration;
        configuration.account = support::serviceAccount;
        configuration.password = support::servicePassword;
        EXPECT_EQ(service.changeConfiguration(configuration), 0u);
        EXPECT_TRUE(mdlUtility::myStartService(legacyService));
    }
    void expectQuestion(const std::string& text, const std::string& title, BoxAnswer answer) {
        prompts.expect({text, title, BoxIcon::question, BoxButtons::yesNo}, answer);
    }
    // Chooses the entry and answers its question, and the one about the legacy service if it is to come.
    void import(BoxAnswer answer, std::optional<BoxAnswer> stop = std::nullopt, bool stops = true) {
        expectQuestion(
            "This will import existing Kestrine Notifier events.\nAre you sure you want to do this?",
            "Import KTN Events", answer);
        if (stop)
            expectQuestion(
                "The TsKESN service must be stopped inorder to import KTN events.\n"
                "Do you want the QLN to stop the service now?",
                "TsKESN Service Running", *stop);
        if (!stops)
            prompts.expect(
                {"Unable to stop the TsKESN service, you must manually stop this service and try the "
                 "import again.",
                 "Cannot Stop TsKESN Service", BoxIcon::critical, BoxButtons::ok},
                BoxAnswer::ok);
        chooseMenu("mnuImportEvents");
    }
    Lines imported() { return rows("SELECT EventSource, EventId FROM Events WHERE EventKey > 2"); }

    support::FastClock clock;
};

TEST_F(ImportEvents, AsksFirstAndShowsTheNewEventsInTheTree) {
    import(BoxAnswer::no);
    EXPECT_EQ(imported(), Lines{});
    import(BoxAnswer::yes);
    EXPECT_EQ(imported(), Lines{"backup|7"});
    EXPECT_EQ(tree->nodeText("EventKey-3"), "backup (7)");
    EXPECT_EQ(grid->gridRowCount(), 2) << "the list that is shown has it too";
    EXPECT_EQ(tree->selectedKey(), tree->keyAt(1));
}

TEST_F(ImportEvents, StopsTheLegacyServiceOrLeavesIt) {
    runLegacyService();
    import(BoxAnswer::yes, BoxAnswer::no);
    EXPECT_EQ(imported(), Lines{});
    EXPECT_TRUE(mdlUtility::isServiceRunning(legacyService));
    import(BoxAnswer::yes, BoxAnswer::yes);
    EXPECT_FALSE(mdlUtility::isServiceRunning(legacyService));
    EXPECT_EQ(imported(), Lines{"backup|7"});
}

TEST_F(ImportEvents, EndsWhenTheLegacyServiceDoesNotStop) {
    host.setBehaviour("hangInStop");
    runLegacyService();
    import(BoxAnswer::yes, BoxAnswer::yes, false);
    EXPECT_EQ(imported(), Lines{});
}

}  // namespace
