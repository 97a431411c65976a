#include "service/sources/journal.h"

#include <systemd/sd-journal.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <set>
#include <utility>

#include "platform/machine/clock.h"
#include "service/sources/journalFiles.h"
#include "service/sources/journalRecord.h"
#include "service/sources/readableText.h"

namespace service {

namespace {

// A message longer than this is cut: it would not be read by anybody, and memory is finite.
constexpr std::size_t longestField = 2u << 20;
// Records of a batch are in memory together.
constexpr std::size_t mostBytes = 8u << 20;
constexpr std::string_view momentMark = "t=";

// The moment of a position, which may be a cursor or a moment alone; 0 when it names none.
std::uint64_t momentOf(std::string_view position) {
    std::size_t at = position.starts_with(momentMark) ? 0 : position.find(";t=");
    if (at == std::string_view::npos)
        return 0;
    at = position.find('=', at) + 1;
    std::uint64_t moment = 0;
    std::from_chars(position.data() + at, position.data() + position.size(), moment, 16);
    return moment;
}

bool isMomentOnly(std::string_view position) {
    return position.starts_with(momentMark);
}

std::string positionOfNow() {
    const auto now =
        std::chrono::duration_cast<std::chrono::microseconds>(platform::clock().now().time_since_epoch());
    std::string digits(16, '\0');
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(),
                                   static_cast<std::uint64_t>(now.count()), 16);
    return std::string(momentMark) + digits.substr(0, static_cast<std::size_t>(end.ptr - digits.data()));
}

std::string cursorOf(sd_journal* journal) {
    char* text = nullptr;
    if (sd_journal_get_cursor(journal, &text) < 0)
        return {};
    const std::unique_ptr<char, decltype(&std::free)> owner(text, &std::free);
    return text;
}

// The record's place in the count of the journal that wrote it: "s=ID;i=NUMBER".
struct Place {
    std::string_view journal;
    std::uint64_t number = 0;
};
Place placeOf(std::string_view cursor) {
    Place place;
    const std::size_t end = cursor.find(";i=");
    if (end == std::string_view::npos)
        return place;
    place.journal = cursor.substr(0, end);
    std::from_chars(cursor.data() + end + 3, cursor.data() + cursor.size(), place.number, 16);
    return place;
}

// Whether both name one record, which a copy of its file holds under another number: by boot, both clocks and
// content.
bool isSameRecord(std::string_view a, std::string_view b) {
    const auto behindNumber = [](std::string_view cursor) {
        const std::size_t at = cursor.find(";b=");
        return at == std::string_view::npos ? std::string_view() : cursor.substr(at);
    };
    return !behindNumber(a).empty() && behindNumber(a) == behindNumber(b);
}

// Whether nothing can lie between the two records.
bool isNextOf(std::string_view earlier, std::string_view later) {
    const Place from = placeOf(earlier);
    const Place to = placeOf(later);
    return !from.journal.empty() && from.journal == to.journal && from.number + 1 == to.number;
}

void tell(std::vector<std::string>& notices, const char* what, int error) {
    notices.push_back(std::string("Journal: ") + what + ": " + std::strerror(error));
}

std::string openingProblem(int error) {
    return std::string("The journal cannot be opened: ") + std::strerror(error);
}

// Behind the newest record of an open journal.
std::string endOf(sd_journal* journal) {
    std::string cursor;
    if (journal && sd_journal_seek_tail(journal) >= 0 && sd_journal_previous(journal) > 0)
        cursor = cursorOf(journal);
    return cursor.empty() ? positionOfNow() : cursor;
}

}  // namespace

void CloseJournal::operator()(sd_journal* journal) const noexcept {
    sd_journal_close(journal);
}

JournalHandle openJournal(const std::filesystem::path& folder, int* error) {
    sd_journal* opened = nullptr;
    const int result = folder.empty() ? sd_journal_open(&opened, SD_JOURNAL_LOCAL_ONLY)
                                      : sd_journal_open_directory(&opened, folder.c_str(), 0);
    if (error)
        *error = result < 0 ? -result : 0;
    if (opened)
        sd_journal_set_data_threshold(opened, longestField);
    return JournalHandle(opened);
}

Journal::Journal(std::filesystem::path folder) : folder_(std::move(folder)) {}

Journal::~Journal() = default;

int Journal::descriptor() const noexcept {
    return journal_ ? sd_journal_get_fd(journal_.get()) : -1;
}

// Opens the journal unless it is open. What stands in the way is told when it is another than before.
bool Journal::open(std::vector<std::string>& notices) {
    if (journal_)
        return true;
    reached_.clear();
    JournalFiles files = inspectJournalFiles(folder_);
    int error = 0;
    journal_ = openJournal(folder_, &error);
    if (!journal_ && files.problem.empty())
        files.problem = openingProblem(error);
    if (files.problem != problem_ && !files.problem.empty())
        notices.push_back(files.problem);
    problem_ = files.problem;
    for (const std::string& damage : files.damaged)
        if (toldDamage_.insert(damage).second)
            notices.push_back(damage);
    // The first wait does not wait: it begins to watch, and forgets the changes that the opening was.
    if (journal_)
        sd_journal_wait(journal_.get(), 0);
    return journal_ != nullptr;
}

