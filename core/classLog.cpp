#include "core/classLog.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <memory>

#include "core/mdlVerInfo.h"
#include "platform/ado/ado.h"
#include "platform/failure.h"
#include "platform/files/files.h"
#include "platform/machine/caseFold.h"
#include "platform/machine/clock.h"
#include "platform/machine/debugger.h"
#include "platform/machine/host.h"

namespace core {

namespace {

constexpr int fullVerbosity = 2;
constexpr std::array<std::string_view, 4> levelNames{"Info", "Warning", "ERROR", "VerInfo"};
constexpr std::size_t levelWidth = 7;
constexpr std::size_t tagWidth = 45;
constexpr std::size_t headerWidth = 120;
constexpr std::size_t rulerWidth = 80;
constexpr std::size_t modulePathLimit = 255;
constexpr int debugAttempts = 10;
constexpr char checkTag[] = "[classLog]checkSizeOfLogs";

// snprintf into a string; the formats here never give more than the buffer holds.
template <class... Values>
std::string printed(const char* format, Values... values) {
    std::array<char, 400> buffer{};
    std::snprintf(buffer.data(), buffer.size(), format, values...);
    return buffer.data();
}

std::string rightAligned(std::string_view text, std::size_t width) {
    return std::string(text.size() < width ? width - text.size() : 0, ' ').append(text);
}

void appendRightAligned(std::string& line, std::string_view text, std::size_t width) {
    if (text.size() < width)
        line.append(width - text.size(), ' ');
    line += text;
}

void appendTwoDigits(std::string& line, int number, char after) {
    line += static_cast<char>('0' + number / 10);
    line += static_cast<char>('0' + number % 10);
    line += after;
}

std::string leftAligned(std::string_view text, std::size_t width) {
    std::string result(text);
    result.resize(std::max(width, text.size()), ' ');
    return result;
}

// The longest beginning that can be written: up to the first byte that belongs to no character.
std::string_view writablePart(std::string_view text) {
    constexpr std::size_t longestCharacter = 4;
    std::size_t end = 0;
    while (end < text.size()) {
        std::size_t length = 1;
        while (length <= longestCharacter && !platform::isValidUtf8(text.substr(end, length)))
            ++length;
        if (length > longestCharacter)
            break;
        end += length;
    }
    return text.substr(0, end);
}

// "###,###": thousands separated, nothing at all for 0.
std::string groupedNumber(double value) {
    const long long rounded = std::llround(value);
    if (rounded == 0)
        return {};
    std::string digits = std::to_string(rounded);
    for (std::size_t i = digits.size(); i > 3; i -= 3)
        digits.insert(i - 3, ",");
    return digits;
}

// "##0.#": at most one decimal; the point stays even when no decimal follows it.
std::string oneDecimal(double value) {
    std::string text = printed("%.1f", static_cast<double>(std::llround(value * 10)) / 10);
    if (text.back() == '0')
        text.pop_back();
    return text;
}

// A double in a form of printf's, many times faster.
std::string digits(double number, std::chars_format form, int precision) {
    std::array<char, 64> buffer{};
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number, form, precision).ptr;
    return {buffer.data(), end};
}

// "###0.0#####": one to six decimals.
std::string elapsedTime(float seconds) {
    std::string text = digits(static_cast<double>(seconds), std::chars_format::fixed, 6);
    while (text.back() == '0' && text[text.size() - 2] != '.')
        text.pop_back();
    return text == "-0.0" ? "0.0" : text;
}

std::string timerText(float seconds) {
    return digits(static_cast<double>(seconds), std::chars_format::general, 7);
}

std::string instanceKey(std::string_view tag, long instance) {
    std::string key;
    key.reserve(tag.size() + 8);
    return key.append(tag).append(1, '_').append(std::to_string(instance));
}

float timer() {
    return static_cast<float>(platform::secondsSinceMidnight());
}

platform::LocalTime present() {
    return platform::localTime(platform::clock().now());
}

std::string failureText(const std::exception& error) {
    const auto* failure = dynamic_cast<const platform::Failure*>(&error);
    const long number = failure ? failure->number() : static_cast<long>(platform::invalidProcedureCall);
    return "Err.Number = " + std::to_string(number) + " Err.Description = " + error.what();
}

std::unique_ptr<classLog>& presentLog() {
    static std::unique_ptr<classLog> log;
    return log;
}

}  // namespace

int logRetentionDays(std::uint64_t freeBytes) {
    if (freeBytes > 500'000'000)
        return 30;
    return freeBytes < 100'000'000 ? 10 : 14;
}

