#include "platform/ado/oneSelect.h"

#include <gtest/gtest.h>

#include "support/adoFixture.h"

namespace {

long verdict(const std::string& statement) {
    return adoTest::failureOf([&] { platform::ado::requireOneSelect(statement); });
}

// A search as the directory window sends it, with a typed text in it.
std::string search(const std::string& typed) {
    return "SELECT A.Alias FROM A INNER JOIN B ON A.Id = B.Id WHERE (A.Kind IN (1,2,3)) AND (A.Alias LIKE '" +
           typed + "')  GROUP BY A.Alias ORDER BY A.Alias";
}

TEST(OneSelect, LetsTheConsolesOwnStatementsPass) {
    for (const char* typed : {"%", "", "kim", "O''Brien", "a;b", "a -- b", "/* x", "#1#", "[x]", "$$", "\"",
                              "DROP TABLE x", "Zoë Yılmaz"})
        EXPECT_EQ(verdict(search(typed)), 0) << typed;
    for (const char* statement : {"SELECT DtmfAccessId FROM GlobalSubscriber", " SELECT \"a b\" FROM t ; ",
                                  "select * from t where a in (select b from u) union all select 1 from v"})
        EXPECT_EQ(verdict(statement), 0) << statement;
}

TEST(OneSelect, RefusesWhatSomeServerWouldRunAsMore) {
    // After the first apostrophe the typed text is part of the statement.
    for (const char* typed :
         {"O'Brien", "x'; DELETE FROM A --", "x') DELETE FROM A COMMIT --", "x') SELECT 1 --",
          "x') UNION SELECT 1 INTO B; --", "x' OR $$'$$ = 'a'; DELETE FROM A WHERE '' = '",
          "x' OR E'\\'' = 'a'; DELETE FROM A WHERE '' = '", "\\'; DELETE FROM A; SELECT '",
          "x' /* /* */ ' */; DELETE FROM A; SELECT '", "x' OR q'[']' = '' OR '' = '",
          "x' OR `'` = 'a'; DELETE FROM A WHERE '' = '", "x' # '\n; DELETE FROM A WHERE '' = '",
          "x' OR [a'b] = '", "x' OR \"a", "x' OR a::text = 'b", "x' OR @v = 'b", "x' OR a = ? OR '' = '"})
        EXPECT_EQ(verdict(search(typed)), platform::statementFailed) << typed;
    EXPECT_EQ(verdict(std::string("SELECT 1\0 FROM A", 16)), platform::statementFailed);
    for (const char* statement :
         {"", " ", "(SELECT 1) SELECT 2", "SELECT a FROM t FOR UPDATE", "SELECT a INTO b FROM t"})
        EXPECT_EQ(verdict(statement), platform::statementFailed) << statement;
    for (const char* statement : {"DELETE FROM A", "insert into A values (1)", "PRAGMA x", "COMMIT",
                                  "WITH x AS (DELETE FROM A RETURNING *) SELECT * FROM x"})
        EXPECT_EQ(verdict(statement), platform::providerError) << statement;
}

}  // namespace
