// The service's real program beside real receivers: one record on every kind of device, and the states in
// which it has to wait, to go on and to end.
#include <arpa/inet.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>

#include <fstream>
#include <functional>
#include <thread>

#include "platform/failure.h"
#include "platform/files/descriptor.h"
#include "platform/files/fileLock.h"
#include "platform/files/files.h"
#include "platform/machine/eventLog.h"
#include "platform/machine/host.h"
#include "platform/registry/registry.h"
#include "support/childProcess.h"
#include "support/freePort.h"
#include "support/receiver.h"
#include "support/serviceHost.h"

namespace {

namespace fs = std::filesystem;
using platform::ServiceState;
using std::chrono::milliseconds;
using std::chrono::seconds;
using std::chrono::steady_clock;
using Lines = std::vector<std::string>;

constexpr char productKey[] = "SOFTWARE\\Tessaly\\ToolRack\\Diagnostic Tools\\Quillon Service\\";

// Waits until the condition holds; false when it does not within the time.
bool holdsWithin(seconds patience, const std::function<bool()>& condition) {
    for (const auto end = steady_clock::now() + patience; steady_clock::now() < end;
         std::this_thread::sleep_for(milliseconds(20)))
        if (condition())
            return true;
    return condition();
}

std::string textOf(const fs::path& file) {
    return fs::exists(file) ? platform::files::readFile(file) : std::string();
}

sockaddr_in loopback(std::uint16_t port) {
    sockaddr_in place{};
    place.sin_family = AF_INET;
    place.sin_port = htons(port);
    place.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return place;
}

bool isListening(const std::string& port) {
    const platform::Descriptor socket(::socket(AF_INET, SOCK_STREAM, 0));
    const sockaddr_in place = loopback(static_cast<std::uint16_t>(std::stoi(port)));
    return ::connect(socket.get(), reinterpret_cast<const sockaddr*>(&place), sizeof place) == 0;
}

class ServiceProgram : public testing::Test {
  protected:
    ServiceProgram() {
        fs::copy_file(host.databaseFolder() / "QLNDB_FRESH.MDB", host.databaseFile());
        run("UPDATE Configuration SET Value = '" + log().string() +
            "' WHERE Setting = 'OutputFilePath';"
            "UPDATE Configuration SET Value = '0' WHERE Setting = 'EventNotificationInterval';"
            "INSERT INTO Recipients VALUES (1, 'Night desk', -1);"
            "INSERT INTO Events VALUES (10, 'Disk', -1, '', 4, -1, 0, NULL);"
            "INSERT INTO Contents VALUES (10, 1, 'call.wav', 0, '<Description>', 'Look'), "
            "(10, 3, NULL, 2, '<Description>', 'Look');");
        host.makeDirectory({"CREATE TABLE GlobalSubscriber(Alias, DisplayName, DirectoryId)",
                            "CREATE TABLE DistributionList(Alias, DisplayName, DirectoryId)",
                            "INSERT INTO GlobalSubscriber VALUES ('zoe', 'Zo\xC3\xAB', 'DIR-1')"});
        host.installService();
    }

    void run(const std::string& statements) { support::run(host.databaseFile(), statements); }
    fs::path log() const { return host.root() / "Service" / "HbQlnSvc.log"; }
    fs::path mailbox(const std::string& address) const {
        return platform::host::folder() / "mail" / address / "new";
    }
    std::size_t mailsTo(const std::string& address) const {
        return fs::exists(mailbox(address)) ? platform::files::listFiles(mailbox(address)).size() : 0;
    }
    void addDevice(int type, const std::string& address) {
        const std::string key = std::to_string(++devices);
        run("INSERT INTO Device VALUES (" + key + ", " + std::to_string(type) + ", '" + address +
            "', -1); INSERT INTO DeviceRecipient VALUES (" + key +
            ", 1); INSERT INTO EventDevice VALUES (10, " + key + ", -1);");
    }
    void start() {
        platform::Service service(platform::ServiceManager(platform::managerExecute), "HbQlnSvc",
                                  platform::serviceStart);
        ASSERT_EQ(service.start(), platform::noError);
        ASSERT_TRUE(host.reaches(ServiceState::running));
    }
    // How long the service takes to go.
    milliseconds stop() {
        const auto begin = steady_clock::now();
        platform::Service service(platform::ServiceManager(platform::managerExecute), "HbQlnSvc",
                                  platform::serviceStop);
        EXPECT_EQ(service.control(platform::ServiceControl::stop), platform::noError);
        EXPECT_TRUE(holdsWithin(seconds(20), [&] { return host.processes() == 0; }));
        return std::chrono::duration_cast<milliseconds>(steady_clock::now() - begin);
    }
    void write(const std::string& description) {
        platform::appendEvent({"Application", "", "Disk", 51, 1, 0, "", "CORVANE01", description});
    }
    Lines history() const {
        return support::query(host.databaseFile(), "SELECT count(*) FROM NotificationLog");
    }
    bool isLogged(const std::string& text) const { return textOf(log()).find(text) != std::string::npos; }

