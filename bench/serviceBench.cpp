// The service beside bare loops that do only what cannot be left out: deciding, reading, and a way out. Each
// side's memory is that of a process of its own.
#include <curl/curl.h>
#include <poll.h>
#include <sqlite3.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <systemd/sd-journal.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <unordered_map>
#include <unordered_set>

#include "bench/largeInstallation.h"
#include "bench/smtpSink.h"
#include "bench/table.h"
#include "platform/files/files.h"
#include "platform/machine/caseFold.h"
#include "platform/machine/clock.h"
#include "platform/machine/host.h"
#include "service/decision/configuration.h"
#include "service/decision/decide.h"
#include "service/notifier.h"
#include "service/sources/hostLog.h"
#include "service/sources/journal.h"
#include "service/transports/mailMessage.h"
#include "service/transports/mailbox.h"
#include "service/transports/smtp.h"

namespace {

namespace fs = std::filesystem;
using namespace bench;
using service::DeviceKind;
using service::Reason;

constexpr long recordsToDecide = 20'000;
constexpr long linesOfLog = 1'000'000;  // some 200 MB
constexpr long mailsToSend = 2'000;
constexpr long journalRecords = 1'000'000;

platform::EventRecord recordOf(long number) {
    platform::EventRecord record;
    record.log = "Application";
    const long event = number % (eventCount - 2) + 1;
    record.source = "MeridaneCorvane_" + std::to_string(event % 40);
    record.id = static_cast<std::uint32_t>(event);
    record.type = 1;
    return record;
}

// Peak memory in megabytes of a process that does the work; what the process had before counts too.
double megabytesOf(const std::function<void()>& work) {
    const pid_t child = ::fork();
    if (child == 0) {
        work();
        ::_exit(0);
    }
    rusage used{};
    int status = 0;
    ::wait4(child, &status, 0, &used);
    insist(status == 0, "the work whose memory is measured failed");
    return static_cast<double>(used.ru_maxrss) / 1024;
}

// A map from source and id to the addresses, and a set that sees which of them were had: what a decision
// cannot do without.
class BareDecision {
  public:
    explicit BareDecision(const service::Monitoring& monitoring) {
        // Whom the decision tells is asked of it once, so that both sides give the same.
        const service::Circumstances circumstances = always();
        for (long i = 0; i < eventCount; ++i) {
            const platform::EventRecord record = recordOf(i);
            std::vector<std::string>& told = addresses_[keyOf(record)];
            if (!told.empty())
                continue;
            for (const auto& verdict : service::decide(record, monitoring, circumstances))
                for (const auto& device : verdict.devices)
                    if (device.reason == Reason::send)
                        told.push_back(device.device->address);
        }
    }
    static service::Circumstances always() {
        return {platform::clock().now(), [](DeviceKind) { return true; },
                [](long) { return std::optional<service::Moment>(); }};
    }
    long decide(const platform::EventRecord& record) const {
        std::unordered_set<std::string_view> had;
        long told = 0;
        if (const auto found = addresses_.find(keyOf(record)); found != addresses_.end())
            for (const std::string& address : found->second)
                told += had.insert(address).second ? 1 : 0;
        return told;
    }

