// Mail by way of a relay, against a real mail server.
#include "service/transports/smtp.h"

#include <gtest/gtest.h>

#include <thread>

#include "platform/files/files.h"
#include "service/transports/pager.h"
#include "support/receiver.h"
#include "support/temporaryHost.h"

namespace {

namespace fs = std::filesystem;
using service::Outcome;
using service::Result;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

class SmtpTest : public testing::Test {
  protected:
    void serve(const std::string& modes, const support::Certificate& certificate = {}) {
        // One that is still ending must not write where its follower prints its port.
        server.reset();
        server = support::startMailServer(host.root(), folder, modes, &certificate);
        settings.relay = "smtp://localhost:" + server->firstLine();
    }
    service::Message message(const std::string& subject = "Subject", const std::string& body = "Body") {
        service::Message result;
        result.key = "id-" + std::to_string(++number);
        result.address = "night@example.org";
        result.subject = subject;
        result.body = body;
        return result;
    }
    Outcome send(const service::Message& one) {
        service::Smtp smtp(settings);
        return smtp.send(one, {steady_clock::now() + std::chrono::seconds(20)});
    }
    // The mails that the server has taken, each with its envelope.
    std::vector<std::string> mails() const {
        std::vector<std::string> texts;
        for (const auto& file : platform::files::listFiles(folder))
            texts.push_back(platform::files::readFile(folder / file.name));
        return texts;
    }
    // What the server has taken, as another program reads it: an expression on the mail `m`.
    std::string read(const std::string& expression) const {
        const fs::path script = host.root() / "read.py";
        std::string text = mails().at(0);
        platform::files::writeFile(host.root() / "mail.eml", text.substr(text.find("\n\n") + 2));
        platform::files::writeFile(script,
                                   "import sys, email, email.policy\n"
                                   "m = email.message_from_binary_file(open(sys.argv[1], 'rb'), "
                                   "policy=email.policy.default)\n"
                                   "assert not m.defects\n"
                                   "sys.stdout.buffer.write(str(" +
                                       expression + ").encode())\n");
        support::Receiver reader({"/usr/bin/python3", script.string(), (host.root() / "mail.eml").string()},
                                 host.root() / "read.out");
        std::string output;
        for (int i = 0; i < 1000 && output.empty(); ++i, std::this_thread::sleep_for(milliseconds(5)))
            output = reader.output();
        return output;
    }

