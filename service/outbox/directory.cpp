#include "service/outbox/directory.h"

#include <exception>
#include <utility>

#include "platform/ado/ado.h"
#include "platform/failure.h"
#include "service/transports/abandonable.h"

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

}  // namespace

DirectoryAnswer directoryAlias(const std::string& directoryId, const Deadline& deadline) {
    // A server of a directory may be silent for longer than anybody waits.
    auto answer = abandonable<DirectoryAnswer>(
        [directoryId] {
        DirectoryAnswer found;
        try {
            found.alias = readAlias(directoryId);
        } catch (const platform::Failure& failure) {
            found.problem = failure.description();
        } catch (const std::exception& failure) {
            found.problem = failure.what();
        }
        return found;
        },
        deadline);
    return answer ? std::move(*answer) : DirectoryAnswer{{}, "it does not answer in time"};
}

}  // namespace service
