// Making hosts, and the tool that does it from a shell.
#include "host/provision.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>

#include "platform/ado/ado.h"
#include "platform/failure.h"
#include "platform/files/files.h"
#include "platform/machine/eventLog.h"
#include "platform/machine/host.h"
#include "platform/registry/registry.h"
#include "platform/services/accounts.h"
#include "platform/services/serviceManager.h"
#include "support/temporaryHost.h"

namespace {

namespace fs = std::filesystem;
using support::query;

class Provision : public ::testing::Test {
  protected:
    Provision() {
        std::string pattern = (fs::temp_directory_path() / "qln-host-XXXXXX").string();
        root = mkdtemp(pattern.data());
    }
    ~Provision() override {
        platform::host::setFolder({});
        std::error_code ignored;
        fs::remove_all(root, ignored);
    }

    struct Answer {
        int code;
        std::string text;  // both streams
    };
    Answer qlnhost(const std::string& arguments, const std::string& input = {}) {
        std::ofstream(root / "input") << input;
        const std::string command =
            std::string(QLNHOST_PROGRAM) + " " + arguments + " <" + (root / "input").string() + " 2>&1";
        FILE* pipe = popen(command.c_str(), "r");
        Answer answer{-1, {}};
        std::array<char, 4096> piece{};
        while (const std::size_t size = fread(piece.data(), 1, piece.size(), pipe))
            answer.text.append(piece.data(), size);
        answer.code = WEXITSTATUS(pclose(pipe));
        return answer;
    }
    std::string writeCsv(const std::string& text) {
        const fs::path file = root / "people.csv";
        std::ofstream(file) << text;
        return file.string();
    }

    fs::path root;
};

TEST_F(Provision, TheTemplateHoldsEveryTableWithItsIndexesDefaultsAndBuiltInRows) {
    const fs::path file = root / "template.db";
    host::createTemplateDatabase(file);
    host::createTemplateDatabase(file);  // replaces what is there
    EXPECT_EQ(query(file, "SELECT count(*) FROM sqlite_master WHERE type = 'index' AND sql IS NOT NULL")[0],
              "7");
    EXPECT_EQ(query(file, "PRAGMA integrity_check")[0], "ok");
    EXPECT_EQ(query(file, "SELECT EventTitle, EventActive, EventCollection FROM Events ORDER BY EventKey"),
              (std::vector<std::string>{"$$IGNORE|0|0", "All Meridane Corvane Errors|0|-1"}));
    EXPECT_EQ(query(file, "SELECT Value FROM Configuration WHERE Setting = 'WarnOnDuplicateMonitoredEvents'"),
              std::vector<std::string>{"-1"});
    EXPECT_EQ(query(file, "SELECT Value FROM Configuration WHERE Setting = 'OutputFilePath'")[0], "");
    host::createTemplateDatabase(file, root / "it's a log");
    EXPECT_EQ(query(file, "SELECT Value FROM Configuration WHERE Setting = 'OutputFilePath'")[0],
              (root / "it's a log").string());
    EXPECT_GT(std::stol(query(file, "SELECT count(*) FROM \"31Sources\"")[0]), 40);
    // The first exclusion gets the key 0, as after the upgrade.
    platform::Connection connection;
    connection.open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + file.string());
    platform::Recordset exclusions;
    exclusions.open("SELECT * FROM Exclusions", connection, platform::CursorType::keyset,
                    platform::LockType::optimistic);
    exclusions.addNew();
    exclusions.set("EventSource", std::string("a"));
    exclusions.update();
    EXPECT_EQ(query(file, "SELECT ExclusionKey FROM Exclusions")[0], "0");
}

