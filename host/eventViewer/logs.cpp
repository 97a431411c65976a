#include "host/eventViewer/logs.h"

#include <sys/stat.h>

#include <utility>

#include "platform/failure.h"
#include "platform/machine/eventLogPages.h"
#include "platform/machine/host.h"
#include "service/sources/journalChoice.h"
#include "service/sources/journalPages.h"

namespace viewer {

namespace {

std::vector<EntryPointer> entriesOf(std::vector<platform::PlacedEvent> events) {
    std::vector<EntryPointer> entries;
    for (platform::PlacedEvent& event : events)
        entries.push_back(std::make_shared<Entry>(Entry{event.place, std::move(event.record), std::nullopt}));
    return entries;
}

class HostLogPages : public LogPages {
  public:
    explicit HostLogPages(const std::string& name) : pages_(name, pageSize) {}
    bool hasEarlier() const override { return pages_.hasEarlier(); }
    std::vector<EntryPointer> earlier() override { return entriesOf(pages_.earlier()); }

  private:
    static constexpr std::uint64_t pageSize = 512 << 10;
    platform::EventLogPages pages_;
};

class MachineJournalPages : public LogPages {
  public:
    explicit MachineJournalPages(const std::filesystem::path& folder) : pages_(folder) {}
    bool hasEarlier() const override { return hasEarlier_; }
    std::vector<EntryPointer> earlier() override {
        constexpr std::size_t pageSize = 500;
        service::JournalPage read = pages_.earlier(pageSize);
        hasEarlier_ = read.hasEarlier;
        return entriesOf(std::move(read.records));
    }

  private:
    service::JournalPages pages_;
    bool hasEarlier_ = true;
};

class NotificationPages : public LogPages {
  public:
    NotificationPages() : notifications_(databaseFile(), outboxFile()) {}
    bool hasEarlier() const override { return notifications_.hasEarlier(); }
    std::vector<EntryPointer> earlier() override {
        constexpr std::size_t pageSize = 500;
        std::vector<EntryPointer> page;
        if (std::exchange(isFirst_, false))
            add(page, notifications_.open());
        add(page, notifications_.earlier(pageSize));
        return page;
    }

  private:
    static void add(std::vector<EntryPointer>& page, std::vector<service::Notification> notifications) {
        for (service::Notification& each : notifications) {
            platform::EventRecord record;
            record.time = each.time;
            record.source = each.source;
            record.id = each.id;
            record.type = each.type;
            record.computer = each.computer;
            const std::uint64_t place = each.place;
            page.push_back(std::make_shared<Entry>(Entry{place, std::move(record), std::move(each)}));
        }
    }

    service::Notifications notifications_;
    bool isFirst_ = true;
};

std::string stampOf(const std::filesystem::path& file) {
    struct stat status {};
    return ::stat(file.c_str(), &status) == 0
               ? std::to_string(status.st_ino) + ' ' + std::to_string(status.st_size)
               : std::string();
}

}  // namespace

Log hostLog(const std::string& name) {
    return {[name] { return std::make_unique<HostLogPages>(name); },
            [name] { return stampOf(platform::eventLogFile(name)); }, false};
}

std::optional<Log> journalLog() {
    try {
        const service::JournalChoice choice = service::journalChoice();
        if (!choice.isOn)
            return std::nullopt;
        const std::filesystem::path folder = choice.folder;
        return Log{[folder] { return std::make_unique<MachineJournalPages>(folder); },
                   [folder] { return service::journalStamp(folder); }, false};
    } catch (const platform::Failure&) {
        return std::nullopt;  // a registry that cannot be read stops the console with its own box
    }
}

Log notificationLog() {
    return {[] { return std::make_unique<NotificationPages>(); },
            [] { return service::notificationsStamp(databaseFile(), outboxFile()); }, true};
}

}  // namespace viewer
