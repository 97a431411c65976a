#include "host/machinePeople.h"

#include <pwd.h>
#include <unistd.h>

#include <cerrno>
#include <string_view>

#include "platform/failure.h"

namespace host {

namespace {

// Debian gives people numbers from the first of these to the second.
constexpr uid_t firstPerson = 1000;
constexpr uid_t lastPerson = 59999;

bool mayLogIn(std::string_view shell) {
    return !shell.ends_with("/nologin") && !shell.ends_with("/false");
}

// The first field of the account's description.
std::string nameOf(const passwd& entry) {
    const std::string_view text = entry.pw_gecos ? entry.pw_gecos : "";
    return std::string(text.substr(0, text.find(',')));
}

}  // namespace

std::vector<Subscriber> machinePeople() {
    std::vector<Subscriber> people;
    ::setpwent();
    for (;;) {
        errno = 0;
        const passwd* const entry = ::getpwent();
        if (!entry)
            break;
        const std::string name = nameOf(*entry);
        if (entry->pw_uid < firstPerson || entry->pw_uid > lastPerson || name.empty() ||
            !mayLogIn(entry->pw_shell ? entry->pw_shell : ""))
            continue;
        Subscriber person;
        person.alias = entry->pw_name;
        person.displayName = name;
        const std::size_t last = name.rfind(' ');
        person.firstName = name.substr(0, last);
        person.lastName = last == std::string::npos ? "" : name.substr(last + 1);
        person.extension = std::to_string(entry->pw_uid);
        person.type = "1";
        people.push_back(std::move(person));
    }
    const int error = errno;
    ::endpwent();
    // A name service that fails looks like the end of the list. What some give at the end is no failure.
    if (error != 0 && error != ENOENT && error != ESRCH)
        throw platform::failureFromErrno(error, "the machine's accounts");
    return people;
}

std::string loginName() {
    const passwd* entry = ::getpwuid(::getuid());
    return entry ? entry->pw_name : std::to_string(::getuid());
}

}  // namespace host
