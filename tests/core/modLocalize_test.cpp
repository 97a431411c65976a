#include "core/modLocalize.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <fstream>

#include "core/mdlHTMLHelp.h"
#include "core/mdlVerInfo.h"
#include "core/state.h"
#include "support/scriptedPrompts.h"
#include "support/temporaryHost.h"

namespace {

using namespace modLocalize;

class Localize : public testing::Test {
  protected:
    void SetUp() override { setenv("LC_ALL", "de_DE.UTF-8", 1); }
    void TearDown() override { unsetenv("LC_ALL"); }
    void makeFile(const char* name) { std::ofstream(host.programFolder() / name) << "no library"; }

    support::TemporaryHost host;
    support::ScriptedPrompts prompts;
};

TEST_F(Localize, TableIsWholeAndKeepsBlanksAndMnemonics) {
    for (long id = 1000; id <= 1316; ++id) {
        ASSERT_NE(englishString(id), nullptr) << id;
        EXPECT_STRNE(englishString(id), "") << id;
    }
    EXPECT_EQ(englishString(999), nullptr);
    EXPECT_EQ(englishString(1317), nullptr);
    EXPECT_STREQ(englishString(1016), "E&xit");
    EXPECT_STREQ(englishString(1028), "Errors & Warnings");
    EXPECT_STREQ(englishString(1150), " (All)");
    EXPECT_STREQ(englishString(1188), "   Event Id:");
    EXPECT_STREQ(englishString(1211), "Event Type:        ");
    EXPECT_STREQ(englishString(1223),
                 "The HbQlnSvc service is not running.  No notifications will happen until "
                 "the service is started successfully.");
    EXPECT_STREQ(englishString(1299), "Cannot copy over file: ");
}

TEST_F(Localize, StringsComeFromTheProgramAndAnUnknownIdIsTold) {
    EXPECT_EQ(myLoadResString(1205), "Quillon Service");
    prompts.expect({"error in myLoadResString: Resource with identifier '1317' not found", "QLNAdmin"},
                   platform::BoxAnswer::ok);
    EXPECT_EQ(myLoadResString(1317), "");
}

TEST_F(Localize, CodesAndIdsMapOneToOne) {
    EXPECT_EQ(languageIdToCode(0), "ENU");
    EXPECT_EQ(languageIdToCode(-1), "ACD");
    EXPECT_EQ(languageIdToCode(1042), "ERROR");
    EXPECT_EQ(languageCodeToId("ERROR"), 1033);
    EXPECT_EQ(languageCodeToId("X.d"), 1033);
    int known = 0;
    for (long id = -1; id < 21000; ++id) {
        const std::string code = languageIdToCode(id);
        if (id == 0 || code == "ERROR")
            continue;
        ++known;
        EXPECT_EQ(languageCodeToId(code), id) << code;
    }
    EXPECT_EQ(known, 40);
    EXPECT_EQ(languageIdToName(99999), "(error)");
    EXPECT_EQ(languageCodeToName("X.d"), languageIdToName(1033));
    EXPECT_EQ(languageFont(1041).characterSet, 128);
    EXPECT_EQ(languageFont(1031).name, "");
}

TEST_F(Localize, ScanListsLibrariesWithoutRegardToCase) {
    for (const char* name :
         {"QLNBRANDINGRES_FRA.DLL", "QLNBrandingRes_X.dll", "QLNbrandingres_", "QLNBranding.dll"})
        makeFile(name);
    int fontsSet = 0;
    setWindowFontsHook([&] { ++fontsSet; });
    core::gLanguageId = 1036;
    InitalizeLanguages();
    EXPECT_EQ(core::gLanguages, (std::vector<std::string>{"FRA", "X.d", ""}));
    EXPECT_FALSE(core::gResourceLibrary);
    EXPECT_EQ(myLoadResString(1001), "OK");

    std::filesystem::remove_all(host.programFolder());
    std::filesystem::create_directory(host.programFolder());
    InitalizeLanguages();
    EXPECT_EQ(core::gLanguages, std::vector<std::string>{""});
    EXPECT_EQ(fontsSet, 2);
    setWindowFontsHook({});
}

TEST_F(Localize, AFolderThatCannotBeReadIsToldAndTheRestRuns) {
    std::filesystem::remove_all(host.programFolder());
    prompts.expect(
        {"Error in InitalizeLanguages: Path not found (" + host.programFolder().string() + ")", "QLNAdmin"},
        platform::BoxAnswer::ok);
    InitalizeLanguages();
    EXPECT_EQ(core::gLanguageId, 1031);
    EXPECT_EQ(core::gLanguages, std::vector<std::string>{""});
}

struct Viewer : mdlHTMLHelp::HelpViewer {
    Viewer() { mdlHTMLHelp::setHelpViewer(this); }
    ~Viewer() override { mdlHTMLHelp::setHelpViewer(nullptr); }
    long open(const std::string& file, long, std::optional<long> topic) override {
        opened = file + (topic ? "#" + std::to_string(*topic) : "");
        return 77;
    }
    bool isWindow(long handle) override { return handle == 77; }
    void close(long handle) override { closed = handle; }

    std::string opened;
    long closed = 0;
};

TEST_F(Localize, HelpFollowsTheUsersLanguageAndItsWindowIsClosed) {
    const std::string base = (host.programFolder() / "QuillonService").string();
    core::gLanguageId = 1036;
    EXPECT_EQ(mdlHTMLHelp::getHelpFileName(), base + ".chm");
    makeFile("QuillonService_ENU.chm");
    EXPECT_EQ(mdlHTMLHelp::getHelpFileName(), base + "_ENU.chm");
    makeFile("QuillonService_DEU.chm");
    EXPECT_EQ(mdlHTMLHelp::getHelpFileName(), base + "_DEU.chm");

    support::ManualClock clock;
    mdlHTMLHelp::showCHMHelp("x.chm", 1);
    EXPECT_EQ(core::gHelpWindow, 0);
    mdlHTMLHelp::closeHelpWindow();
    Viewer viewer;
    mdlHTMLHelp::closeHelpWindow();
    EXPECT_EQ(viewer.closed, 0);
    mdlHTMLHelp::showCHMHelp("x.chm", 1, 5);
    EXPECT_EQ(viewer.opened, "x.chm#5");
    EXPECT_EQ(
        host.countInLog("VerInfo:(                     [mdlHTMLHelp]showCHMHelp)   hwndHelp returned = 77"),
        1);
    mdlHTMLHelp::closeHelpWindow();
    EXPECT_EQ(viewer.closed, 77);
    EXPECT_EQ(clock.slept, std::chrono::milliseconds(1500));
}

TEST_F(Localize, AFileWithoutVersionRecordHasNoVersion) {
    makeFile("HbQlnSvc.exe");
    EXPECT_EQ(mdlVerInfo::getFileVersionString((host.programFolder() / "HbQlnSvc.exe").string()), "");
    EXPECT_EQ(mdlVerInfo::getFileVersionString((host.programFolder() / "missing").string()), "");
    EXPECT_EQ(mdlVerInfo::productName(), "QLNAdmin");
}

}  // namespace
