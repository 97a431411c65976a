// A recordset of a framed procedure: each call is a step of its own, with its own line in the log when it
// fails, and the procedure goes on with its next statement. The access modes are those that the shared file
// requires.
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <source_location>
#include <string>
#include <string_view>

#include "core/procedure.h"
#include "core/state.h"
#include "platform/ado/ado.h"

namespace mdlDatabase {

class Rows {
  public:
    using Where = std::source_location;

    // Closed. The frame, and the connection once it is open, must outlive it.
    explicit Rows(core::Frame& frame, platform::Connection& connection = core::gDatabase)
        : frame_(frame), connection_(connection) {}
    // One that another procedure opened, or failed to open.
    Rows(core::Frame& frame, platform::Recordset opened)
        : frame_(frame), connection_(core::gDatabase), rows_(std::move(opened)) {}

    // Reads only: client side, so that rows can be counted and searched. These are false on failure.
    bool openForReading(const platform::Query& query, Where where = Where::current());
    // Changes rows.
    bool openForWriting(const platform::Query& query, Where where = Where::current());
    // Changes one event.
    bool openForEditing(const platform::Query& query, Where where = Where::current());
    // Adds rows to a table, each for itself or in a batch.
    bool openForAdding(std::string_view table, Where where = Where::current());
    bool openForAddingBatch(std::string_view table, Where where = Where::current());
    // Collects changes that one updateBatch applies, all or none.
    bool openForBatch(const platform::Query& query, Where where = Where::current());
    // Fails when it is closed already.
    void close(Where where = Where::current());
    bool isOpen() const noexcept { return rows_.state() == platform::ObjectState::open; }
    // Every call since the last addNew ran, or since the beginning where none was made.
    bool allRan() const noexcept { return allRan_; }

    // The loop over all rows: `while (rows.next())`. The first call, and the first one after rewind, stays at
    // the first row. False at the end, and without a failure when closed.
    bool next(Where where = Where::current());
    // Back before the first row. Fails when there is none.
    void rewind(Where where = Where::current());
    // Whether there is a present row. Both are false on failure, as when closed.
    bool hasRow(Where where = Where::current());
    bool atEnd(Where where = Where::current());
    // Number of rows; 0 on failure.
    long count(Where where = Where::current());
    // Makes the first row for which the criterion holds the present one; false when there is none, and on
    // failure. From the first row on, or after the present one.
    bool find(std::string_view criterion, Where where = Where::current());
    bool findNext(std::string_view criterion, Where where = Where::current());

    bool isNull(std::string_view field, Where where = Where::current());
    // A field of the present row; `otherwise` when it cannot be read.
    std::string text(std::string_view field, Where where = Where::current());
    long number(std::string_view field, long otherwise = 0, Where where = Where::current());
    bool boolean(std::string_view field, Where where = Where::current());

    // Writing: true when it ran. A row is written by update, or in a batch by updateBatch.
    bool addNew(Where where = Where::current());
    bool set(std::string_view field, const platform::Value& value, Where where = Where::current());
    template <std::same_as<bool> Switch>
    bool set(std::string_view field, Switch value, Where where = Where::current()) {
        return set(field, platform::Value(std::int64_t{value ? -1 : 0}), where);
    }
    // Sets a field to that of the same name in another one's present row, in one step.
    bool copy(std::string_view field, const Rows& from, Where where = Where::current());
    bool update(Where where = Where::current());
    bool deleteCurrent(Where where = Where::current());
    bool updateBatch(Where where = Where::current());

    // For what has no step of its own here.
    platform::Recordset& recordset() noexcept { return rows_; }

  private:
    template <std::invocable Action>
    bool step(Action&& action, const Where& where) {
        const bool ran = frame_.step(action, where);
        allRan_ = allRan_ && ran;
        return ran;
    }
    // Another recordset in place of this one, which stays when it cannot be opened.
    template <std::invocable<platform::Recordset&> Open>
    bool replace(Open&& open, const Where& where) {
        return step(
            [&] {
            platform::Recordset opened;
            open(opened);
            rows_ = std::move(opened);
            },
            where);
    }
    bool open(const platform::Query& query, platform::CursorType cursor, platform::LockType lock,
              const Where& where);

    core::Frame& frame_;
    platform::Connection& connection_;
    platform::Recordset rows_;
    bool allRan_ = true;
};

// A statement without rows as a step of its own; false when it failed.
bool execute(core::Frame& frame, const platform::Query& statement,
             std::source_location where = std::source_location::current());

}  // namespace mdlDatabase
