#include "platform/ado/cursor.h"

#include <algorithm>
#include <charconv>

#include "platform/ado/dialect.h"

namespace platform::ado {

namespace {

// Raises 5 for what is neither a number nor a text between quotes.
Value operandOf(std::string_view operand, std::string_view criterion) {
    const char* const begin = operand.data();
    const char* const end = begin + operand.size();
    std::int64_t whole = 0;
    double real = 0;
    if (operand.size() >= 2 && operand.front() == '\'' && operand.find('\'', 1) == operand.size() - 1)
        return std::string(operand.substr(1, operand.size() - 2));
    if (const auto read = std::from_chars(begin, end, whole); read.ec == std::errc() && read.ptr == end)
        return whole;
    if (const auto read = std::from_chars(begin, end, real); read.ec == std::errc() && read.ptr == end)
        return real;
    throw makeFailure(invalidProcedureCall, criterion);
}

}  // namespace

Row& Cursor::present() const {
    if (atEnd() || rows_.at(position_).deleted)
        throw makeFailure(noCurrentRecord);
    return rows_.at(position_);
}

void Cursor::skipDeleted() noexcept {
    while (!atEnd() && rows_.at(position_).deleted)
        ++position_;
}

void Cursor::moveFirst() {
    if (rows_.begin() > 0)
        rows_.restart();
    position_ = 0;
    skipDeleted();
    if (atEnd())
        throw makeFailure(noCurrentRecord);
}

void Cursor::moveNext() {
    if (atEnd())
        throw makeFailure(noCurrentRecord);
    ++position_;
    if (atEnd() && !rows_.isComplete())
        rows_.nextBlock();
    skipDeleted();
}

Cursor::Criterion Cursor::parse(std::string_view text) const {
    const std::size_t equals = text.find('=');
    if (equals == std::string_view::npos)
        throw makeFailure(invalidProcedureCall, text);
    std::string_view column = trimmed(text.substr(0, equals));
    if (column.size() > 2 && column.front() == '[' && column.back() == ']')
        column = column.substr(1, column.size() - 2);
    const Value operand = operandOf(trimmed(text.substr(equals + 1)), text);
    return {rows_.fieldIndex(column), searchKey(operand)};
}

bool Cursor::matches(Row& row, const Criterion& criterion) const {
    if (row.deleted)
        return false;
    const Cell& candidate = rows_.cell(row, criterion.field);
    return !candidate.isNull() && searchKey(candidate) == criterion.key;
}

void Cursor::forgetSearches() {
    indexes_.clear();
}

// Nothing goes backwards in a stream but a new run of its statement.
void Cursor::findInStream(const Criterion& criterion, std::size_t from) {
    if (from < rows_.begin()) {
        rows_.restart();
        position_ = 0;
    }
    position_ = std::max(rows_.begin(), std::min(position_, from));
    while (!atEnd() && position_ < from)
        moveNext();
    while (!atEnd() && !matches(present(), criterion))
        moveNext();
}

void Cursor::findInAll(const Criterion& criterion, std::size_t from) {
    if (indexes_.empty())
        indexes_.resize(rows_.fields().size());
    ColumnIndex& index = indexes_[criterion.field];
    // One search is cheaper without the index; who searches twice will search often.
    if (++index.uses == 1) {
        position_ = from;
        while (!atEnd() && !matches(rows_.at(position_), criterion))
            ++position_;
        return;
    }
    if (index.rowsByKey.empty()) {
        for (std::size_t i = 0; i < rows_.end(); ++i) {
            if (rows_.at(i).deleted)
                continue;
            const Cell& cell = rows_.cell(rows_.at(i), criterion.field);
            if (!cell.isNull())
                index.rowsByKey[searchKey(cell)].push_back(i);
        }
    }
    position_ = rows_.end();
    if (const auto entry = index.rowsByKey.find(criterion.key); entry != index.rowsByKey.end()) {
        const auto row = std::lower_bound(entry->second.begin(), entry->second.end(), from);
        if (row != entry->second.end())
            position_ = *row;
    }
}

void Cursor::find(std::string_view criterion, long skip, std::size_t start) {
    if (rows_.begin() == 0 && rows_.liveCount() == 0)
        throw makeFailure(noCurrentRecord);
    const Criterion parsed = parse(criterion);
    // Unsigned arithmetic wraps a negative skip to what it should be.
    const std::size_t from = start + static_cast<std::size_t>(skip);
    if (skip < 0 && from > start)
        throw makeFailure(invalidProcedureCall, criterion);
    if (rows_.begin() == 0 && rows_.isComplete())
        findInAll(parsed, std::min(from, rows_.end()));
    else
        findInStream(parsed, from);
}

}  // namespace platform::ado
