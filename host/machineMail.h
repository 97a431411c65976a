// How this machine sends mail, as far as it can be found out without asking.
#pragma once

#include <string>

namespace host {

// The domain of the machine's own addresses: /etc/mailname, else the machine's full name.
std::string mailName();
// Whether something takes connections on the mail port of the loopback address, within two seconds.
bool hasMailServer();

}  // namespace host
