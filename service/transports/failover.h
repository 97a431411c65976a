// A forced failover: the request that the host's node manager reads.
#pragma once

#include "service/transports/transport.h"

namespace service {

class Failover : public Transport {
  public:
    // Handed over when the request stands in the host's registry and the System log tells of it. Tried again
    // when the node manager's key cannot be written, refused when this host has none.
    Outcome send(const Message& message, const Deadline& deadline) override;
};

}  // namespace service
