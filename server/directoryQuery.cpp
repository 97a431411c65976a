#include "server/directoryQuery.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace directoryQuery {

namespace {

// Blanks only: a tab that was pasted in is part of what is searched.
std::string_view trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(' ');
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

// The subscriber's own extension is named in its table's spelling, while the statement shows the one of his
// call handler.
constexpr std::array<std::string_view, 5> conditionColumns{"DisplayName", "DTMFAccessID", "Alias",
                                                           "FirstName", "LastName"};

std::string filterOf(const Search& search, const std::string& table) {
    if (search.text == "*" || search.searchField < displayName || search.searchField > lastName)
        return {};
    const std::string column =
        table + "." + std::string(conditionColumns[static_cast<std::size_t>(search.searchField)]);
    if (search.text.empty()) {
        const std::string blank = " AND (" + column + " is null OR " + column + " = '')";
        return search.searchField == displayName ? blank : blank + " ";
    }
    return " AND (" + column + " LIKE '" + std::string(trimmed(search.text)) + "') ";
}

// Each subscriber with the extension of his call handler.
std::string subscribers(const Search& search, const std::string& prefix) {
    const std::string subscriber = prefix + "Subscriber";
    const std::string handler = prefix + "CallHandler";
    const std::string names = subscriber + ".Alias, " + subscriber + ".DisplayName, " + handler +
                              ".DtmfAccessId, " + subscriber + ".FirstName, " + subscriber + ".LastName";
    const std::string ids = ", " + handler + ".CallHandlerObjectId, " + subscriber + ".DirectoryId, " +
                            subscriber + ".SubscriberObjectId";
    return "SELECT " + names + ids + " FROM " + handler + " INNER JOIN " + subscriber + " ON " + handler +
           ".CallHandlerObjectId = " + subscriber + ".CallHandlerObjectId WHERE (" + subscriber +
           ".SubscriberType IN " + search.subscriberTypes + ")" + filterOf(search, subscriber) +
           " GROUP BY " + names + " " + ids + " ORDER BY " + subscriber + ".Alias";
}

std::string distributionLists(const Search& search, const std::string& prefix) {
    const std::string list = prefix + "DistributionList";
    const std::string filter = filterOf(search, list);
    return "SELECT Alias, DisplayName, DtmfAccessId, SystemDListObjectId, DirectoryId FROM " + list +
           (filter.empty() ? "" : " WHERE (1=1) " + filter) + " ORDER BY Alias";
}

}  // namespace

std::string buildSQLQuery(const Search& search) {
    const std::string prefix = search.views ? "vw_" : "";
    std::string statement = search.selectMode == searchSubscribers ? subscribers(search, prefix)
                                                                   : distributionLists(search, prefix);
    std::ranges::replace(statement, '*', '%');
    return statement;
}

}  // namespace directoryQuery
