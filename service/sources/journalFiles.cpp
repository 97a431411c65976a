#include "service/sources/journalFiles.h"

#include <systemd/sd-journal.h>

#include <cerrno>
#include <cstring>
#include <system_error>

namespace service {

namespace {

namespace fs = std::filesystem;

void findFiles(const fs::path& folder, bool goesDeeper, std::vector<fs::path>& files, bool& isRefused) {
    std::error_code error;
    fs::directory_iterator entries(folder, error);
    isRefused = isRefused || error == std::errc::permission_denied;
    for (; !error && entries != fs::directory_iterator(); entries.increment(error)) {
        std::error_code ignored;
        if (entries->path().extension() == ".journal")
            files.push_back(entries->path());
        else if (goesDeeper && entries->is_directory(ignored))
            findFiles(entries->path(), false, files, isRefused);
    }
}

int openError(const fs::path& file) {
    sd_journal* journal = nullptr;
    const char* paths[] = {file.c_str(), nullptr};
    const int result = sd_journal_open_files(&journal, paths, 0);
    sd_journal_close(journal);
    return result < 0 ? -result : 0;
}

bool isSystemsOwn(const fs::path& file) {
    return file.filename().string().starts_with("system");
}

std::string refusal(const fs::path& folder) {
    return folder.empty() ? "This account may not read the machine's journal: add it to the group"
                            " systemd-journal (usermod -aG systemd-journal NAME) and log in again."
                          : "This account may not read the journal in " + folder.string() + ".";
}

std::string absence(const fs::path& folder) {
    return folder.empty() ? "This machine keeps no journal: there is none in /var/log/journal or"
                            " /run/log/journal. Start systemd-journald, or take JournalFolder for a journal"
                            " elsewhere."
                          : "There is no journal in " + folder.string() + ".";
}

}  // namespace

JournalFiles inspectJournalFiles(const fs::path& folder) {
    std::vector<fs::path> files;
    bool isRefused = false;
    if (!folder.empty()) {
        findFiles(folder, true, files, isRefused);
    } else {
        findFiles("/var/log/journal", true, files, isRefused);
        findFiles("/run/log/journal", true, files, isRefused);
    }
    JournalFiles result;
    for (const fs::path& file : files) {
        const int error = openError(file);
        if (error == EACCES || error == EPERM)
            isRefused = isRefused || !folder.empty() || isSystemsOwn(file);
        // A file that was removed meanwhile is no damage.
        else if (error != 0 && error != ENOENT)
            result.damaged.push_back("The journal file " + file.string() + " cannot be read (" +
                                     std::strerror(error) + "); the others are read without it.");
    }
    if (isRefused)
        result.problem = refusal(folder);
    else if (files.empty())
        result.problem = absence(folder);
    return result;
}

}  // namespace service
