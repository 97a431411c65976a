#include "service/outbox/directory.h"

#include <chrono>
#include <condition_variable>
#include <exception>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>

#include "platform/ado/ado.h"
#include "platform/failure.h"

namespace service {

namespace {

std::string quoted(const std::string& text) {
    std::string result = "'";
    for (const char c : text)
        result.append(c == '\'' ? 2 : 1, c);
    return result + "'";
}

std::optional<std::string> aliasIn(const char* table, const std::string& directoryId,
                                   platform::Connection& directory) {
    platform::Recordset row;
    row.open("SELECT Alias FROM " + std::string(table) + " WHERE DirectoryId = " + quoted(directoryId),
             directory);
    return row.EOF_() || row.isNull("Alias") ? std::nullopt : std::optional(row.text("Alias"));
}

// The newer layout is read through views, which the older one does not have.
bool hasViews(platform::Connection& directory) {
    try {
        platform::Recordset row;
        row.open("SELECT Alias FROM vw_Subscriber_Global WHERE Alias IS NULL", directory);
        return true;
    } catch (const platform::Failure& failure) {
        if (failure.number() != platform::statementFailed)
            throw;
        return false;
    }
}

std::optional<std::string> readAlias(const std::string& directoryId) {
    platform::Connection directory;
    directory.open("Provider=SQLOLEDB.1;Initial Catalog=CorvaneDb");
    const bool views = hasViews(directory);
    auto alias = aliasIn(views ? "vw_Subscriber_Global" : "GlobalSubscriber", directoryId, directory);
    return alias ? alias
                 : aliasIn(views ? "vw_DistributionList" : "DistributionList", directoryId, directory);
}

// A server of a directory may be silent for longer than anybody waits: the search goes on alone then, and
// what it finds is dropped.
struct Search {
    std::mutex mutex;
    std::condition_variable end;
    std::optional<DirectoryAnswer> answer;
};

}  // namespace

DirectoryAnswer directoryAlias(const std::string& directoryId, const Deadline& deadline) {
    const auto search = std::make_shared<Search>();
    std::thread([search, directoryId] {
        DirectoryAnswer answer;
        try {
            answer.alias = readAlias(directoryId);
        } catch (const std::exception& failure) {
            const auto* known = dynamic_cast<const platform::Failure*>(&failure);
            answer.problem = known ? known->description() : failure.what();
        }
        const std::lock_guard lock(search->mutex);
        search->answer = std::move(answer);
        search->end.notify_all();
    }).detach();
    std::unique_lock lock(search->mutex);
    while (!search->answer && !deadline.isOver())
        search->end.wait_for(lock, std::chrono::milliseconds(100));
    return search->answer ? std::move(*search->answer) : DirectoryAnswer{{}, "it does not answer in time"};
}

}  // namespace service
