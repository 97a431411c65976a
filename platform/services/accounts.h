// Accounts of the host: names and salted hashes (libxcrypt) in a file that only its owner can read.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace platform {

// Names in the order of the file; empty when there is none.
std::vector<std::string> accountNames();
bool accountExists(std::string_view name);
// Adds the account or replaces its hash. Raises 5 for an empty name or one with ':' or a line break, 70
// when another process holds the accounts for longer than 5 seconds; so does deleteAccount.
void setAccountPassword(std::string_view name, std::string_view password);
// False for an unknown account too.
bool verifyAccount(std::string_view name, std::string_view password);
// What a service keeps instead of a password: it says which hash the password matched, and is of no use for
// finding either. Empty when the password is not the account's.
std::string accountToken(std::string_view name, std::string_view password);
// True while the account's hash is the one that the token was given for; a new password ends it.
bool accountTokenHolds(std::string_view name, const std::string& token);
// False when there was no such account.
bool deleteAccount(std::string_view name);

}  // namespace platform
