// The host's own mailboxes, for those who only look.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace service {

struct MailboxView {
    std::string address;
    std::size_t unread = 0;
    std::size_t read = 0;
};
// The mailboxes of a mail folder by address; none when the folder is missing. Raises platform::Failure.
std::vector<MailboxView> mailboxesIn(const std::filesystem::path& mailFolder);

struct MailView {
    std::filesystem::path file;
    bool isUnread = false;
    std::string date;  // stored form, local time; empty when the mail has none
    std::string subject;
    std::string body;                      // its text
    std::vector<std::string> attachments;  // their names
};
// The mails of an address, the oldest first. Raises platform::Failure.
std::vector<MailView> mailsOf(const std::filesystem::path& mailFolder, const std::string& address);

}  // namespace service
