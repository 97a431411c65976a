// The guard before a server that runs whatever it is sent: what an administrator types goes into a statement
// as it is, and servers differ in where a text ends and in whether a second statement needs a semicolon.
#pragma once

#include <string_view>

namespace platform::ado {

// Lets one SELECT pass, written in the part of the language that every server reads alike: texts between
// apostrophes, names between double quotes, no backslash, no comment, no other quoting, and no word that
// changes data or ends a transaction. Raises -2147467259 for a statement that is no SELECT at all, as on any
// read-only database, and -2147217900 for everything else.
void requireOneSelect(std::string_view statement);

}  // namespace platform::ado
