// The present row of a recordset, and the search for one.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/ado/resultRows.h"

namespace platform::ado {

class Cursor {
  public:
    // At the first row. The rows must outlive it.
    explicit Cursor(ResultRows& rows) : rows_(rows) {}

    bool atEnd() const noexcept { return position_ >= rows_.end(); }
    std::size_t position() const noexcept { return position_; }
    // Raises 3021 at the end and on a row that was deleted here.
    Row& present() const;
    // To the first row; raises 3021 when there is none.
    void moveFirst();
    // To the next row, also from one that was deleted; raises 3021 at the end.
    void moveNext();
    // To any row, whether deleted or not.
    void moveTo(std::size_t position) noexcept { position_ = position; }

    // Moves to the first row from `start` plus `skip` on for which the criterion holds, or to the end: what
    // ado.h says of Recordset::find.
    void find(std::string_view criterion, long skip, std::size_t start);
    // To be called after each change of the rows, which searches then look at anew.
    void forgetSearches();

  private:
    struct Criterion {
        std::size_t field;
        std::string key;
    };
    struct ColumnIndex {
        int uses = 0;
        std::unordered_map<std::string, std::vector<std::size_t>> rowsByKey;
    };
    Criterion parse(std::string_view text) const;
    bool matches(Row& row, const Criterion& criterion) const;
    void skipDeleted() noexcept;
    void findInStream(const Criterion& criterion, std::size_t from);
    void findInAll(const Criterion& criterion, std::size_t from);

    ResultRows& rows_;
    std::size_t position_ = 0;
    std::vector<ColumnIndex> indexes_;
};

}  // namespace platform::ado
