// What a host holds besides its registry and its services: directory and accounts.

#include <cstdio>
#include <iostream>
#include <string>

#include "host/commands.h"
#include "host/provision.h"
#include "platform/files/files.h"
#include "platform/services/accounts.h"

namespace qlnhost {

namespace {

// A password is read from the standard input: in an argument every user of the machine could see it.
std::string readPassword() {
    std::string password;
    std::getline(std::cin, password);
    if (password.empty())
        throw UsageError("the password is the first line of the standard input, and there is none");
    return password;
}

}  // namespace

int directoryCommand(Arguments& arguments) {
    const std::string verb = arguments.take("import");
    if (verb != "import")
        throw UsageError("directory knows import, not '" + verb + "'");
    const std::string file = arguments.take("FILE");
    arguments.finish();
    std::printf("%ld rows\n", host::importDirectory(platform::files::readFile(file), file));
    return 0;
}

int accountsCommand(Arguments& arguments) {
    const std::string verb = arguments.takeOr("list");
    if (verb == "list") {
        arguments.finish();
        for (const std::string& name : platform::accountNames())
            std::puts(name.c_str());
        return 0;
    }
    const std::string name = arguments.take("NAME");
    arguments.finish();
    if (verb == "set") {
        platform::setAccountPassword(name, readPassword());
        return 0;
    }
    if (verb == "check" || verb == "delete") {
        const bool done =
            verb == "check" ? platform::verifyAccount(name, readPassword()) : platform::deleteAccount(name);
        if (!done)
            std::fprintf(stderr, "qlnhost: %s\n",
                         verb == "check" ? "wrong name or password" : ("no such account: " + name).c_str());
        return done ? 0 : 1;
    }
    throw UsageError("accounts knows list, set, check and delete, not '" + verb + "'");
}

}  // namespace qlnhost
