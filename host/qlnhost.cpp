// Makes hosts and looks into them.

#include <array>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <string_view>

#include "host/commands.h"
#include "platform/failure.h"
#include "platform/machine/host.h"

namespace {

constexpr char help[] =
    "usage: qlnhost [--host DIR] COMMAND ...\n"
    "\n"
    "Makes a host, the machine as the console sees it, and looks into one.\n"
    "\n"
    "  create DIR             make a demonstration host with its installation tree in DIR\n"
    "      --version 4|3.1    version of the server (4)\n"
    "      --layout tables|views\n"
    "                         layout of its directory (tables)\n"
    "      --empty            nothing was ever configured, and the service does not run; without this\n"
    "                         there are recipients, events and a history, and the service notifies\n"
    "      --fresh            empty, and the service is not installed yet: the console's first run asks\n"
    "                         for the password and installs it\n"
    "      --no-legacy        the legacy notifier was never installed; without this its service runs\n"
    "                         and its database holds events to import\n"
    "      --snmp             the server has an SNMP agent\n"
    "      --failover         the server is the primary one of a failover pair\n"
    "      --subscribers N    people in the directory (240)\n"
    "      --lists N          distribution lists in the directory (24)\n"
    "      --kit KITDIR       program files to install (the folder kit beside this program)\n"
    "  create DIR --this-machine\n"
    "                         make the host that stands for this machine: it watches the journal, its\n"
    "                         people are those who have accounts here\n"
    "      --directory FILE   its people from a CSV file, as for directory import\n"
    "      --journal-folder DIR\n"
    "                         a journal elsewhere\n"
    "      --kit KITDIR\n"
    "  update DIR             copy the kit's files over those of an installation tree\n"
    "      --kit KITDIR\n"
    "\n"
    "  registry get KEY NAME\n"
    "  registry set KEY [NAME VALUE [--type string|dword|binary]]\n"
    "  registry list [KEY]\n"
    "  registry delete KEY [NAME]\n"
    "                         KEY is below HKEY_LOCAL_MACHINE, with or without that name\n"
    "  directory import FILE  add subscribers (Alias,FirstName,LastName,Extension,Type) or\n"
    "                         distribution lists (Alias,DisplayName,Extension) from a CSV\n"
    "                         file whose first line names the columns\n"
    "  events [Application|System]\n"
    "                         the records of the event logs\n"
    "  events add LOG SOURCE ID TYPE [--category N] [--user NAME] TEXT\n"
    "                         write a record; TYPE is error, warning or information\n"
    "  explain LOG SOURCE ID TYPE\n"
    "                         who would be told of such a record, and who not and why\n"
    "  notifications [--last N]\n"
    "                         what was told and what waits; the last 50\n"
    "  transports             how the kinds of devices are reached; asks the mail relay\n"
    "  mail [ADDRESS]         the host's own mailboxes; the mails of one\n"
    "  services [list]        services and their states\n"
    "  services start NAME    start a service of the host\n"
    "  services stop NAME     stop it\n"
    "  services run           start those that start automatically, start again what crashes, and stop\n"
    "                         them at the end, which is a signal (SIGTERM, Ctrl-C)\n"
    "  sources refresh        register the sources that the journal knows by now\n"
    "  accounts [list]        accounts that services run under\n"
    "  accounts set NAME      add one or change its password (a line of standard input)\n"
    "  accounts check NAME    is this its password (a line of standard input)?\n"
    "  accounts delete NAME\n"
    "\n"
    "The host of the second group is named by --host or QLN_HOST: its own folder, or the\n"
    "folder that DIR was in create.\n"
    "\n"
    "The directory may be on a database server instead of in the host: name an ODBC data\n"
    "source (odbc.ini) for it. It is read and never written. Without the value the host's\n"
    "own directory counts.\n"
    "  registry set \"SOFTWARE\\Tessaly\\CorvaneDb\" DataSource NAME\n"
    "\n"
    "Exit codes: 0 done, 1 not there or not possible, 2 not understood.\n";

struct Command {
    std::string_view name;
    int (*run)(qlnhost::Arguments&);
    bool needsHost;
};

constexpr std::array<Command, 12> commands{{
    {"create", qlnhost::createCommand, false},
    {"update", qlnhost::updateCommand, false},
    {"registry", qlnhost::registryCommand, true},
    {"directory", qlnhost::directoryCommand, true},
    {"events", qlnhost::eventsCommand, true},
    {"services", qlnhost::servicesCommand, true},
    {"sources", qlnhost::sourcesCommand, true},
    {"accounts", qlnhost::accountsCommand, true},
    {"explain", qlnhost::explainCommand, true},
    {"notifications", qlnhost::notificationsCommand, true},
    {"mail", qlnhost::mailCommand, true},
    {"transports", qlnhost::transportsCommand, true},
}};

void chooseHost(std::string named) {
    if (named.empty())
        if (const char* variable = std::getenv("QLN_HOST"))
            named = variable;
    if (named.empty())
        throw qlnhost::UsageError("no host is named; use --host DIR or set QLN_HOST");
    std::filesystem::path folder = named;
    if (!std::filesystem::exists(folder / "registry.reg") &&
        std::filesystem::exists(folder / "Host" / "registry.reg"))
        folder /= "Host";
    platform::host::setFolder(folder);
    if (!std::filesystem::exists(platform::host::registryFile()))
        throw platform::makeFailure(platform::fileNotFound, platform::host::registryFile().string());
}

int run(int argc, char** argv) {
    qlnhost::Arguments arguments(argc, argv);
    if (arguments.flag("--help") || arguments.flag("-h")) {
        std::fputs(help, stdout);
        return 0;
    }
    const std::string named = arguments.option("--host", "");
    const std::string name = arguments.take("command");
    for (const Command& command : commands) {
        if (command.name != name)
            continue;
        if (command.needsHost)
            chooseHost(named);
        return command.run(arguments);
    }
    throw qlnhost::UsageError("unknown command " + name);
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const qlnhost::UsageError& error) {
        std::fprintf(stderr, "qlnhost: %s (qlnhost --help tells more)\n", error.what());
        return 2;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "qlnhost: %s\n", error.what());
        return 1;
    }
}
