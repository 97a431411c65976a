#include "platform/services/accounts.h"

#include <crypt.h>
#include <fcntl.h>
#include <string.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <memory>

#include "platform/failure.h"
#include "platform/files/descriptor.h"
#include "platform/files/fileLock.h"
#include "platform/files/files.h"
#include "platform/machine/host.h"
#include "platform/registry/registry.h"

namespace platform {

namespace {

constexpr const char* hashMethod = "$y$";
// A token is made of a hash, which is long and random: a cheap method is enough.
constexpr const char* tokenMethod = "$5$";

struct Account {
    std::string name;
    std::string hash;
};

// Accounts of the file; raises 75 with the line for a malformed one, so that it is never written over.
std::vector<Account> readAccounts() {
    std::string text;
    try {
        text = files::readFile(host::accountsFile());
    } catch (const Failure& failure) {
        if (failure.number() == fileNotFound || failure.number() == pathNotFound)
            return {};
        throw;
    }
    std::vector<Account> accounts;
    std::string_view rest = text;
    for (int number = 1; !rest.empty(); ++number) {
        const std::size_t end = std::min(rest.find('\n'), rest.size());
        const std::string_view line = rest.substr(0, end);
        rest.remove_prefix(std::min(end + 1, rest.size()));
        const std::size_t colon = line.find(':');
        if (line.empty())
            continue;
        if (colon == 0 || colon == std::string_view::npos)
            throw makeFailure(pathFileAccessError,
                              host::accountsFile().string() + ":" + std::to_string(number) + ": no account");
        accounts.push_back({std::string(line.substr(0, colon)), std::string(line.substr(colon + 1))});
    }
    return accounts;
}

void writeAccounts(const std::vector<Account>& accounts) {
    std::string text;
    for (const Account& account : accounts)
        text.append(account.name).append(1, ':').append(account.hash).append(1, '\n');
    files::writeFile(host::accountsFile(), text, 0600);
}

// Held from reading to writing. The lock is the folder's, for the file itself is replaced.
Descriptor lockAccounts() {
    const std::filesystem::path folder = host::accountsFile().parent_path();
    Descriptor lock(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!lock)
        throw failureFromErrno(errno, folder.string());
    if (!files::lockWithin(lock, folder.string(), std::chrono::seconds(5)))
        throw makeFailure(permissionDenied, folder.string() + " is locked");
    return lock;
}

auto findAccount(std::vector<Account>& accounts, std::string_view name) {
    const RegistryNameLess less;
    return std::find_if(accounts.begin(), accounts.end(), [&](const Account& account) {
        return !less(account.name, name) && !less(name, account.name);
    });
}

struct WipeCryptData {
    void operator()(crypt_data* data) const {
        ::explicit_bzero(data, sizeof(*data));
        delete data;
    }
};

// A copy of a password with the zero at its end that hashing needs, wiped when it goes.
class Phrase {
  public:
    explicit Phrase(std::string_view text) { text.copy(text_.data(), text_.size() - 1); }
    ~Phrase() { ::explicit_bzero(text_.data(), text_.size()); }
    Phrase(const Phrase&) = delete;
    Phrase& operator=(const Phrase&) = delete;

    const char* get() const { return text_.data(); }
    // Hashing would stop at a zero, and longer ones would be cut.
    static bool accepts(std::string_view text) {
        return text.size() < CRYPT_MAX_PASSPHRASE_SIZE && text.find('\0') == std::string_view::npos;
    }

  private:
    std::array<char, CRYPT_MAX_PASSPHRASE_SIZE> text_{};
};

// The hash of a password with the salt and cost of `setting`; empty for an unusable setting.
std::string hashPassword(std::string_view password, const std::string& setting) {
    const Phrase phrase(password);
    const std::unique_ptr<crypt_data, WipeCryptData> data(new crypt_data{});
    const char* const hash = ::crypt_r(phrase.get(), setting.c_str(), data.get());
    return hash && hash[0] != '*' ? std::string(hash) : std::string();
}

std::string newSetting(const char* method = hashMethod) {
    std::array<char, CRYPT_GENSALT_OUTPUT_SIZE> setting{};
    // No bytes given: the salt comes from the system's random source.
    if (!::crypt_gensalt_rn(method, 0, nullptr, 0, setting.data(), static_cast<int>(setting.size())))
        throw makeFailure(pathFileAccessError, "no salt");
    return setting.data();
}

// Takes the same time wherever two texts of one length differ.
bool equalInConstantTime(const std::string& a, const std::string& b) {
    unsigned difference = a.size() == b.size() ? 0 : 1;
    for (std::size_t i = 0; i < std::min(a.size(), b.size()); ++i)
        difference |=
            static_cast<unsigned char>(a[i]) ^ static_cast<unsigned>(static_cast<unsigned char>(b[i]));
    return difference == 0;
}

}  // namespace

std::vector<std::string> accountNames() {
    std::vector<std::string> names;
    for (Account& account : readAccounts())
        names.push_back(std::move(account.name));
    return names;
}

bool accountExists(std::string_view name) {
    auto accounts = readAccounts();
    return findAccount(accounts, name) != accounts.end();
}

void setAccountPassword(std::string_view name, std::string_view password) {
    if (name.empty() || name.find_first_of(std::string_view(":\n\r\0", 4)) != std::string_view::npos ||
        !Phrase::accepts(password))
        throw makeFailure(invalidProcedureCall);
    std::string hash = hashPassword(password, newSetting());
    if (hash.empty())
        throw makeFailure(invalidProcedureCall);
    const Descriptor lock = lockAccounts();
    auto accounts = readAccounts();
    const auto found = findAccount(accounts, name);
    if (found != accounts.end())
        found->hash = std::move(hash);
    else
        accounts.push_back({std::string(name), std::move(hash)});
    writeAccounts(accounts);
}

bool verifyAccount(std::string_view name, std::string_view password) {
    auto accounts = readAccounts();
    const auto found = findAccount(accounts, name);
    const bool usable = found != accounts.end() && !found->hash.empty() && Phrase::accepts(password);
    // What cannot match is hashed all the same: the time must not tell whether there is such an account.
    const std::string hash = hashPassword(password, usable ? found->hash : newSetting());
    return usable && !hash.empty() && equalInConstantTime(hash, found->hash);
}

std::string accountToken(std::string_view name, std::string_view password) {
    if (!verifyAccount(name, password))
        return {};
    auto accounts = readAccounts();
    const auto found = findAccount(accounts, name);
    return found != accounts.end() ? hashPassword(found->hash, newSetting(tokenMethod)) : std::string();
}

bool accountTokenHolds(std::string_view name, const std::string& token) {
    auto accounts = readAccounts();
    const auto found = findAccount(accounts, name);
    return found != accounts.end() && token.starts_with(tokenMethod) &&
           equalInConstantTime(hashPassword(found->hash, token), token);
}

bool deleteAccount(std::string_view name) {
    const Descriptor lock = lockAccounts();
    auto accounts = readAccounts();
    const auto found = findAccount(accounts, name);
    if (found == accounts.end())
        return false;
    accounts.erase(found);
    writeAccounts(accounts);
    return true;
}

}  // namespace platform
