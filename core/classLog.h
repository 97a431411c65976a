// The diagnostic log: one text file per run with a line at entry and exit of every framed procedure and
// a line for every failure. It must never take the program down and never loop.
#pragma once

#include <cstdint>
#include <exception>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "platform/files/textStream.h"

namespace platform {
class Recordset;
}

namespace core {

enum LogLevel : long { logInfo = 0, logWarning = 1, logError = 2, logVersionInfo = 3 };

class classLog {
  public:
    // `directory` is the folder of the logs; by default "LOGS" in the program's folder. Created if missing.
    explicit classLog(std::filesystem::path directory = {});

    const std::string& strLogFile() const noexcept { return strLogFile_; }
    void setStrLogFile(std::string path) { strLogFile_ = std::move(path); }

    // Writes one line. Level 3 and 0 only at full verbosity, 1 and 2 always.
    void log(std::string_view text, long level, std::string_view tag);
    // True when the program runs inside its development host: the executable's name ends in "IDE.EXE".
    bool DebugMode() const;
    // Entry and exit of a framed procedure; `tag` is "[module]procedure".
    void enterProc(std::string_view tag);
    void exitProc(std::string_view tag);

    // Diagnosis: the content of things, at level 3 (the dictionary at level 0), under the tag given.
    void dumpRecordsets(platform::Recordset& recordset, std::string_view tag);
    // An item without a text is itself a dictionary.
    using Dictionary = std::map<std::string, std::optional<std::string>>;
    void dumpDictionary(const Dictionary& dictionary, std::string_view tag);
    void dumpCommandObject(std::string_view commandText, const Dictionary& parameters, std::string_view tag);
    // Closes the stream; the next entry opens a new file.
    void closeLog();

  private:
    void openLogFile();
    void logToFile(std::string_view text, long level, std::string_view tag);
    void writeHeader();
    void writeEntry(std::string_view text, long level, std::string_view tag);
    void logOwnFailure(const std::exception& error, std::string_view tag);
    template <class Action>
    void attempt(std::string_view tag, Action&& action);
    std::string makeLogFileName();
    void checkSizeOfLogs();
    long openInstances(std::string_view tag) const;
    void setCallDepth(long depth);

    long logLevel_ = 2;
    std::string strLogFile_;
    platform::TextStream logStream_;
    long callDepth_ = 0;
    std::string indent_;
    std::string line_;  // the line that is being written
    std::map<std::string, float, std::less<>> timers_;
    std::filesystem::path logDirectory_;
    bool debugOutput_ = false;
    bool loggingOwnFailure_ = false;
};

// Days that a log is kept, by the free space of its disk.
int logRetentionDays(std::uint64_t freeBytes);

// The run's log, created at first use.
classLog& gLog();
// Ends the present log; the next use creates a new one. For tests, which see several runs.
void resetLog();

}  // namespace core