// A journal whose files have changed, by rotation, vacuuming or a restart, is opened anew: only so is a gap
// seen. One with a problem is too, which may be mended by now.
void Journal::noteChanges() {
    if (!journal_)
        return;
    const int change = sd_journal_process(journal_.get());
    if (change < 0 || change == SD_JOURNAL_INVALIDATE || !problem_.empty())
        journal_.reset();
}

std::string Journal::end() {
    return endOf(openJournal(folder_).get());
}

// Stands before the first record behind the batch's position. False when there is none.
bool Journal::seek(Batch& batch) {
    sd_journal* const journal = journal_.get();
    const std::string& position = batch.position;
    const bool isMoment = isMomentOnly(position);
    isAtRecord_ = false;
    int result = isMoment ? sd_journal_seek_realtime_usec(journal, momentOf(position))
                          : sd_journal_seek_cursor(journal, position.c_str());
    if (result < 0) {
        tell(batch.notices, "its position cannot be read, reading goes on at the end", -result);
        batch.position = endOf(journal);
        return false;
    }
    result = sd_journal_next(journal);
    if (result < 0)
        tell(batch.notices, "no record can be reached", -result);
    if (result <= 0)
        return false;
    isAtRecord_ = isMoment || (sd_journal_test_cursor(journal, position.c_str()) <= 0 &&
                               !isSameRecord(position, cursorOf(journal)));
    if (!isAtRecord_ || isMoment || isNextOf(position, cursorOf(journal)))
        return true;
    std::uint64_t moment = 0;
    sd_journal_get_realtime_usec(journal, &moment);
    batch.notices.push_back("Journal: a gap: records between " + journalMoment(momentOf(position)) + " and " +
                            journalMoment(moment) + " are gone; reading goes on at the latter.");
    return true;
}

void Journal::noteClock(std::uint64_t moment, std::vector<std::string>& notices) {
    constexpr std::uint64_t second = 1'000'000;
    if (lastMoment_ > moment + second)
        notices.push_back("Journal: the clock was set back from " + journalMoment(lastMoment_) + " to " +
                          journalMoment(moment) + ".");
    lastMoment_ = moment;
}

// Goes to the next record and takes it. Gives 0 at the end, a negative error, or 1.
int Journal::step(Batch& batch) {
    sd_journal* const journal = journal_.get();
    if (!std::exchange(isAtRecord_, false))
        if (const int result = sd_journal_next(journal); result <= 0)
            return result;
    std::uint64_t moment = 0;
    if (sd_journal_get_realtime_usec(journal, &moment) >= 0)
        noteClock(moment, batch.notices);
    std::string reason;
    if (auto record = journalRecord(journal, reason))
        batch.records.push_back(std::move(*record));
    else
        batch.notices.push_back("Journal: the record of " + journalMoment(moment) +
                                " cannot be read and is skipped: " + reason);
    if (std::string cursor = cursorOf(journal); !cursor.empty())
        batch.position = std::move(cursor);
    return 1;
}

Batch Journal::read(const std::string& position, std::size_t most) {
    Batch batch;
    batch.position = position;
    noteChanges();
    if (!open(batch.notices))
        return batch;
    if (reached_.empty() || reached_ != position) {
        reached_.clear();
        lastMoment_ = isMomentOnly(position) ? 0 : momentOf(position);
        if (!seek(batch))
            return batch;
    }
    int result = 1;
    std::size_t taken = 0;
    bool isFull = false;
    std::size_t bytes = 0;
    while (!isFull && (result = step(batch)) > 0) {
        if (!batch.records.empty())
            bytes += batch.records.back().description.size();
        isFull = ++taken >= most || bytes >= mostBytes;
    }
    batch.isWhole = !isFull;
    if (result < 0) {
        tell(batch.notices, "reading ended early and begins anew", -result);
        journal_.reset();
    }
    reached_ = batch.position;
    return batch;
}

JournalSources journalSources(const std::filesystem::path& folder) {
    JournalSources result;
    result.problem = inspectJournalFiles(folder).problem;
    int error = 0;
    const JournalHandle handle = openJournal(folder, &error);
    sd_journal* const journal = handle.get();
    if (!journal) {
        if (result.problem.empty())
            result.problem = openingProblem(error);
        return result;
    }
    constexpr std::string_view name = "SYSLOG_IDENTIFIER";
    std::set<JournalSource> found;
    int state = sd_journal_query_unique(journal, name.data());
    if (state >= 0) {
        const void* data = nullptr;
        std::size_t size = 0;
        while ((state = sd_journal_enumerate_available_unique(journal, &data, &size)) > 0) {
            const std::string text =
                readableText(std::string_view(static_cast<const char*>(data), size).substr(name.size() + 1));
            if (!text.empty())
                found.insert({journalLog(text, true), text});
        }
    }
    if (state < 0 && result.problem.empty())
        result.problem = std::string("The journal's identifiers cannot be read: ") + std::strerror(-state);
    result.sources.assign(found.begin(), found.end());
    return result;
}

}  // namespace service
