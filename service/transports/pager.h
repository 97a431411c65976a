// Pages by way of a mail gateway.
#pragma once

#include <memory>
#include <string>

#include "service/transports/addresses.h"
#include "service/transports/transport.h"

namespace service {

class Pager : public Transport {
  public:
    // `gateway` is a mail address with numberPlace in it.
    Pager(std::unique_ptr<Transport> mail, std::string gateway);
    // What the gateway does with the mail nobody confirms: handed over when the mail was delivered. Refused
    // for a number without digits.
    Outcome send(const Message& message, const Deadline& deadline) override;

  private:
    std::unique_ptr<Transport> mail_;
    std::string gateway_;
};

// What fits on a pager: subject and body on one line, 160 characters.
std::string pageText(const std::string& subject, const std::string& body);

}  // namespace service
