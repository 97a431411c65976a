// SNMP traps and informs, against a real receiver that reads them by this product's own description.
#include "service/transports/snmpTrap.h"

#include <gtest/gtest.h>

#include <fstream>
#include <thread>

#include "support/freePort.h"
#include "support/receiver.h"
#include "support/temporaryHost.h"

namespace {

using service::Outcome;
using service::Result;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

class SnmpTest : public testing::Test {
  protected:
    void serve(const std::string& configuration) {
        server.reset();
        port = support::freePort(SOCK_DGRAM);
        server = support::startTrapReceiver(host.root(), port, configuration);
        settings.sinks = {{"quillon", "127.0.0.1", port}};
    }
    Outcome send(milliseconds patience = std::chrono::seconds(3)) {
        service::Message message;
        message.address = "SNMP TRAP";
        message.subject = "Zo\xC3\xAB";
        message.body = std::string(1500, 'x');
        message.eventSource = "Disk";
        message.eventId = 4'000'000'000;
        message.eventType = 2;
        message.computer = "CORVANE01";
        return service::SnmpTrap(settings).send(message, {steady_clock::now() + patience});
    }
    // Sends until the receiver, which is still starting, has one; gives its line.
    std::string taken(Result expected) {
        for (int i = 0; i < 30; ++i) {
            const Outcome outcome = send();
            EXPECT_TRUE(outcome.result == expected || outcome.result == Result::tryAgain) << outcome.answer;
            std::this_thread::sleep_for(milliseconds(50));
            const std::string text = server->output();
            const std::size_t at = text.find("TRAP ");
            if (at != std::string::npos && text.find('\n', at) != std::string::npos &&
                outcome.result == expected)
                return text.substr(at, text.find('\n', at) - at);
        }
        return server->output();
    }

    support::TemporaryHost host;
    service::SnmpSettings settings;
    std::string port;
    std::unique_ptr<support::Receiver> server;
};

const std::string base = ".1.3.6.1.4.1.32473.1.";

void expectVariables(const std::string& line) {
    const auto holds = [&](const std::string& text) {
        EXPECT_NE(line.find(text), std::string::npos) << text << "\n" << line;
    };
    holds(".1.3.6.1.6.3.1.1.4.1.0 = " + base + "0.1");
    holds(base + "1.1.0 = Disk");
    holds(base + "1.2.0 = 4000000000");
    holds(base + "1.3.0 = 2");
    holds(base + "1.4.0 = CORVANE01");
    holds(base + "1.5.0 = Zo\xC3\xAB");
    holds(base + "1.6.0 = " + std::string(1024, 'x'));
    EXPECT_EQ(line.find(std::string(1025, 'x')), std::string::npos);
}

TEST_F(SnmpTest, ATrapCarriesWhatTheDescriptionNames) {
    serve("authCommunity log quillon\n");
    expectVariables(taken(Result::handedOver));
    settings.informs = true;
    EXPECT_EQ(send().result, Result::delivered);
    settings.sinks.push_back({"quillon", "127.0.0.1", support::freePort(SOCK_DGRAM)});
    const Outcome outcome = send(milliseconds(1500));
    EXPECT_EQ(outcome.result, Result::tryAgain) << "one of two sinks does not answer";
    settings.sinks = {{"quillon", "no-such-host.invalid", "162"}};
    EXPECT_EQ(send().result, Result::tryAgain);
}

TEST_F(SnmpTest, AnInformOfVersionThreeIsSealedAndAnswered) {
    serve("createUser night SHA \"auth phrase 1\" AES \"priv phrase 1\"\nauthUser log night priv\n");
    settings.isVersion3 = settings.informs = true;
    settings.user = "night";
    settings.authPhrase = "auth phrase 1";
    settings.privPhrase = "priv phrase 1";
    expectVariables(taken(Result::delivered));
    // Of a trap the receiver has to know the sender.
    std::string engine = "0x80001f8804";
    for (const char c : service::snmpEngineName()) {
        constexpr char digits[] = "0123456789abcdef";
        engine += {digits[static_cast<unsigned char>(c) >> 4], digits[c & 15]};
    }
    serve("createUser -e " + engine +
          " night SHA \"auth phrase 1\" AES \"priv phrase 1\"\nauthUser log night priv\n");
    settings.informs = false;
    expectVariables(taken(Result::handedOver));
    serve("createUser night SHA \"auth phrase 1\" AES \"priv phrase 1\"\nauthUser log night priv\n");
    settings.informs = true;
    settings.authPhrase = "another phrase";
    EXPECT_NE(send(milliseconds(1500)).result, Result::delivered);
    settings.authPhrase = "short";
    EXPECT_EQ(send().result, Result::refused);
}

}  // namespace
