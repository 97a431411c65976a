// Mail by way of a relay.
#pragma once

#include <memory>
#include <string>

#include "service/transports/addresses.h"
#include "service/transports/transport.h"

namespace service {

struct SmtpSettings {
    std::string relay;        // smtp://host:port or smtps://host:port
    bool requiresTls = true;  // a relay that does not offer it gets nothing
    std::string user;         // empty for no sign-in
    std::string password;
    std::string from;
    std::string caFile;  // empty for the certificates that the system trusts
    bool operator==(const SmtpSettings&) const = default;
};

class Smtp : public Transport {
  public:
    explicit Smtp(SmtpSettings settings);
    ~Smtp() override;
    // Delivered when the relay has taken the mail. Refused for an address or a relay that is none, for what
    // the relay refuses for good (5xx, the sign-in included), and where the connection would not be safe; the
    // connection is kept for the next mail.
    Outcome send(const Message& message, const Deadline& deadline) override;
    // Connects, up to the end of the sign-in, and sends nothing.
    Outcome probe(const Deadline& deadline);

  private:
    class Session;
    SmtpSettings settings_;
    std::unique_ptr<Session> session_;
};

}  // namespace service