classLog::classLog(std::filesystem::path directory) : logDirectory_(std::move(directory)) {
    strLogFile_ = makeLogFileName();
    debugOutput_ = platform::foldAscii(platform::program::commandLine()).find("debug") != std::string::npos;
    checkSizeOfLogs();
}

std::string classLog::makeLogFileName() {
    if (logDirectory_.empty())
        logDirectory_ = platform::program::folder() / "LOGS";
    if (!platform::files::folderExists(logDirectory_)) {
        try {
            platform::files::createFolder(logDirectory_);
        } catch (const platform::Failure&) {
            // Nothing can be written about it without the folder; the first entry fails at the same place.
        }
    }
    const platform::LocalTime now = present();
    const std::string moment =
        printed("%04d%02d%02d_%02d%02d%02d", now.year, now.month, now.day, now.hour, now.minute, now.second);
    return (logDirectory_ / (platform::program::name() + "_" + moment + ".LOG")).string();
}

void classLog::log(std::string_view text, long level, std::string_view tag) {
    if (debugOutput_)
        platform::outputDebugString(platform::program::name() + ":(" + std::string(tag) + ") " +
                                    std::string(text));
    const bool always = level == logWarning || level == logError;
    if (always || (level == logVersionInfo && logLevel_ == fullVerbosity) ||
        (level == logInfo && logLevel_ >= fullVerbosity))
        logToFile(text, level, tag);
}

// Runs a statement of the log's own. Its failure is logged and goes no further; inside the development host
// the statement is tried again, as often as a procedure would.
template <class Action>
void classLog::attempt(std::string_view tag, Action&& action) {
    for (int tries = 0; tries < debugAttempts; ++tries) {
        try {
            action();
            return;
        } catch (const std::exception& error) {
            // A log that cannot be written cannot say so either.
            if (loggingOwnFailure_)
                return;
            logOwnFailure(error, tag);
            if (!DebugMode())
                return;
        }
    }
}

void classLog::logOwnFailure(const std::exception& error, std::string_view tag) {
    loggingOwnFailure_ = true;
    log(failureText(error), logError, tag);
    loggingOwnFailure_ = false;
}

void classLog::logToFile(std::string_view text, long level, std::string_view tag) {
    attempt("logToFile", [&] {
        // Never opened, or gone.
        if (!logStream_.isOpen()) {
            openLogFile();
            writeHeader();
        }
        writeEntry(text, level, tag);
    });
}

void classLog::openLogFile() {
    // A folder that is a link would spread lines that hold the database's texts over somebody else's files.
    platform::files::requireOwnFolder(std::filesystem::path(strLogFile_).parent_path());
    logStream_.open(strLogFile_);
}

void classLog::writeHeader() {
    const std::string ruler(headerWidth, '*');
    const mdlVerInfo::ProgramVersion version = mdlVerInfo::programVersion();
    logStream_.write("\n" + ruler + "\n");
    logStream_.write(platform::program::name() + " Version: " + std::to_string(version.major) + "." +
                     std::to_string(version.minor) + "." + std::to_string(version.revision) +
                     "   Started: " + platform::defaultForm(present()) + "\n");
    logStream_.write(ruler + "\n");
}

void classLog::writeEntry(std::string_view text, long level, std::string_view tag) {
    const platform::LocalTime now = present();
    // One buffer for all lines: the frame writes two for each call.
    line_.clear();
    appendTwoDigits(line_, now.hour, ':');
    appendTwoDigits(line_, now.minute, ':');
    appendTwoDigits(line_, now.second, ' ');
    appendRightAligned(line_, levelNames.at(static_cast<std::size_t>(level)), levelWidth);
    line_ += ":(";
    // An empty tag is twenty blanks, which alignment makes the same as none.
    appendRightAligned(line_, tag.substr(0, tagWidth), tagWidth);
    line_.append(") ").append(indent_);
    const std::size_t beginning = line_.size();
    const auto write = [&](std::string_view shown) {
        line_.resize(beginning);
        line_.append(shown).append(1, '\n');
        logStream_.write(line_);
    };
    try {
        write(text);
    } catch (const platform::Failure& failure) {
        if (failure.number() != platform::invalidProcedureCall)
            throw;
        write(writablePart(text));
    }
}

void classLog::setCallDepth(long depth) {
    callDepth_ = std::max(0L, depth);
    indent_.assign(static_cast<std::size_t>(callDepth_) * 2, ' ');
}

// The lowest instance number that is free. A procedure that runs inside itself gets the next one.
long classLog::openInstances(std::string_view tag) const {
    long instance = 0;
    std::string key = instanceKey(tag, instance);
    while (timers_.contains(key)) {
        key.resize(tag.size() + 1);
        key += std::to_string(++instance);
    }
    return instance;
}