TEST_F(Provision, ADemonstrationHostIsComplete) {
    host::HostOptions options;
    options.failoverPrimary = options.snmpAgent = true;
    host::createHost(root, options);
    EXPECT_THROW(host::createHost(root, options), platform::Failure) << "a host is never made over";
    const fs::path directory = platform::host::directoryDatabase();
    EXPECT_EQ(query(directory,
                    "SELECT count(*), count(DISTINCT DirectoryId), count(DISTINCT DtmfAccessId) FROM "
                    "GlobalSubscriber")[0],
              "240|240|240");
    EXPECT_EQ(query(directory,
                    "SELECT group_concat(SubscriberType) FROM (SELECT DISTINCT SubscriberType FROM "
                    "Subscriber ORDER BY 1)")[0],
              "1,2,3,5,7,8");
    EXPECT_EQ(query(directory,
                    "SELECT count(*) FROM Subscriber INNER JOIN CallHandler ON "
                    "Subscriber.CallHandlerObjectId = CallHandler.CallHandlerObjectId INNER JOIN "
                    "GlobalSubscriber ON GlobalSubscriber.DirectoryId = Subscriber.DirectoryId")[0],
              "240");
    EXPECT_EQ(query(directory, "SELECT count(DISTINCT DisplayName) FROM DistributionList")[0], "24");
    EXPECT_EQ(platform::readEvents("Application").size() + platform::readEvents("System").size(), 10u);
    EXPECT_TRUE(platform::verifyAccount(host::demonstrationAccount, host::demonstrationPassword));
    EXPECT_EQ(platform::queryServiceStatus("hbqlnsvc").state, platform::ServiceState::stopped);
    EXPECT_EQ(platform::queryServiceStatus("hbqlnsvc").error, 0u);
    auto value = platform::registry().value("HKEY_LOCAL_MACHINE\\Software\\Tessaly\\", "version number");
    EXPECT_EQ(std::get<std::uint32_t>(value.value()), 0x00040000u);
    for (const char* path : {"SOFTWARE\\Tessaly\\TsHubNodeMgr\\1.0",
                             "SYSTEM\\CurrentControlSet\\Services\\SNMP\\Parameters\\ExtensionAgents"})
        EXPECT_TRUE(platform::registry().keyExists(std::string("HKEY_LOCAL_MACHINE\\") + path)) << path;
    const std::string wave = platform::files::readFile(root / "Database" / "QLN_Default_ENU.wav");
    EXPECT_EQ(wave.substr(0, 4) + wave.substr(8, 4), "RIFFWAVE");
}

TEST_F(Provision, TheNewerLayoutHasViewsAndNoGlobalAccessId) {
    host::HostOptions options;
    options.layout = host::DirectoryLayout::views;
    options.corvaneMajor = 3;
    options.subscribers = 30;
    host::createHost(root, options);
    const fs::path directory = platform::host::directoryDatabase();
    for (const char* view : {"vw_Subscriber_Global", "vw_Subscriber", "vw_CallHandler"})
        EXPECT_EQ(query(directory, std::string("SELECT count(*) FROM ") + view)[0], "30") << view;
    EXPECT_EQ(query(directory, "SELECT count(*) FROM vw_DistributionList")[0], "24");
    platform::Connection connection;
    connection.open("Provider=SQLOLEDB.1;Initial Catalog=CorvaneDb");
    platform::Recordset probe;
    try {
        probe.open("SELECT DtmfAccessId FROM GlobalSubscriber", connection);
        ADD_FAILURE() << "the column is there";
    } catch (const platform::Failure& failure) {
        EXPECT_EQ(failure.number(), platform::statementFailed);
    }
}

