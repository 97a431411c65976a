// SNMP traps and informs; docs/QUILLON-MIB.txt describes them.
#pragma once

#include <string>
#include <vector>

#include "service/transports/transport.h"

namespace service {

struct SnmpSink {
    std::string community;  // version 2c
    std::string host;
    std::string port = "162";
    bool operator==(const SnmpSink&) const = default;
};

struct SnmpSettings {
    std::vector<SnmpSink> sinks;
    bool isVersion3 = false;
    bool informs = false;
    std::string user;        // version 3, with SHA and AES
    std::string authPhrase;  // eight characters at least
    std::string privPhrase;
    unsigned enterprise = 32473;  // the number that is reserved for documentation
    bool operator==(const SnmpSettings&) const = default;
};

// The text of the engine id that traps of version 3 are sent under: the machine's name. The whole id, which a
// receiver has to know of a sender, is 80001f8804 and the text's bytes.
std::string snmpEngineName();

class SnmpTrap : public Transport {
  public:
    explicit SnmpTrap(SnmpSettings settings);
    // Goes to every sink, whatever the address. An inform is delivered when all sinks have answered, a trap
    // is handed over. The next attempt goes to those sinks alone that failed; refused when none has it.
    Outcome send(const Message& message, const Deadline& deadline) override;

  private:
    SnmpSettings settings_;
};

}  // namespace service