void classLog::enterProc(std::string_view tag) {
    attempt("enterProc", [&] {
        const float start = timer();
        const std::string key = instanceKey(tag, openInstances(tag));
        timers_.emplace(key, start);
        log("Entering " + key, logInfo, tag);
        setCallDepth(callDepth_ + 1);
    });
}

void classLog::exitProc(std::string_view tag) {
    // Required: an exit without an entry is instance -1, without times.
    const std::string key = instanceKey(tag, openInstances(tag) - 1);
    const float end = timer();
    setCallDepth(callDepth_ - 1);
    std::string text;
    text.reserve(key.size() + 80);
    text.append("Exiting  ").append(key);
    if (const auto open = timers_.find(key); open != timers_.end()) {
        const float start = open->second;
        // Required: a call that crosses midnight shows a negative time.
        text.append(" Start: ").append(timerText(start)).append(" End: ").append(timerText(end));
        text.append(" - Elapsed: ").append(elapsedTime(end - start));
        timers_.erase(open);
    }
    log(text, logInfo, tag);
}

bool classLog::DebugMode() const {
    std::string ending = platform::program::file().string().substr(0, modulePathLimit);
    ending.erase(0, ending.size() - std::min<std::size_t>(7, ending.size()));
    for (char& c : ending)
        c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    return ending == "IDE.EXE";
}

void classLog::checkSizeOfLogs() {
    constexpr double million = 1'000'000;
    platform::files::DiskSpace space{};
    attempt(checkTag, [&] { space = platform::files::diskSpace(logDirectory_); });
    const auto cutOff = platform::daysBefore(platform::clock().now(), logRetentionDays(space.freeBytes));

    std::vector<platform::files::Entry> files;
    attempt(checkTag, [&] {
        files = platform::files::listFiles(logDirectory_);
        std::uint64_t size = 0;
        for (const auto& file : files)
            size += file.size;
        log("Removing logs older than " + platform::defaultForm(platform::localTime(cutOff)) +
                " - Log Directory Size: " + oneDecimal(static_cast<double>(size) / million) + " MB   " +
                groupedNumber(static_cast<double>(space.freeBytes) / million) + " MB Free   " +
                groupedNumber(static_cast<double>(space.totalBytes) / million) + " MB Total ",
            logInfo, checkTag);
    });
    // A link there leads to somebody else's files.
    if (!platform::files::isOwnFolder(logDirectory_))
        files.clear();
    for (const auto& file : files) {
        if (file.name.find("LOG") == std::string::npos || file.modified >= cutOff)
            continue;
        // Without force: a log that somebody made read-only is to stay.
        attempt(checkTag, [&] { platform::files::deleteFile(logDirectory_ / file.name); });
    }
}

void classLog::closeLog() {
    logStream_.close();
    strLogFile_ = makeLogFileName();
}

void classLog::dumpRecordsets(platform::Recordset& recordset, std::string_view tag) {
    if (recordset.state() == platform::ObjectState::closed || (recordset.BOF_() && recordset.EOF_()))
        return;
    recordset.moveFirst();
    log(std::string(rulerWidth, '*'), logVersionInfo, tag);
    log("Object Recordset Dump", logVersionInfo, tag);
    log(std::string(rulerWidth, '*'), logVersionInfo, tag);
    while (recordset.next()) {
        for (std::size_t i = 0; i < recordset.fieldCount(); ++i) {
            const std::string& name = recordset.fieldName(i);
            log(leftAligned(name, 32) + "    " + platform::valueText(recordset.value(name)), logVersionInfo,
                tag);
        }
        log(std::string(rulerWidth, '-'), logVersionInfo, tag);
    }
    recordset.moveFirst();
}

void classLog::dumpDictionary(const Dictionary& dictionary, std::string_view tag) {
    log("Dumping dictionary...", logInfo, tag);
    for (const auto& [key, item] : dictionary)
        log(rightAligned(key, 53) + "    " + item.value_or("Dictionary..."), logInfo, tag);
}

void classLog::dumpCommandObject(std::string_view commandText, const Dictionary& parameters,
                                 std::string_view tag) {
    const std::string ruler(rulerWidth, '*');
    log(ruler, logVersionInfo, tag);
    log("Command Object Dump: " + std::string(commandText), logVersionInfo, tag);
    log(ruler, logVersionInfo, tag);
    for (const auto& [name, value] : parameters)
        log(leftAligned(name, 31) + "    " + value.value_or(""), logVersionInfo, tag);
    log(ruler, logVersionInfo, tag);
}

classLog& gLog() {
    if (!presentLog())
        presentLog() = std::make_unique<classLog>();
    return *presentLog();
}

void resetLog() {
    presentLog().reset();
}

}  // namespace core
