#include "server/directoryQuery.h"

#include <gtest/gtest.h>

namespace {

using directoryQuery::buildSQLQuery;
using directoryQuery::Search;

TEST(DirectoryQuery, SubscribersOfBothLayouts) {
    const std::string tables =
        "SELECT Subscriber.Alias, Subscriber.DisplayName, CallHandler.DtmfAccessId, Subscriber.FirstName, "
        "Subscriber.LastName, CallHandler.CallHandlerObjectId, Subscriber.DirectoryId, "
        "Subscriber.SubscriberObjectId FROM CallHandler INNER JOIN Subscriber ON "
        "CallHandler.CallHandlerObjectId = Subscriber.CallHandlerObjectId WHERE (Subscriber.SubscriberType "
        "IN (1,2,3))FILTER GROUP BY Subscriber.Alias, Subscriber.DisplayName, CallHandler.DtmfAccessId, "
        "Subscriber.FirstName, Subscriber.LastName , CallHandler.CallHandlerObjectId, "
        "Subscriber.DirectoryId, Subscriber.SubscriberObjectId ORDER BY Subscriber.Alias";
    const auto expected = [&](bool views, const std::string& filter) {
        std::string statement = tables;
        statement.replace(statement.find("FILTER"), 6, filter);
        if (views)
            for (const std::string table :
                 {"Subscriber.", "CallHandler.", "CallHandler INNER", "Subscriber ON"})
                for (std::size_t at = 0; (at = statement.find(table, at)) != std::string::npos;
                     at += 3 + table.size())
                    statement.insert(at, "vw_");
        return statement;
    };
    for (const bool views : {false, true}) {
        const std::string table = "Subscriber.";
        const auto built = [&](short field, const char* text) {
            return buildSQLQuery({views, directoryQuery::searchSubscribers, field, text, "(1,2,3)"});
        };
        EXPECT_EQ(built(4, "*"), expected(views, ""));
        EXPECT_EQ(built(1, ""), expected(views, " AND (" + table + "DTMFAccessID is null OR " + table +
                                                    "DTMFAccessID = '') "));
        EXPECT_EQ(built(2, "  k*m* "), expected(views, " AND (" + table + "Alias LIKE 'k%m%') "));
        EXPECT_EQ(built(3, "O'Brien"), expected(views, " AND (" + table + "FirstName LIKE 'O'Brien') "));
        EXPECT_EQ(built(4, "  "), expected(views, " AND (" + table + "LastName LIKE '') "));
        EXPECT_EQ(built(4, "**"), expected(views, " AND (" + table + "LastName LIKE '%%') "));
        EXPECT_EQ(built(4, " *"), expected(views, " AND (" + table + "LastName LIKE '%') "));
    }
}

TEST(DirectoryQuery, DistributionListsHaveAConditionOnlyWithAFilter) {
    Search search{false, directoryQuery::searchDistributionLists, 0, "*", "(1,2,3)"};
    const std::string plain =
        "SELECT Alias, DisplayName, DtmfAccessId, SystemDListObjectId, DirectoryId FROM ";
    EXPECT_EQ(buildSQLQuery(search), plain + "DistributionList ORDER BY Alias");
    search.views = true;
    EXPECT_EQ(buildSQLQuery(search), plain + "vw_DistributionList ORDER BY Alias");
    search.text = "";
    EXPECT_EQ(buildSQLQuery(search),
              plain +
                  "vw_DistributionList WHERE (1=1)  AND (vw_DistributionList.DisplayName is null OR "
                  "vw_DistributionList.DisplayName = '') ORDER BY Alias");
    search.text = "9*";
    search.searchField = 1;
    EXPECT_EQ(buildSQLQuery(search), plain +
                                         "vw_DistributionList WHERE (1=1)  AND "
                                         "(vw_DistributionList.DTMFAccessID LIKE '9%')  ORDER BY Alias");
}

}  // namespace
