// The people who have accounts on this machine.
#pragma once

#include <string>
#include <vector>

#include "host/directory.h"

namespace host {

// Accounts that people log in with and that have a name, in the order of the machine's list; the alias is the
// login name, the extension the user's number. Raises platform::Failure when the list cannot be read to its
// end.
std::vector<Subscriber> machinePeople();
// Of whoever runs this program; "root" for the superuser.
std::string loginName();

}  // namespace host
