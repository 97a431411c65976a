// A notification as a mail.
#pragma once

#include <string>
#include <string_view>

#include "service/transports/addresses.h"
#include "service/transports/message.h"

namespace service {

// The message's key in letters, digits and "-_="; different keys give different names.
std::string nameOfKey(std::string_view key);
// The whole mail. Lines end with LF and are shorter than 998 bytes. `message.address` and `from` are mail
// addresses. A voice file that cannot be read does not hold back the message: its last line says so.
std::string mailMessage(const Message& message, const std::string& from);

}  // namespace service
