#include "service/transports/mailbox.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <sstream>

#include "platform/files/files.h"
#include "support/temporaryHost.h"

namespace fs = std::filesystem;

namespace {

class MailboxTest : public testing::Test {
  protected:
    void SetUp() override { fs::create_directories(folder_.parent_path()); }
    service::Outcome send(const service::Message& message) {
        return mailbox_.send(message, {std::chrono::steady_clock::now() + std::chrono::seconds(5)});
    }
    static service::Message message() {
        service::Message result;
        result.key = "{4/7}";
        result.address = "zoe@example.com";
        result.subject = "Zoë – at once\r\nBcc: all@example.com";
        result.created = std::chrono::system_clock::from_time_t(1'700'000'000);
        return result;
    }
    fs::path arrived() const { return folder_ / "zoe@example.com" / "new"; }
    std::string mail() const {
        const auto files = platform::files::listFiles(arrived());
        EXPECT_EQ(files.size(), 1u);
        return files.empty() ? std::string() : platform::files::readFile(arrived() / files.front().name);
    }
    // What another program's reader of mails prints for an expression on the mail `m`.
    std::string read(const std::string& expression) const {
        const fs::path file = host_.root() / "mail.eml";
        platform::files::writeFile(file, mail());
        const std::string command =
            "/usr/bin/python3 -c \"import sys, email, email.policy\n"
            "m = email.message_from_binary_file(open('" +
            file.string() +
            "', 'rb'), policy=email.policy.default)\n"
            "assert not m.defects, m.defects\n"
            "v = " +
            expression + "\nsys.stdout.buffer.write(v if isinstance(v, bytes) else str(v).encode())\"";
        const std::unique_ptr<FILE, int (*)(FILE*)> pipe(::popen(command.c_str(), "r"), &::pclose);
        std::string output(1 << 20, '\0');
        output.resize(std::fread(output.data(), 1, output.size(), pipe.get()));
        return output;
    }

    support::TemporaryHost host_;
    fs::path folder_ = host_.root() / "Host" / "mail";
    service::Mailbox mailbox_{folder_, "quillon@example.com"};
};

unsigned modeOf(const fs::path& path) {
    struct stat status {};
    EXPECT_EQ(::lstat(path.c_str(), &status), 0) << path;
    return status.st_mode & 0777u;
}

}  // namespace

TEST_F(MailboxTest, AnotherReaderFindsTheHeadersAndTheTextAsTheyWere) {
    service::Message sent = message();
    sent.priority = service::Priority::urgent;
    const std::string text = ".\n..\nFrom me\n" + std::string(998, 'x') + "\n" + std::string(100'000, 'y') +
                             "\nA\xE2\x80\xA8"
                             "B \xF0\x9F\x94\x94 = \t\n";
    sent.body = text + "one\r\ntwo\rthree";
    ASSERT_EQ(send(sent).answer, "In the host's mailbox");
    EXPECT_EQ(read("m['Subject']"), "Zoë – at once  Bcc: all@example.com");
    EXPECT_EQ(read("'|'.join([m['From'], m['To'], m['X-Priority'], m['Importance'], m['Message-ID']])"),
              "quillon@example.com|zoe@example.com|1|high|<=7B4=2F7=7D@example.com>");
    EXPECT_EQ(read("int(m['Date'].datetime.timestamp())"), "1700000000");
    EXPECT_EQ(read("m['Bcc']"), "None");
    EXPECT_EQ(read("m.get_payload(decode=True)"), text + "one\ntwo\nthree\n");
    std::istringstream lines(mail());
    for (std::string line; std::getline(lines, line);)
        EXPECT_LE(line.size(), 998u);
}

TEST_F(MailboxTest, AVoiceFileGoesAlongAndAMissingOneIsTold) {
    const fs::path voice = host_.root() / "Größe.wav";
    std::string content("RIFF\0\r\n.\r\n\xFF", 12);
    platform::files::writeFile(voice, content);
    service::Message sent = message();
    sent.body = "Listen";
    sent.voiceFile = voice;
    ASSERT_EQ(send(sent).answer, "In the host's mailbox");
    const std::string part = "list(m.iter_attachments())[0]";
    EXPECT_EQ(read(part + ".get_content()"), content);
    EXPECT_EQ(read(part + ".get_content_type() + ' ' + " + part + ".get_filename()"),
              "audio/x-wav Größe.wav");

    // The same key again: still one mail.
    fs::remove(voice);
    ASSERT_EQ(send(sent).answer, "In the host's mailbox");
    const std::string text = read("m.get_content()");
    EXPECT_TRUE(text.starts_with("Listen\nThe voice file " + voice.string() + " is not attached: ")) << text;
}

TEST_F(MailboxTest, NothingLeavesTheMailFolderAndNobodyElseReadsIt) {
    service::Message sent = message();
    for (const char* address : {"", ".", "..", "../zoe", "a/b", ".hidden", "a\nb", "a b", "<a@b>"}) {
        sent.address = address;
        EXPECT_EQ(send(sent).result, service::Result::refused) << address;
    }
    EXPECT_FALSE(fs::exists(folder_));
    sent.address = "linked@example.com";
    fs::create_directories(host_.root() / "elsewhere");
    fs::create_directories(folder_);
    fs::create_directory_symlink(host_.root() / "elsewhere", folder_ / sent.address);
    EXPECT_EQ(send(sent).result, service::Result::refused);
    EXPECT_TRUE(fs::is_empty(host_.root() / "elsewhere"));

    ASSERT_EQ(send(message()).result, service::Result::delivered);
    EXPECT_EQ(modeOf(arrived().parent_path()), 0700u);
    EXPECT_EQ(modeOf(arrived()), 0700u);
    EXPECT_EQ(modeOf(fs::directory_iterator(arrived())->path()), 0600u);
    EXPECT_TRUE(fs::is_empty(arrived().parent_path() / "tmp"));

    const std::atomic<bool> isCancelled = true;
    const auto later = std::chrono::steady_clock::now() + std::chrono::hours(1);
    EXPECT_EQ(mailbox_.send(message(), {later, &isCancelled}).result, service::Result::tryAgain);
}