    support::TemporaryHost host;
    fs::path folder = host.root() / "taken";
    service::SmtpSettings settings{"", false, "", "", "quillon@example.org", ""};
    std::unique_ptr<support::Receiver> server;
    int number = 0;
};

TEST_F(SmtpTest, TheServerHasEveryCharacterAndTheConnectionIsKept) {
    serve("ok");
    const std::string body = ".\r\n..two\n" + std::string(998, 'x') + "\n" + std::string(100000, 'y') +
                             "\n\xE2\x80\xA8 \xF0\x9F\x93\x9F end";
    service::Smtp smtp(settings);
    const service::Deadline deadline{steady_clock::now() + std::chrono::seconds(20)};
    Outcome outcome = smtp.send(message("Zo\xC3\xAB \xE2\x80\x93 at once", body), deadline);
    EXPECT_EQ(outcome.result, Result::delivered) << outcome.answer;
    EXPECT_EQ(outcome.answer, "Delivered: 250 2.0.0 Taken as 001");
    EXPECT_EQ(read("m['subject'] + '|' + m['message-id']"),
              "Zo\xC3\xAB \xE2\x80\x93 at once|<id-1@example.org>");
    std::string plain = body;
    plain.replace(plain.find("\r\n"), 2, "\n");
    EXPECT_EQ(read("m.get_content()"), plain + "\n");
    EXPECT_EQ(smtp.send(message(), deadline).result, Result::delivered);
    service::Message evil = message("x\r\nRCPT TO:<all@example.org>");
    EXPECT_EQ(smtp.send(evil, deadline).result, Result::delivered);
    evil.address = "a@b>\r\nRCPT TO:<all@example.org";
    EXPECT_EQ(smtp.send(evil, deadline).result, Result::refused);
    const auto taken = mails();
    ASSERT_EQ(taken.size(), 3u);
    const auto peer = [](const std::string& mail) { return mail.substr(0, mail.find("\n\n")); };
    EXPECT_EQ(peer(taken[0]), peer(taken[2])) << "one connection, one recipient";
}

TEST_F(SmtpTest, WhatTheServerSaysDecides) {
    serve("refuse");
    Outcome outcome = send(message());
    EXPECT_EQ(outcome.result, Result::refused);
    EXPECT_EQ(outcome.answer, "550 5.1.1 No such user here");
    serve("busy");
    service::Smtp smtp(settings);
    const service::Deadline deadline{steady_clock::now() + std::chrono::seconds(20)};
    outcome = smtp.send(message(), deadline);
    EXPECT_EQ(outcome.result, Result::tryAgain);
    EXPECT_EQ(outcome.answer, "451 4.3.0 Try again later");
    EXPECT_EQ(smtp.send(message(), deadline).result, Result::delivered);
    serve("login");
    EXPECT_EQ(send(message()).result, Result::refused) << "without a sign-in";
    settings.user = "user";
    settings.password = "wrong";
    outcome = send(message());
    EXPECT_EQ(outcome.result, Result::refused);
    EXPECT_EQ(outcome.answer, "535 5.7.8 Wrong password");
    settings.password = "secret";
    EXPECT_EQ(send(message()).result, Result::delivered);
    EXPECT_EQ(service::Smtp(settings).probe(deadline).result, Result::delivered);
    EXPECT_EQ(mails().size(), 2u) << "a look at the relay sends nothing";
    server.reset();
    EXPECT_EQ(send(message()).result, Result::tryAgain);
    for (const char* relay :
         {"", "http://localhost", "smtp://", "smtp://a:b@localhost", "smtp://localhost/x", "nonsense"}) {
        settings.relay = relay;
        EXPECT_EQ(send(message()).result, Result::refused) << relay;
    }
}

TEST_F(SmtpTest, NothingIsSentWhereTheConnectionIsNotSafe) {
    const auto right = support::makeCertificate(host.root(), "right", "DNS:localhost");
    const auto other = support::makeCertificate(host.root(), "other", "DNS:elsewhere.example");
    const auto expired = support::makeCertificate(host.root(), "expired", "DNS:localhost", -1);
    settings.requiresTls = true;
    settings.caFile = right.certificate.string();
    serve("ok");
    EXPECT_EQ(send(message()).result, Result::refused) << "no TLS is offered";
    serve("tls", right);
    Outcome outcome = send(message());
    EXPECT_EQ(outcome.result, Result::delivered) << outcome.answer;
    EXPECT_NE(mails().at(0).find("\ntls True\n"), std::string::npos);
    settings.caFile = other.certificate.string();
    EXPECT_EQ(send(message()).result, Result::refused) << "an authority that is not known";
    serve("tls", other);
    outcome = send(message());
    EXPECT_EQ(outcome.result, Result::refused) << "the certificate of another host: " << outcome.answer;
    serve("tls", expired);
    settings.caFile = expired.certificate.string();
    outcome = send(message());
    EXPECT_EQ(outcome.result, Result::refused);
    EXPECT_NE(outcome.answer.find("not safe"), std::string::npos) << outcome.answer;
    EXPECT_EQ(mails().size(), 1u);
}

TEST_F(SmtpTest, AServerThatDoesNotAnswerHoldsNobody) {
    for (const char* mode : {"hang", "slow"}) {
        serve(mode);
        service::Smtp smtp(settings);
        auto begin = steady_clock::now();
        EXPECT_EQ(smtp.send(message(), {begin + milliseconds(300)}).result, Result::tryAgain);
        EXPECT_LT(steady_clock::now() - begin, milliseconds(1000)) << mode;
        std::atomic<bool> isCancelled = false;
        std::thread stop([&] {
            std::this_thread::sleep_for(milliseconds(100));
            isCancelled = true;
        });
        begin = steady_clock::now();
        EXPECT_EQ(smtp.send(message(), {begin + std::chrono::seconds(60), &isCancelled}).result,
                  Result::tryAgain);
        stop.join();
        EXPECT_LT(steady_clock::now() - begin, milliseconds(1000)) << mode;
    }
}

TEST_F(SmtpTest, APageIsAShortMailToTheGateway) {
    serve("ok");
    service::Pager pager(std::make_unique<service::Smtp>(settings), "<Number>@pager.example");
    const service::Deadline deadline{steady_clock::now() + std::chrono::seconds(20)};
    service::Message page = message("Sub\r\nject", std::string(200, 'x'));
    page.address = "+49 (30) 555-1";
    EXPECT_EQ(pager.send(page, deadline).result, Result::handedOver);
    EXPECT_NE(mails().at(0).find("\nto +49305551@pager.example\n"), std::string::npos);
    EXPECT_EQ(read("m.get_content()"), "Sub ject " + std::string(151, 'x') + "\n");
    page.address = "ask Bob";
    EXPECT_EQ(pager.send(page, deadline).result, Result::refused);
    std::string umlauts;
    for (int i = 0; i < 200; ++i)
        umlauts += "\xC3\xA4";
    EXPECT_EQ(service::pageText("", umlauts).size(), 320u) << "characters, not bytes";
}

}  // namespace