  private:
    static std::string keyOf(const platform::EventRecord& record) {
        return platform::foldCase(record.source) + '\n' + std::to_string(record.id);
    }
    std::unordered_map<std::string, std::vector<std::string>> addresses_;
};

void compareDecisions(Table& table, const LargeInstallation& place) {
    service::Configuration configuration(place.database());
    const service::Monitoring& monitoring = configuration.current();
    const service::Circumstances circumstances = BareDecision::always();
    const BareDecision bare(monitoring);
    long ourTold = 0;
    long peerTold = 0;
    table.compare({"decide on a record: 1,000 events, 5,000 recipients, 20,000 assignments", recordsToDecide,
                   Show::unitsPerSecond},
                  {"service",
                   [&] {
        return secondsOf([&] {
            ourTold = 0;
            for (long i = 0; i < recordsToDecide; ++i)
                for (const auto& verdict : service::decide(recordOf(i), monitoring, circumstances))
                    for (const auto& device : verdict.devices)
                        ourTold += device.reason == Reason::send ? 1 : 0;
        });
                   }},
                  {"map and set", [&] {
                       return secondsOf([&] {
                           peerTold = 0;
                           for (long i = 0; i < recordsToDecide; ++i)
                               peerTold += bare.decide(recordOf(i));
                       });
                   }});
    insist(ourTold > 0 && ourTold == peerTold, "both sides tell as many");
}

// One line as the log's own writer makes it, again and again.
void writeLog(const fs::path& file) {
    platform::EventRecord record = recordOf(1);
    record.source = "MeridaneCorvane_Quiet";
    record.time = "2026-11-25 12:00:00";
    record.computer = "CORVANE01";
    record.description = std::string(130, 'x');
    platform::appendEvent(record);
    const std::string line = platform::files::readFile(file);
    std::ofstream stream(file, std::ios::binary);
    for (long i = 0; i < linesOfLog; ++i)
        stream << line;
}

long readWithService() {
    service::HostLog log("Application");
    long count = 0;
    service::Batch batch;
    batch.position = "0:0";
    do {
        batch = log.read(batch.position, 1000);
        count += static_cast<long>(batch.records.size());
    } while (!batch.isWhole);
    return count;
}

void compareReading(Table& table) {
    const fs::path file = platform::host::eventLogsFolder() / "Application.log";
    fs::create_directories(file.parent_path());
    writeLog(file);
    long ours = 0;
    long peer = 0;
    table.compare({"read a record of a log of 200 MB", linesOfLog, Show::unitsPerSecond, 3},
                  {"service", [&] { return secondsOf([&] { ours = readWithService(); }); }},
                  {"getline", [&] {
                       return secondsOf([&] {
                           std::ifstream stream(file);
                           peer = 0;
                           for (std::string line; std::getline(stream, line);)
                               ++peer;
                       });
                   }});
    insist(ours == peer, "both sides read as many: " + std::to_string(ours));
    std::printf("memory while reading it: %.0f MB\n", megabytesOf([] { readWithService(); }));
    fs::remove(file);
}

// The configuration of one event with one device, and the service at work on it.
class Small {
  public:
    Small(const fs::path& folder, service::MakeTransport makeTransport) {
        const fs::path database = folder / "small.db";
        fs::remove(database);
        fs::remove(folder / "outbox.db");
        makeDatabase(database, 0);
        const Engine engine = openBare(database);
        for (const char* statement :
             {"UPDATE Configuration SET Value = '0' WHERE Setting = 'EventNotificationInterval'",
              "INSERT INTO Recipients VALUES (1, 'Night', -1)", "INSERT INTO Device VALUES (1, 4, 'a@b', -1)",
              "INSERT INTO DeviceRecipient VALUES (1, 1)",
              "INSERT INTO Events VALUES (10, 'Disk', -1, '', 4, -1, 0, NULL)",
              "INSERT INTO Contents VALUES (10, 3, NULL, 1, '<Event>', 'text')",
              "INSERT INTO EventDevice VALUES (10, 1, -1)"})
            insist(sqlite3_step(prepare(engine, statement).get()) == SQLITE_DONE, statement);
        service::NotifierOptions options;
        options.databaseFile = database;
        options.outboxFile = folder / "outbox.db";
        options.isSetUp = [](DeviceKind) { return true; };
        options.delivery.makeTransport = std::move(makeTransport);
        std::vector<std::unique_ptr<service::Source>> sources;
        sources.push_back(std::make_unique<service::HostLog>("Application"));
        notifier_ = std::make_unique<service::Notifier>(std::move(options), std::move(sources));
        notifier_->begin();
        notifier_->look();
    }
    ~Small() { notifier_->end(); }
    Small(const Small&) = delete;
    Small& operator=(const Small&) = delete;

    void write(long count) const {
        for (long i = 0; i < count; ++i)
            platform::appendEvent({"Application", "", "Disk", 51, 1, 0, "", "", ""});
    }
    void workUntil(const std::function<bool()>& isDone) const {
        while (!isDone())
            if (notifier_->look().count() > 0) {
                pollfd news{notifier_->descriptor(), POLLIN, 0};
                ::poll(&news, 1, 1000);
            }
    }

