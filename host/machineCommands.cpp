// The host that stands for this machine: made, and kept up with what the machine logs.

#include <cstdio>

#include "host/commands.h"
#include "host/machineHost.h"
#include "host/machineMail.h"
#include "host/registryEntries.h"
#include "platform/failure.h"
#include "platform/files/files.h"
#include "platform/machine/host.h"
#include "service/sources/journal.h"
#include "service/sources/journalChoice.h"

namespace qlnhost {

namespace {

constexpr char productKey[] = "SOFTWARE\\Tessaly\\ToolRack\\Diagnostic Tools\\Quillon Service\\";

std::vector<host::EventSource> sourcesOf(const service::JournalSources& journal) {
    std::vector<host::EventSource> sources;
    for (const service::JournalSource& each : journal.sources)
        sources.push_back({each.log, each.name});
    return sources;
}

void tellOfLeft(const std::vector<std::string>& names) {
    for (const std::string& name : names)
        std::printf("Left out, because no key of a registry can have this name: %s\n", name.c_str());
}

// Gives what was found of mail, and writes it down for the service.
std::string setUpMail() {
    const std::string domain = host::mailName();
    host::setValue(std::string(productKey) + "Mail", "Domain", domain);
    if (!host::hasMailServer())
        return "no mail server answers on 127.0.0.1, so mails go into the host's own mailboxes (qlnhost "
               "mail); "
               "a relay is set with: registry set \"" +
               std::string(productKey) + "Mail\" Relay smtp://HOST:PORT";
    host::setValue(std::string(productKey) + "Mail", "Relay", std::string("smtp://127.0.0.1:25"));
    return "by the mail server on 127.0.0.1, to addresses at " + domain;
}

void tell(const host::MachineHost& made, const service::JournalSources& journal, const std::string& mail) {
    const std::string root = made.root.string();
    std::printf("Made this machine's host in %s.\n", root.c_str());
    if (!journal.problem.empty())
        std::printf("Journal: %s\n", journal.problem.c_str());
    std::printf(
        "Sources: %zu that the journal knows; later ones come with: qlnhost --host %s sources refresh\n",
        made.sources, root.c_str());
    tellOfLeft(made.left);
    std::printf("People: %ld in the directory; others come with: qlnhost --host %s directory import FILE\n",
                made.people, root.c_str());
    std::printf("Mail: %s\n", mail.c_str());
    std::printf(
        "To be set up where it is wanted: pager, SNMP, syslog over TLS; qlnhost --host %s transports "
        "says how each stands\n",
        root.c_str());
    std::printf(
        "Account of the service: %s; should the console ask for its password, set one with: qlnhost "
        "--host %s accounts set '%s'\n",
        made.account.c_str(), root.c_str(), made.account.c_str());
    std::printf(
        "The service: qlnhost --host %s services run; at every start of the machine: "
        "quillon-services.service(8)\n",
        root.c_str());
    std::printf("The console: %s\n", (made.root / "QLNAdmin" / "QLNAdmin").c_str());
}

}  // namespace

int createMachineCommand(Arguments& arguments, const std::filesystem::path& kit) {
    host::MachineOptions options;
    options.kit = kit;
    service::JournalChoice choice{true, arguments.option("--journal-folder", "")};
    if (!choice.folder.empty())
        choice.folder = std::filesystem::absolute(choice.folder).lexically_normal();
    options.directoryName = arguments.option("--directory", "");
    const std::string folder = takeTreeFolder(arguments);
    arguments.finish();
    if (!options.directoryName.empty())
        options.directoryCsv = platform::files::readFile(options.directoryName);
    const service::JournalSources journal = service::journalSources(choice.folder);
    options.sources = sourcesOf(journal);
    const host::MachineHost made = host::createMachineHost(folder, options);
    service::chooseJournal(choice);
    tell(made, journal, setUpMail());
    return 0;
}

int sourcesCommand(Arguments& arguments) {
    const std::string verb = arguments.take("refresh");
    if (verb != "refresh")
        throw UsageError("sources knows refresh, not '" + verb + "'");
    arguments.finish();
    const service::JournalChoice choice = service::journalChoice();
    if (!choice.isOn) {
        std::fprintf(stderr,
                     "qlnhost: this host does not watch a journal (value Journal of the key Sources)\n");
        return 1;
    }
    const service::JournalSources journal = service::journalSources(choice.folder);
    if (!journal.problem.empty())
        std::fprintf(stderr, "qlnhost: %s\n", journal.problem.c_str());
    const host::Registered registered = host::registerSources(sourcesOf(journal));
    std::printf("%zu new sources\n", registered.added);
    tellOfLeft(registered.left);
    return journal.problem.empty() || registered.added > 0 ? 0 : 1;
}

}  // namespace qlnhost