    support::ServiceHost host;
    int devices = 0;
};

TEST_F(ServiceProgram, TellsEveryKindOfDeviceOfOneRecord) {
    const std::string trapPort = support::freePort(SOCK_DGRAM);
    const std::string syslogPort = support::freePort(SOCK_STREAM);
    const fs::path mails = host.root() / "taken";
    const fs::path lines = host.root() / "received";
    const auto mailServer = support::startMailServer(host.root(), mails, "ok");
    const auto traps = support::startTrapReceiver(host.root(), trapPort, "authCommunity log quillon\n");
    const auto syslog = support::startSyslogServer(
        host.root(), lines,
        "module(load=\"imtcp\")\ninput(type=\"imtcp\" address=\"127.0.0.1\" port=\"" + syslogPort + "\")");
    host.setRegistry(std::string(productKey) + "Mail", "Relay",
                     "smtp://localhost:" + mailServer->firstLine());
    host.setRegistry(std::string(productKey) + "Mail", "Domain", std::string("corvane.example"));
    host.setRegistry(std::string(productKey) + "Pager", "Gateway", std::string("<Number>@pager.example"));
    host.setRegistry(std::string(productKey) + "Snmp", "Inform", std::string("1"));
    host.setRegistry("SYSTEM\\CurrentControlSet\\Services\\SNMP\\Parameters\\TrapConfiguration\\quillon", "1",
                     "127.0.0.1:" + trapPort);
    host.createRegistryKey("SOFTWARE\\Tessaly\\TsHubNodeMgr\\1.0");
    platform::files::writeFile(host.databaseFolder() / "call.wav", "RIFF");
    addDevice(1, "DIR-1");
    addDevice(2, "+49 30 555");
    addDevice(3, "DIR-1");
    addDevice(4, "night@example.net");
    addDevice(5, "SNMP TRAP");
    addDevice(6, "tcp://localhost:" + syslogPort);
    addDevice(7, "FAILOVER");
    traps->firstLine();
    ASSERT_TRUE(holdsWithin(seconds(10), [&] { return isListening(syslogPort); }));
    start();
    write("Zo\xC3\xAB \xE2\x80\x93 at once");

    // At once also where the event logs' folder comes only with the first record.
    ASSERT_TRUE(holdsWithin(seconds(8), [&] { return history() == Lines{"7"}; })) << textOf(log());
    EXPECT_FALSE(isLogged("read from its beginning"));
    std::string all;
    for (const auto& file : platform::files::listFiles(mails)) {
        const std::string mail = platform::files::readFile(mails / file.name);
        all += mail;
        const bool isCall = mail.find("audio/x-wav") != std::string::npos;
        // The call goes by the voice's priority, low, the mail by its own, urgent.
        const bool isHers = mail.find("\nto zoe@corvane.example\n") != std::string::npos;
        EXPECT_TRUE(!isHers || mail.find(isCall ? "X-Priority: 5" : "X-Priority: 1") != std::string::npos)
            << mail;
    }
    for (const char* address : {"zoe@corvane.example", "+4930555@pager.example", "night@example.net"})
        EXPECT_NE(all.find("\nto " + std::string(address) + "\n"), std::string::npos) << all;
    EXPECT_EQ(platform::files::listFiles(mails).size(), 4u);
    EXPECT_NE(textOf(lines).find("|51|[quillon@32473 source=\"Disk\" id=\"51\"]|\xEF\xBB\xBFZo\xC3\xAB"),
              std::string::npos);
    EXPECT_NE(traps->output().find("4.1.32473.1.1.5.0 = Zo\xC3\xAB \xE2\x80\x93 at once"), std::string::npos)
        << traps->output();
    EXPECT_EQ(platform::registry().value("HKEY_LOCAL_MACHINE\\SOFTWARE\\Tessaly\\TsHubNodeMgr\\1.0",
                                         "ForcedFailover"),
              platform::RegistryValue(std::uint32_t{1}));
    for (const char* answer : {"250 2.0.0 Taken", "Handed over to the node manager"})
        EXPECT_TRUE(isLogged(answer)) << textOf(log());
    EXPECT_LT(stop(), seconds(2));
}

TEST_F(ServiceProgram, ATroubledReceiverHoldsUpNoOtherAndNoStop) {
    // It takes connections and never says a word.
    const platform::Descriptor silent(::socket(AF_INET, SOCK_STREAM, 0));
    sockaddr_in place = loopback(0);
    socklen_t size = sizeof place;
    ASSERT_EQ(::bind(silent.get(), reinterpret_cast<sockaddr*>(&place), size), 0);
    ASSERT_EQ(::listen(silent.get(), 8), 0);
    ASSERT_EQ(::getsockname(silent.get(), reinterpret_cast<sockaddr*>(&place), &size), 0);
    const std::string silentPort = std::to_string(ntohs(place.sin_port));
    const std::string deadPort = support::freePort(SOCK_DGRAM);
    host.setRegistry("SYSTEM\\CurrentControlSet\\Services\\SNMP\\Parameters\\TrapConfiguration\\quillon", "1",
                     "127.0.0.1:" + deadPort);
    host.setRegistry(std::string(productKey) + "Snmp", "Inform", std::string("1"));
    addDevice(4, "night@example.net");
    addDevice(5, "SNMP TRAP");
    addDevice(6, "tls://127.0.0.1:" + silentPort);
    addDevice(6, "no-such-host.invalid");
    addDevice(7, "FAILOVER");
    host.createRegistryKey("SOFTWARE\\Tessaly\\TsHubNodeMgr\\1.0");
    const auto stopsWhile = [&](const std::string& relay, const std::string& what) {
        SCOPED_TRACE(what);
        host.setRegistry(std::string(productKey) + "Mail", "Relay", relay);
        start();
        // The failover cannot be asked for: somebody holds the registry against changes.
        const std::string lock = platform::host::registryFile().string() + ".lock";
        const platform::Descriptor held(::open(lock.c_str(), O_RDWR | O_CLOEXEC));
        EXPECT_TRUE(platform::files::lockWithin(held, lock, seconds(5)));
        write(what);
        EXPECT_TRUE(holdsWithin(seconds(10), [&] { return isLogged(what) || isLogged("Found in the"); }));
        // Time to get stuck.
        std::this_thread::sleep_for(milliseconds(500));
        EXPECT_LT(stop(), seconds(2));
    };
    stopsWhile("smtp://127.0.0.1:" + silentPort, "a relay that says nothing");
    for (const char* mode : {"slow", "busy", "refuse"}) {
        const auto server = support::startMailServer(host.root(), host.root() / mode, mode);
        stopsWhile("smtp://localhost:" + server->firstLine(), mode);
    }
    stopsWhile("smtp://127.0.0.1:" + support::freePort(SOCK_STREAM), "a relay that is not there");
    // With nobody in its way, the mailbox has what waited, and the others are still waited for.
    host.setRegistry(std::string(productKey) + "Mail", "Relay", std::string());
    start();
    write("the last");
    EXPECT_TRUE(holdsWithin(seconds(15), [&] { return mailsTo("night@example.net") >= 1; })) << textOf(log());
    EXPECT_LT(stop(), seconds(2));
}

TEST_F(ServiceProgram, WhatALockedDatabaseKeepsItFromDoingIsDoneLater) {
    addDevice(4, "night@example.net");
    start();
    const char* const asked = std::getenv("QLN_LOCK_SECONDS");
    const seconds held(asked ? std::stoi(asked) : 7);
    {
        support::Database other(host.databaseFile());
        other.run("BEGIN EXCLUSIVE");
        write("while it was locked");
        std::this_thread::sleep_for(held);
        other.run("COMMIT");
    }
    EXPECT_TRUE(holdsWithin(seconds(20), [&] { return history() == Lines{"1"}; })) << textOf(log());
    EXPECT_EQ(mailsTo("night@example.net"), 1u);
    EXPECT_TRUE(isLogged("locked"));
    support::Database other(host.databaseFile());
    other.run("BEGIN EXCLUSIVE");
    write("at the end");
    std::this_thread::sleep_for(milliseconds(300));
    EXPECT_LT(stop(), seconds(2));
}

TEST_F(ServiceProgram, AFullDiskLosesNothing) {
    addDevice(4, "night@example.net");
    const auto ran = support::runOnSmallDisk(host.root() / "Service", 120000, [&] {
        host.placeProgram(support::serviceProgram(), "HbQlnSvc.exe");
        start();
        const fs::path ballast = host.root() / "Service" / "ballast";
        const auto fill = [&] {
            std::ofstream stream(ballast, std::ios::binary | std::ios::app);
            while (stream << std::string(1024, 'x') << std::flush) {
            }
        };
        ASSERT_TRUE(
            holdsWithin(seconds(5), [&] { return fs::exists(host.root() / "Service" / "HbQlnSvc.db"); }));
        fill();
        for (int i = 0; i < 40; ++i)
            write("number " + std::to_string(i) + std::string(4000, 'x'));
        std::this_thread::sleep_for(seconds(2));
        EXPECT_EQ(host.processes(), 1) << "it goes on";
        EXPECT_LT(std::stoi(history().at(0)), 40);
        fs::remove(ballast);
        EXPECT_TRUE(holdsWithin(seconds(30), [&] { return history() == Lines{"40"}; })) << textOf(log());
        EXPECT_EQ(mailsTo("night@example.net"), 40u);
        EXPECT_LT(stop(), seconds(2));
    });
    if (ran == support::Ran::impossible)
        GTEST_SKIP() << "this user may not mount";
    EXPECT_EQ(ran, support::Ran::passed);
}

}  // namespace