TEST_F(Provision, ImportsCsvIntoEitherLayoutOrRefusesItWhole) {
    for (const auto layout : {host::DirectoryLayout::tables, host::DirectoryLayout::views}) {
        host::HostOptions options;
        options.layout = layout;
        options.subscribers = 3;
        options.distributionLists = 0;
        host::createHost(root / std::to_string(static_cast<int>(layout)), options);
        EXPECT_EQ(
            host::importDirectory("\xEF\xBB\xBF"
                                  "Alias,FirstName,LastName,Extension,Type,DirectoryId\r\n"
                                  "\"q\"\"x\",Quincy,\"Xu, Jr.\",70,1,id-1\r\n\r\nzz,Zoë,O'Hara,71,8,\r\n",
                                  "a.csv"),
            2);
        EXPECT_EQ(host::importDirectory("alias,displayname,extension\nzz,The Zs,99\n", "b.csv"), 1);
        const bool views = layout == host::DirectoryLayout::views;
        const std::string people = views ? "vw_Subscriber" : "Subscriber";
        EXPECT_EQ(query(platform::host::directoryDatabase(),
                        "SELECT DisplayName, DirectoryId FROM " + people + " WHERE Alias = 'q\"x'"),
                  std::vector<std::string>{"Quincy Xu, Jr.|id-1"});
        EXPECT_EQ(
            query(platform::host::directoryDatabase(),
                  "SELECT count(*) FROM " + std::string(views ? "vw_DistributionList" : "DistributionList")),
            std::vector<std::string>{"1"});
        // One bad row, and none is taken.
        const std::pair<const char*, const char*> refused[] = {
            {"Alias,FirstName,LastName,Extension,Type\nn1,N,One,80,1\nn2,N,Two,81,one\n", "c.csv:3: "},
            {"Alias,FirstName,LastName,Extension,Type\nn1,N,One,80,1\nn2,N\n", "c.csv:3: "},
            {"Alias,DisplayName,Extension\nn1,\"no end\n", "c.csv:2: a quote without its end"},
            {"Alias,Shoe\nn1,44\n", "c.csv:1: unknown column 'shoe'"},
            {"", "c.csv:1: no header line"}};
        for (const auto& [csv, reason] : refused) {
            try {
                host::importDirectory(csv, "c.csv");
                ADD_FAILURE() << csv;
            } catch (const platform::Failure& failure) {
                EXPECT_TRUE(failure.description().starts_with(reason)) << failure.description();
            }
        }
        EXPECT_EQ(query(platform::host::directoryDatabase(),
                        "SELECT count(*) FROM " + people + " WHERE Alias LIKE 'n_'"),
                  std::vector<std::string>{"0"});
    }
}

TEST_F(Provision, TheToolMakesAndInspectsAHost) {
    const std::string dir = (root / "demo").string();
    EXPECT_EQ(qlnhost("create " + dir + " --empty --version 3.1 --subscribers 5 --failover").code, 0);
    const Answer again = qlnhost("create " + dir);
    EXPECT_EQ(again.code, 1);
    EXPECT_NE(again.text.find("registry.reg"), std::string::npos) << again.text;
    EXPECT_TRUE(fs::exists(root / "demo" / "QLNAdmin" / "QLNAdmin"));
    EXPECT_TRUE(fs::exists(root / "demo" / "Service" / "HbQlnSvc.ex_"));
    EXPECT_FALSE(fs::exists(root / "demo" / "Database" / "QLNDB.MDB"));
    const std::string on = "--host " + dir + " ";
    EXPECT_EQ(qlnhost(on + "registry get 'SOFTWARE\\Tessaly' 'Version Number'").text, "0x00030001\n");
    EXPECT_EQ(qlnhost(on + "registry set 'HKLM\\SOFTWARE\\New' flag 0x1f --type dword").code, 0);
    EXPECT_EQ(qlnhost(on + "registry set 'SOFTWARE\\New' data '0a ff' --type=binary").code, 0);
    const Answer listing = qlnhost(on + "registry list 'HKEY_LOCAL_MACHINE\\software\\new'");
    EXPECT_NE(listing.text.find("0x0000001f"), std::string::npos) << listing.text;
    EXPECT_NE(listing.text.find("0a ff"), std::string::npos) << listing.text;
    EXPECT_EQ(qlnhost(on + "registry delete 'SOFTWARE\\New' flag").code, 0);
    EXPECT_EQ(qlnhost(on + "registry get 'SOFTWARE\\New' flag").code, 1);
    EXPECT_EQ(qlnhost(on + "registry delete 'SOFTWARE\\New'").code, 0);
    EXPECT_EQ(qlnhost(on + "registry list 'SOFTWARE\\New'").code, 1);
    EXPECT_NE(qlnhost(on + "events System").text.find("Ntp"), std::string::npos);
    EXPECT_EQ(qlnhost(on + "services").text,
              "HbQlnSvc         stopped\nTsHubMgr         stopped\nTsKesnSvr        running\n");
    EXPECT_EQ(qlnhost(on + "services stop TsKesnSvr").code, 0);
    EXPECT_EQ(qlnhost(on + "services start HbQlnSvc").code, 0);
    EXPECT_EQ(qlnhost(on + "services start HbQlnSvc").code, 1);
    EXPECT_EQ(qlnhost(on + "services").text,
              "HbQlnSvc         running\nTsHubMgr         stopped\nTsKesnSvr        stopped\n")
        << "neither command comes back before it is done";
    EXPECT_EQ(qlnhost(on + "services stop HbQlnSvc").code, 0);
    EXPECT_EQ(qlnhost(on + "accounts set 'HOST\\someone'", "secret\n").code, 0);
    EXPECT_EQ(qlnhost(on + "accounts check 'HOST\\someone'", "secret\n").code, 0);
    EXPECT_EQ(qlnhost(on + "accounts check 'HOST\\someone'", "Secret\n").code, 1);
    EXPECT_EQ(qlnhost(on + "accounts delete 'HOST\\someone'").code, 0);
    EXPECT_EQ(qlnhost(on + "accounts delete 'HOST\\someone'").code, 1);
    const Answer import =
        qlnhost(on + "directory import " + writeCsv("Alias,DisplayName,Extension\na,The As,1\nb,The Bs\n"));
    EXPECT_EQ(import.code, 1);
    EXPECT_NE(import.text.find("people.csv:3: 2 fields under 3 columns"), std::string::npos) << import.text;
}

