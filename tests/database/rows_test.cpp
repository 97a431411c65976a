// Rows of a procedure: each call is a step with a line of its own.

#include "database/rows.h"

#include "core/procedure.h"
#include "storeFixture.h"

namespace {

using databaseTest::Lines;
using mdlDatabase::Rows;

class RowsTest : public databaseTest::Store {
  protected:
    template <class Body>
    void frame(Body&& body) {
        core::procedure("mdlDatabase", "rowsTest", [&](core::Frame& frame) { body(frame); });
    }
    // The failures' ends: " Line: 12".
    static Lines at(std::initializer_list<int> lines) {
        Lines ends;
        for (const int line : lines)
            ends.push_back("Line: " + std::to_string(line));
        return ends;
    }
    Lines linesOfFailures() {
        Lines ends;
        for (const std::string& line : logOf("rowsTest"))
            ends.push_back(line.substr(std::min(line.rfind("Line: "), line.size())));
        return ends;
    }
};

TEST_F(RowsTest, EachCallThatFailsHasItsOwnLineAndTheNextOneRuns) {
    int first = 0;
    frame([&](core::Frame& frame) {
        Rows rows(frame);
        first = __LINE__;
        EXPECT_FALSE(rows.openForReading("SELECT * FROM Nowhere"));
        EXPECT_FALSE(rows.hasRow());
        EXPECT_FALSE(rows.atEnd()) << "nobody knows";
        EXPECT_EQ(rows.number("A", 7), 7);
        EXPECT_FALSE(rows.next()) << "a loop over nothing tells nothing";
        EXPECT_FALSE(mdlDatabase::execute(frame, "DELETE FROM Nowhere"));
        EXPECT_TRUE(rows.openForAdding("Events"));
        EXPECT_FALSE(rows.allRan());
        EXPECT_TRUE(rows.addNew() && rows.set("EventSource", "one") && rows.set("EventActive", true));
        EXPECT_TRUE(rows.allRan()) << "since the row was begun";
        EXPECT_FALSE(rows.set("EventType", std::int64_t{100000}));
        EXPECT_FALSE(rows.allRan());
        EXPECT_TRUE(rows.update());
        rows.close();
        rows.close();
    });
    EXPECT_EQ(linesOfFailures(),
              at({first + 1, first + 2, first + 3, first + 4, first + 6, first + 11, first + 15}));
    EXPECT_EQ(rows("SELECT EventActive, EventType FROM Events WHERE EventSource = 'one'"), Lines{"-1|NULL"});
}

TEST_F(RowsTest, LoopsOverAllRowsAlsoASecondTimeAndPastOnesThatAreDeleted) {
    makeRecipients({"Ann", "Ben", "Cid"});
    frame([&](core::Frame& frame) {
        Rows rows(frame);
        rows.openForBatch("SELECT * FROM Recipients");
        std::string names;
        while (rows.next())
            names += rows.text("RecipientName");
        EXPECT_FALSE(rows.next());
        rows.rewind();
        while (rows.next()) {
            names += rows.text("RecipientName");
            rows.deleteCurrent();
        }
        EXPECT_EQ(names, "AnnBenCidAnnBenCid");
        EXPECT_TRUE(rows.updateBatch());
        EXPECT_FALSE(rows.find("RecipientKey = 1")) << "none is left to be looked at";
    });
    EXPECT_EQ(linesOfFailures(), Lines());
    EXPECT_EQ(value("SELECT count(*) FROM Recipients"), "0");
}

}  // namespace
