// The statement dialect and its date literals. What comes out is judged by the engine itself.

#include <sqlite3.h>

#include <tuple>

#include "fuzz.h"
#include "platform/ado/ado.h"
#include "platform/ado/dialect.h"
#include "platform/failure.h"
#include "platform/machine/clock.h"

namespace {

auto parts(const platform::LocalTime& time) {
    return std::tie(time.year, time.month, time.day, time.hour, time.minute, time.second);
}

void checkMoment(std::string_view text) {
    platform::LocalTime moment{};
    if (!platform::parseMoment(text, moment))
        return;
    for (const std::string& form : {platform::storedForm(moment), platform::defaultForm(moment)}) {
        platform::LocalTime again{};
        fuzz::insist(platform::parseMoment(form, again), "a moment that was written can be read");
        fuzz::insist(parts(again) == parts(moment), "and is the same");
    }
}

sqlite3* engine() {
    static sqlite3* const handle = [] {
        sqlite3* opened = nullptr;
        sqlite3_open_v2(":memory:", &opened, SQLITE_OPEN_READWRITE, nullptr);
        sqlite3_exec(opened, "CREATE TABLE Log(LogKey, LogTime)", nullptr, nullptr, nullptr);
        return opened;
    }();
    return handle;
}

// A second statement must have been refused before the engine saw any of it.
void checkSingle(const std::string& statement) {
    sqlite3_stmt* prepared = nullptr;
    const char* tail = nullptr;
    const int code =
        sqlite3_prepare_v2(engine(), statement.data(), static_cast<int>(statement.size()), &prepared, &tail);
    sqlite3_finalize(prepared);
    if (code == SQLITE_OK && prepared)
        fuzz::insist(
            platform::ado::nothingToRun(statement.substr(static_cast<std::size_t>(tail - statement.data()))),
            "one statement comes out");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text = fuzz::textOf(data, size);
    checkMoment(text);
    std::string whole;
    platform::ado::Lexer lexer(text);
    for (platform::ado::Token token{}; lexer.next(token);)
        whole += token.text;
    fuzz::insist(whole == text, "the tokens are the text");
    fuzz::insist(platform::ado::spelledOut(text) == text, "without numbers a statement is shown as it is");
    try {
        const std::string statement = platform::translateStatement(text);
        fuzz::insist(platform::translateStatement(statement) == statement, "a translation stays as it is");
        std::ignore = platform::ado::withRowId(statement, "id");
        checkSingle(statement);
    } catch (const platform::Failure& failure) {
        fuzz::insist(failure.number() == platform::statementFailed, "a refusal is a statement's failure");
    }
    return 0;
}
