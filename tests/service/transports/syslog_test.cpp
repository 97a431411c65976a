// Messages to a syslog server, against a real one.
#include "service/transports/syslog.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <fstream>
#include <thread>

#include "platform/files/descriptor.h"
#include "platform/files/files.h"
#include "support/freePort.h"
#include "support/receiver.h"
#include "support/temporaryHost.h"

namespace {

using service::Outcome;
using service::Result;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

class SyslogTest : public testing::Test {
  protected:
    void serve(const std::string& input) {
        server.reset();
        server = support::startSyslogServer(host.root(), received(), input);
    }
    std::filesystem::path received() const { return host.root() / "received"; }
    static service::Message message() {
        service::Message result;
        result.subject = "Zo\xC3\xAB \xE2\x80\x93 at once";
        result.body = "one\r\ntwo\n\n three";
        result.created = std::chrono::system_clock::from_time_t(1'700'000'000) + milliseconds(7);
        result.eventSource = "Di]s\"k\\";
        result.eventId = 4711;
        result.eventType = 1;
        result.computer = "CORVANE 01";
        return result;
    }
    Outcome send(const std::string& address, milliseconds patience = std::chrono::seconds(5)) {
        service::Message one = message();
        one.address = address;
        return service::Syslog({16, caFile}).send(one, {steady_clock::now() + patience});
    }
    // Sends until the server, which is still starting, has taken one; gives its line.
    std::string taken(const std::string& address) {
        std::string text;
        // The server keeps its file open.
        if (std::filesystem::exists(received()))
            std::filesystem::resize_file(received(), 0);
        for (int i = 0; i < 200 && text.find('\n') == std::string::npos; ++i) {
            EXPECT_NE(send(address).result, Result::refused);
            std::this_thread::sleep_for(milliseconds(50));
            text = std::filesystem::exists(received()) ? platform::files::readFile(received()) : "";
        }
        return text.substr(0, text.find('\n'));
    }

    const std::string line =
        "131|2023-11-14T22:13:20.007Z|CORVANE01|HbQlnSvc|-|4711|[quillon@32473 source=\"Di\\]s\\\"k\\\\\" "
        "id=\"4711\"]|"
        "\xEF\xBB\xBFZo\xC3\xAB \xE2\x80\x93 at once one two three";
    support::TemporaryHost host;
    std::string caFile;
    std::unique_ptr<support::Receiver> server;
};

TEST_F(SyslogTest, TheServersOwnParserFindsEveryField) {
    std::string port = support::freePort(SOCK_DGRAM);
    serve("module(load=\"imudp\")\ninput(type=\"imudp\" address=\"127.0.0.1\" port=\"" + port + "\")");
    EXPECT_EQ(taken("127.0.0.1:" + port), line);
    EXPECT_EQ(taken("udp://localhost:" + port), line) << "also where the name's first address is another";
    port = support::freePort(SOCK_STREAM);
    serve("module(load=\"imtcp\")\ninput(type=\"imtcp\" address=\"127.0.0.1\" port=\"" + port + "\")");
    EXPECT_EQ(taken("tcp://localhost:" + port), line);
    server.reset();
    EXPECT_EQ(send("tcp://localhost:" + port).result, Result::tryAgain);
    EXPECT_EQ(send("localhost:" + support::freePort(SOCK_DGRAM)).result, Result::tryAgain);
}

TEST_F(SyslogTest, OverTlsTheServerHasToProveWhoItIs) {
    const auto right = support::makeCertificate(host.root(), "right", "DNS:localhost");
    const auto other = support::makeCertificate(host.root(), "other", "DNS:elsewhere.example");
    const std::string port = support::freePort(SOCK_STREAM);
    serve("global(defaultNetstreamDriver=\"ossl\" defaultNetstreamDriverCAFile=\"" +
          right.certificate.string() + "\" defaultNetstreamDriverCertFile=\"" + right.certificate.string() +
          "\" defaultNetstreamDriverKeyFile=\"" + right.key.string() +
          "\")\nmodule(load=\"imtcp\" streamDriver.name=\"ossl\" streamDriver.mode=\"1\" "
          "streamDriver.authMode=\"anon\")\ninput(type=\"imtcp\" address=\"127.0.0.1\" port=\"" +
          port + "\")");
    caFile = right.certificate.string();
    EXPECT_EQ(taken("tls://localhost:" + port), line);
    std::filesystem::remove(received());
    EXPECT_EQ(send("tls://127.0.0.1:" + port).result, Result::refused) << "the certificate is for a name";
    caFile = other.certificate.string();
    const Outcome outcome = send("tls://localhost:" + port);
    EXPECT_EQ(outcome.result, Result::refused);
    EXPECT_NE(outcome.answer.find("not safe"), std::string::npos) << outcome.answer;
    EXPECT_FALSE(std::filesystem::exists(received()));
}

TEST_F(SyslogTest, AddressesAndLinesAreHeldToTheirForm) {
    for (const char* bad : {"", "host:", "host:0", "host:70000", "a b", "http://host", "host:port", "[::1",
                            "[::1]x", "tcp://", "host\n:1"})
        EXPECT_EQ(send(bad).result, Result::refused) << bad;
    EXPECT_EQ(service::syslogTarget("[::1]:99").host, "::1");
    EXPECT_EQ(service::syslogTarget("[::1]:99").port, "99");
    EXPECT_EQ(service::syslogTarget("fe80::1").port, "514");
    EXPECT_EQ(service::syslogTarget("tls://loghost").port, "6514");
    EXPECT_EQ(service::syslogFacility("local7"), 23);
    EXPECT_EQ(service::syslogFacility("24"), -1);
    service::Message big = message();
    big.body = "";
    for (int i = 0; i < 2000; ++i)
        big.body += "\xC3\xA4";
    const std::string cut = service::syslogLine(big, 3, 2048);
    EXPECT_GE(cut.size(), 2047u);
    EXPECT_EQ(cut.substr(cut.size() - 2), "\xC3\xA4") << "not within a character";
    EXPECT_EQ(send("no-such-host.invalid").result, Result::tryAgain);

    // One that takes the connection and says nothing.
    const platform::Descriptor dull(::socket(AF_INET, SOCK_STREAM, 0));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    ASSERT_EQ(::bind(dull.get(), reinterpret_cast<sockaddr*>(&address), size), 0);
    ASSERT_EQ(::listen(dull.get(), 8), 0);
    ::getsockname(dull.get(), reinterpret_cast<sockaddr*>(&address), &size);
    const auto begin = steady_clock::now();
    EXPECT_EQ(send("tls://localhost:" + std::to_string(ntohs(address.sin_port)), milliseconds(300)).result,
              Result::tryAgain);
    EXPECT_LT(steady_clock::now() - begin, milliseconds(1500));
}

}  // namespace