  private:
    std::unique_ptr<service::Notifier> notifier_;
};

void compareMailbox(Table& table, const fs::path& folder) {
    const fs::path mail = folder / "mail";
    const fs::path arrived = mail / "a@b" / "new";
    const auto count = [&] { return fs::exists(arrived) ? platform::files::listFiles(arrived).size() : 0; };
    Small small(folder, [&](DeviceKind) { return std::make_unique<service::Mailbox>(mail, "me@here"); });
    service::Mailbox bare(folder / "bare", "me@here");
    long number = 0;
    table.compare({"from a record to the mail in the mailbox", 1, Show::timePerUnit, 15},
                  {"service",
                   [&] {
        const auto before = count();
        return secondsOf([&] {
            small.write(1);
            small.workUntil([&] { return count() > before; });
        });
                   }},
                  {"the mailbox alone", [&] {
                       service::Message message;
                       message.key = std::to_string(++number);
                       message.address = "a@b";
                       return secondsOf(
                           [&] {
            insist(bare.send(message, {std::chrono::steady_clock::now() + std::chrono::seconds(10)}).result ==
                       service::Result::delivered,
                   "mailbox");
                       });
                   }});
}

std::size_t give(char* buffer, std::size_t size, std::size_t count, void* text) {
    auto& rest = *static_cast<std::string_view*>(text);
    const std::size_t taken = rest.copy(buffer, size * count);
    rest.remove_prefix(taken);
    return taken;
}

// One connection, kept, and the same mail again and again.
void sendBare(const std::string& url, long count) {
    const std::unique_ptr<CURL, decltype(&curl_easy_cleanup)> curl(curl_easy_init(), &curl_easy_cleanup);
    curl_slist* to = curl_slist_append(nullptr, "a@b");
    service::Message message;
    message.key = "key";
    message.address = "a@b";
    message.body = "text";
    const std::string mail = service::mailMessage(message, "me@here");
    curl_easy_setopt(curl.get(), CURLOPT_URL, url.c_str());
    curl_easy_setopt(curl.get(), CURLOPT_MAIL_FROM, "me@here");
    curl_easy_setopt(curl.get(), CURLOPT_MAIL_RCPT, to);
    curl_easy_setopt(curl.get(), CURLOPT_UPLOAD, 1L);
    curl_easy_setopt(curl.get(), CURLOPT_READFUNCTION, give);
    for (long i = 0; i < count; ++i) {
        std::string_view rest = mail;
        curl_easy_setopt(curl.get(), CURLOPT_READDATA, &rest);
        insist(curl_easy_perform(curl.get()) == CURLE_OK, "the bare loop cannot send");
    }
    curl_slist_free_all(to);
}

void compareSending(Table& table, const fs::path& folder) {
    SmtpSink sink;
    service::SmtpSettings settings;
    settings.relay = sink.url();
    settings.requiresTls = false;
    settings.from = "me@here";
    Small small(folder, [&](DeviceKind) { return std::make_unique<service::Smtp>(settings); });
    const auto taken = [&](const std::function<void()>& send) {
        const long before = sink.taken();
        return secondsOf([&] {
            send();
            insist(sink.taken() == before + mailsToSend, "every mail arrives once");
        });
    };
    // Our side notes each record, each outcome and each line of the history on the disk besides.
    table.compare(
        {"from records to mails in a mail server", mailsToSend, Show::unitsPerSecond, 3, 1 / 0.7},
        {"service",
         [&] {
        const long wanted = sink.taken() + mailsToSend;
        small.write(mailsToSend);
        return taken([&] { small.workUntil([&] { return sink.taken() == wanted; }); });
         }},
        {"libcurl, one connection", [&] { return taken([&] { sendBare(settings.relay, mailsToSend); }); }});
}

bool writeJournal(const fs::path& folder) {
    fs::create_directories(folder);
    FILE* const pipe = ::popen(("/lib/systemd/systemd-journal-remote -o '" +
                                (folder / "system.journal").string() + "' - 2>/dev/null")
                                   .c_str(),
                               "w");
    if (!pipe)
        return false;
    for (long i = 0; i < journalRecords; ++i)
        std::fprintf(
            pipe,
            "__REALTIME_TIMESTAMP=%ld\n__MONOTONIC_TIMESTAMP=%ld\n_BOOT_ID=0123456789abcdef0123456789abcdef\n"
            "SYSLOG_IDENTIFIER=program%ld\nPRIORITY=%ld\n_HOSTNAME=node1\n_UID=0\nMESSAGE=Record %ld of "
            "many\n\n",
            1'700'000'000'000'000 + i, i + 1, i % 50, i % 8, i);
    return ::pclose(pipe) == 0;
}

long readJournal(const fs::path& folder) {
    service::Journal journal(folder);
    long count = 0;
    service::Batch batch;
    batch.position = "t=1";
    do {
        batch = journal.read(batch.position, 1000);
        count += static_cast<long>(batch.records.size());
    } while (!batch.isWhole);
    return count;
}

void compareJournal(Table& table, const fs::path& folder) {
    if (!fs::exists("/lib/systemd/systemd-journal-remote") || !writeJournal(folder)) {
        std::printf("the journal's row needs systemd-journal-remote\n");
        return;
    }
    long ours = 0;
    long peer = 0;
    table.compare({"read a record of a journal of 1,000,000", journalRecords, Show::unitsPerSecond, 1},
                  {"service", [&] { return secondsOf([&] { ours = readJournal(folder); }); }},
                  {"sd_journal_next and MESSAGE", [&] {
                       return secondsOf([&] {
                           sd_journal* journal = nullptr;
                           insist(sd_journal_open_directory(&journal, folder.c_str(), 0) >= 0, "journal");
                           const void* data = nullptr;
                           std::size_t size = 0;
                           for (peer = 0; sd_journal_next(journal) > 0; ++peer)
                               sd_journal_get_data(journal, "MESSAGE", &data, &size);
                           sd_journal_close(journal);
                       });
                   }});
    insist(ours == peer && ours == journalRecords, "both sides read as many: " + std::to_string(ours));
    std::printf("memory while reading it: %.0f MB, of which the mapped journal is a part\n",
                megabytesOf([&] { readJournal(folder); }));
}

}  // namespace

int main(int argc, char** argv) {
    curl_global_init(CURL_GLOBAL_DEFAULT);
    const LargeInstallation place(argc > 1 ? fs::path(argv[1]) : fs::temp_directory_path());
    const fs::path folder = platform::host::folder();
    std::printf("memory before anything: %.0f MB\n", megabytesOf([] {}));
    Table table;
    compareReading(table);
    compareJournal(table, folder / "journal");
    compareDecisions(table, place);
    compareMailbox(table, folder);
    compareSending(table, folder);
    table.print();
    return 0;
}