TEST_F(Provision, AFreshHostAwaitsTheConsolesFirstRun) {
    const std::string dir = (root / "demo").string();
    EXPECT_EQ(qlnhost("create " + dir + " --fresh --no-legacy --subscribers 5").code, 0);
    for (const char* part : {"HubServer", "Database/QLNDB.MDB"})
        EXPECT_FALSE(fs::exists(root / "demo" / part)) << part;
    EXPECT_TRUE(fs::exists(root / "demo" / "Service" / "HbQlnSvc.ex_"));
    for (const char* file : {"HbQlnSvc.exe", "HbQlnSvcRes_ENU.dll"})
        EXPECT_FALSE(fs::exists(root / "demo" / "Service" / file)) << file;
    EXPECT_EQ(qlnhost("--host " + dir + " services").text, "TsHubMgr         stopped\n");
    for (const char* source : {"QLNTest", "MeridaneCorvane_HbQlnSvc"})
        EXPECT_EQ(qlnhost("--host " + dir +
                          " registry list 'SYSTEM\\CurrentControlSet\\Services\\EventLog\\"
                          "Application\\" +
                          source + "'")
                      .code,
                  1)
            << source;
}

TEST_F(Provision, TheToolSaysWhatItDoesNotUnderstand) {
    EXPECT_EQ(qlnhost("--help").code, 0);
    const std::pair<const char*, const char*> cases[] = {
        {"", "missing command"},
        {"destroy", "unknown command destroy"},
        {"create", "missing DIR"},
        {"create x --version 5", "--version is 4 or 3.1, not '5'"},
        {"create x --subscribers many", "--subscribers is a whole number"},
        {"create x --colour", "unknown option --colour"},
        {"create 'a\"b'", "neither quotes nor line ends"},
        {"registry list", "no host is named"},
    };
    unsetenv("QLN_HOST");
    for (const auto& [arguments, reason] : cases) {
        const Answer answer = qlnhost(arguments);
        EXPECT_EQ(answer.code, 2) << arguments;
        EXPECT_NE(answer.text.find(reason), std::string::npos) << answer.text;
    }
    const Answer missing = qlnhost("--host " + (root / "nowhere").string() + " services");
    EXPECT_EQ(missing.code, 1);
    EXPECT_NE(missing.text.find("nowhere"), std::string::npos) << missing.text;
}

}  // namespace
