// The addresses behind a host's name, found without being held up by a name server.
#pragma once

#include <netdb.h>

#include <memory>
#include <string>

#include "service/transports/transport.h"

namespace service {

struct FreeAddresses {
    void operator()(addrinfo* addresses) const noexcept { ::freeaddrinfo(addresses); }
};
using Addresses = std::unique_ptr<addrinfo, FreeAddresses>;

// For datagrams. Nothing, with the reason, when there is no such name or the deadline is over.
Addresses findHost(const std::string& host, const std::string& port, const Deadline& deadline,
                   std::string& reason);

}  // namespace service
