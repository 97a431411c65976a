// The host's own mailboxes, in Maildir form.
#pragma once

#include <filesystem>
#include <string>

#include "service/transports/transport.h"

namespace service {

class Mailbox : public Transport {
  public:
    // `mailFolder` holds a folder for each address and is made when it is missing; its parent must exist.
    Mailbox(std::filesystem::path mailFolder, std::string from);
    // Delivered when the mail lies synced in <mailFolder>/<address>/new. A repeated key replaces the unread
    // mail of the first attempt. Refused for an address that is no plain folder name, and where a link or a
    // file stands in a folder's place.
    Outcome send(const Message& message, const Deadline& deadline) override;

  private:
    std::filesystem::path mailFolder_;
    std::string from_;
};

}  // namespace service
