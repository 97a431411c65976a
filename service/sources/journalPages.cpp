#include "service/sources/journalPages.h"

#include <systemd/sd-journal.h>

#include <algorithm>
#include <cstdlib>

#include "platform/failure.h"
#include "service/sources/journalFiles.h"
#include "service/sources/journalRecord.h"

namespace service {

JournalPages::JournalPages(const std::filesystem::path& folder) : journal_(openJournal(folder)) {
    const int result = journal_ ? sd_journal_seek_tail(journal_.get()) : 0;
    if (result < 0)
        throw platform::failureFromErrno(-result, "journal");
    // What can be read is shown, whatever else cannot.
    if (journal_ && sd_journal_previous(journal_.get()) > 0) {
        sd_journal_seek_tail(journal_.get());
        return;
    }
    const std::string problem = inspectJournalFiles(folder).problem;
    if (!journal_ || !problem.empty())
        throw platform::Failure(platform::pathFileAccessError,
                                problem.empty() ? "The journal cannot be opened." : problem);
}

JournalPage JournalPages::earlier(std::size_t most) {
    JournalPage page;
    int result = 0;
    while (page.records.size() < most && (result = sd_journal_previous(journal_.get())) > 0) {
        std::uint64_t moment = 0;
        const bool isKnown = sd_journal_get_realtime_usec(journal_.get(), &moment) >= 0;
        lastPlace_ = isKnown ? std::min(moment, lastPlace_ - 1) : lastPlace_ - 1;
        std::string reason;
        if (auto record = journalRecord(journal_.get(), reason))
            page.records.push_back({lastPlace_, std::move(*record)});
    }
    if (result < 0)
        throw platform::failureFromErrno(-result, "journal");
    page.hasEarlier = result > 0;
    return page;
}

std::string journalStamp(const std::filesystem::path& folder) {
    const JournalHandle journal = openJournal(folder);
    if (!journal || sd_journal_seek_tail(journal.get()) < 0 || sd_journal_previous(journal.get()) <= 0)
        return {};
    char* text = nullptr;
    if (sd_journal_get_cursor(journal.get(), &text) < 0)
        return {};
    const std::unique_ptr<char, decltype(&std::free)> owner(text, &std::free);
    return text;
}

}  // namespace service
