// The machine's journal as a source of event records: read behind a position, each record once.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "service/sources/source.h"

struct sd_journal;

namespace service {

struct CloseJournal {
    void operator()(sd_journal* journal) const noexcept;
};
using JournalHandle = std::unique_ptr<sd_journal, CloseJournal>;
// The system's journal, or the journal files of a folder; an empty handle, and the errno in `error` where
// that is asked for, when it cannot be opened.
JournalHandle openJournal(const std::filesystem::path& folder, int* error = nullptr);

// Nothing here raises: a journal that cannot be read gives an empty batch and a notice,
// once for each reason, and is tried again at the next look.
class Journal : public Source {
  public:
    // The system's journal, or the journal files of a folder.
    explicit Journal(std::filesystem::path folder = {});
    ~Journal() override;
    Journal(const Journal&) = delete;
    Journal& operator=(const Journal&) = delete;

    std::string name() const override { return "Journal"; }
    // In a journal without records, or one that cannot be read, the present moment.
    std::string end() override;
    // Up to `most` records behind `position`. Records that are gone by now are told as a gap with the moments
    // on both sides, one that cannot be read is skipped and told, and the batch begins with what is there.
    Batch read(const std::string& position, std::size_t most) override;

    // -1 while the journal cannot be opened.
    int descriptor() const noexcept override;
    // Why nothing, or not all, can be read and what to do about it, in one line; empty when all is well.
    const std::string& problem() const noexcept { return problem_; }

  private:
    bool open(std::vector<std::string>& notices);
    void noteChanges();
    bool seek(Batch& batch);
    int step(Batch& batch);
    void noteClock(std::uint64_t moment, std::vector<std::string>& notices);

    std::filesystem::path folder_;
    JournalHandle journal_;
    std::string reached_;           // the position that journal_ stands at
    bool isAtRecord_ = false;       // it stands at the first record behind it, which was not taken yet
    std::uint64_t lastMoment_ = 0;  // of the last record, microseconds since 1970
    std::string problem_;
    std::set<std::string> toldDamage_;
};

// The names under which programs write into a journal (SYSLOG_IDENTIFIER), each in the log that its records
// belong to; names that differ in case are names of their own.
struct JournalSource {
    std::string log;  // "Application" or "System"
    std::string name;

    auto operator<=>(const JournalSource&) const = default;
};
struct JournalSources {
    std::vector<JournalSource> sources;  // sorted
    std::string problem;                 // as Journal::problem
};
JournalSources journalSources(const std::filesystem::path& folder = {});

}  // namespace service
