// Messages to a syslog server, as RFC 5424 has them.
#pragma once

#include <string>

#include "service/transports/addresses.h"
#include "service/transports/transport.h"

namespace service {

struct SyslogSettings {
    int facility = 3;    // 0 to 23; 3 is that of system services
    std::string caFile;  // empty for the certificates that the system trusts
    bool operator==(const SyslogSettings&) const = default;
};

// The message, on one line and in UTF-8, no longer than `most` bytes.
std::string syslogLine(const Message& message, int facility, std::size_t most);

class Syslog : public Transport {
  public:
    explicit Syslog(SyslogSettings settings);
    // A server does not say that it has taken a message: handed over at best. Refused for an address that is
    // none and for a connection that would not be safe. Over TCP and TLS each message is a counted frame on a
    // connection of its own.
    Outcome send(const Message& message, const Deadline& deadline) override;

  private:
    SyslogSettings settings_;
};

}  // namespace service
