// The host that stands for this machine: made, and kept up with what the machine logs.

#include <cstdio>

#include "host/commands.h"
#include "host/machineHost.h"
#include "host/machineMail.h"
#include "host/registryEntries.h"
#include "host/tree.h"
#include "platform/failure.h"
#include "platform/files/files.h"
#include "platform/machine/host.h"
#include "platform/registry/productKey.h"
#include "service/sources/journal.h"
#include "service/sources/journalChoice.h"

namespace qlnhost {

namespace {

const std::string mailKey = std::string(platform::productKey) + "\\Mail";

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

struct Mail {
    std::string domain;
    bool hasServer = false;
};
// What was found of mail, written down for the service.
Mail setUpMail() {
    const Mail mail{host::mailName(), host::hasMailServer()};
    host::setValue(mailKey, "Domain", mail.domain);
    if (mail.hasServer)
        host::setValue(mailKey, "Relay", std::string("smtp://127.0.0.1:25"));
    return mail;
}

// What was found, and what is to be done about it: a command stands on a line of its own, to be copied.
void tell(const host::MachineHost& made, const service::JournalSources& journal, const Mail& mail) {
    const std::string root = made.root.string();
    const auto say = [](const std::string& line) { std::printf("%s\n", line.c_str()); };
    const auto command = [&](const std::string& line) { say("    qlnhost --host '" + root + "' " + line); };
    say("Made this machine's host in " + root + ".");
    if (!journal.problem.empty())
        say("\nJournal: " + journal.problem);
    say("\nSources: the journal knows " + std::to_string(made.sources) + ". Later ones are registered by");
    command("sources refresh");
    tellOfLeft(made.left);
    say("\nPeople: " + std::to_string(made.people) + " in the directory. Others come with");
    command("directory import FILE");
    if (mail.hasServer) {
        say("\nMail: by the mail server on 127.0.0.1, to addresses at " + mail.domain + ".");
    } else {
        say("\nMail: no mail server answers on 127.0.0.1, so mails go into the host's own mailboxes. A relay "
            "is "
            "set with");
        command("registry set '" + mailKey + "' Relay smtp://HOST:PORT");
    }
    say("\nPager, SNMP traps, syslog over TLS: set up where they are wanted, see HbQlnSvc(8). How each "
        "stands "
        "says");
    command("transports");
    say("\nThe service runs under the account " + made.account +
        ". Should the console ask for its password, set one with");
    command("accounts set '" + made.account + "'");
    say("\nIt is started, and started again after a crash, by");
    command("services run");
    say("and with your sessions by: systemctl --user enable --now quillon-services");
    say("\nThe console: " + (made.root / "QLNAdmin" / "QLNAdmin").string());
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
    const Mail mail = setUpMail();
    host::finishTree(made.root);
    tell(made, journal, mail);
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
