#include "host/machineHost.h"

#include <sys/random.h>

#include <algorithm>
#include <array>
#include <cerrno>

#include "host/directory.h"
#include "host/machinePeople.h"
#include "host/provision.h"
#include "host/registryEntries.h"
#include "host/tree.h"
#include "platform/failure.h"
#include "platform/files/files.h"
#include "platform/machine/host.h"
#include "platform/registry/registry.h"
#include "platform/services/accounts.h"

namespace host {

namespace {

// An identifier may hold what separates the components of a registry path.
bool isKeyName(const std::string& name) {
    constexpr std::size_t longestKeyName = 255;
    return !name.empty() && name.size() <= longestKeyName &&
           std::none_of(name.begin(), name.end(), [](char c) {
               return c == '\\' || static_cast<unsigned char>(c) < ' ' || c == '\x7F';
           });
}

std::string machineName() {
    std::string text = platform::computerName();
    text = text.substr(0, text.find('.'));
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
    return text.empty() ? "LOCALHOST" : text;
}

std::string randomPassword() {
    constexpr std::string_view letters = "abcdefghijkmnopqrstuvwxyzABCDEFGHJKLMNPQRSTUVWXYZ23456789-_";
    std::array<unsigned char, 32> bytes{};
    if (::getrandom(bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size()))
        throw platform::failureFromErrno(errno, "random numbers");
    std::string password;
    for (const unsigned char byte : bytes)
        password += letters[byte % letters.size()];
    return password;
}

std::filesystem::path messagesOf(const std::string& log) {
    return platform::host::folder().parent_path() / "Corvane" /
           (log == "System" ? "system.dll" : "messages.dll");
}

long fillDirectory(const MachineOptions& options) {
    long people = 0;
    createDirectory(platform::host::directoryDatabase(), DirectoryLayout::tables,
                    [&](DirectoryWriter& writer) {
        if (!options.directoryCsv.empty())
            return;
        for (const Subscriber& person : machinePeople()) {
            writer.add(person);
            ++people;
        }
    });
    if (!options.directoryCsv.empty())
        people = importDirectory(options.directoryCsv, options.directoryName);
    return people;
}

}  // namespace

Registered registerSources(const std::vector<EventSource>& sources) {
    Registered result;
    for (const EventSource& source : sources) {
        if (!isKeyName(source.name)) {
            result.left.push_back(source.name);
            continue;
        }
        const std::string path = std::string("HKEY_LOCAL_MACHINE\\") + servicesKey + "EventLog\\" +
                                 source.log + "\\" + source.name;
        if (platform::registry().key(path))
            continue;
        addSource(source.log, source.name, messagesOf(source.log).string());
        ++result.added;
    }
    return result;
}

MachineHost createMachineHost(const std::filesystem::path& folder, const MachineOptions& options) {
    MachineHost made;
    made.root = beginTree(folder);
    fillTree(made.root, options.kit, true);
    // The service may come before the console, which makes it otherwise.
    platform::files::copyFile(made.root / "Database" / "QLNDB_FRESH.MDB",
                              made.root / "Database" / "QLNDB.MDB");
    made.people = fillDirectory(options);
    const ServiceAccount account{machineName() + "\\" + loginName(), randomPassword()};
    made.account = account.name;
    platform::setAccountPassword(account.name, account.password);
    addShortcut(made.root);
    addSnmpAgent();
    const Registered registered = registerSources(options.sources);
    made.sources = registered.added;
    made.left = registered.left;
    // The console asks the main service's entry for the account; this machine has no such program.
    setValue(std::string(servicesKey) + "TsHubMgr", "ObjectName", account.name);
    addNotifyingService(made.root, account);
    addProduct(made.root, 4);
    return made;
}

}  // namespace host
