#include <algorithm>
#include <charconv>

#include "platform/ado/ado.h"
#include "platform/ado/dialect.h"
#include "platform/ado/recordsetImpl.h"

namespace platform {

Recordset::Impl::Criterion Recordset::Impl::parseCriterion(std::string_view text) {
    const std::size_t equals = text.find('=');
    if (equals == std::string_view::npos)
        throw makeFailure(invalidProcedureCall, text);
    std::string_view column = ado::trimmed(text.substr(0, equals));
    if (column.size() > 2 && column.front() == '[' && column.back() == ']')
        column = column.substr(1, column.size() - 2);
    const std::string_view operand = ado::trimmed(text.substr(equals + 1));
    const char* begin = operand.data();
    const char* end = begin + operand.size();
    std::int64_t whole = 0;
    double real = 0;
    Value value;
    if (operand.size() >= 2 && operand.front() == '\'' && operand.find('\'', 1) == operand.size() - 1)
        value = std::string(operand.substr(1, operand.size() - 2));
    else if (const auto read = std::from_chars(begin, end, whole); read.ec == std::errc() && read.ptr == end)
        value = whole;
    else if (const auto part = std::from_chars(begin, end, real); part.ec == std::errc() && part.ptr == end)
        value = real;
    else
        throw makeFailure(invalidProcedureCall, text);
    return {fieldIndex(column), ado::searchKey(value)};
}

void Recordset::Impl::dropIndexes() {
    for (ColumnIndex& index : indexes)
        index = ColumnIndex();
}

// Nothing goes backwards in a stream but a new run of its statement.
void Recordset::Impl::findStreaming(const Criterion& criterion, std::size_t from) {
    if (from < base)
        restart();
    position = std::max(base, std::min(position, from));
    while (!atEnd() && position < from)
        moveNext();
    while (!atEnd()) {
        const ado::Cell& candidate = stored(present(), criterion.field);
        if (!candidate.isNull() && ado::searchKey(candidate) == criterion.key)
            return;
        moveNext();
    }
}

void Recordset::Impl::find(const Criterion& criterion, std::size_t from) {
    const auto keyOf = [&](Row& row) -> std::optional<std::string> {
        const ado::Cell& candidate = stored(row, criterion.field);
        if (row.deleted || candidate.isNull())
            return std::nullopt;
        return ado::searchKey(candidate);
    };
    if (indexes.empty())
        indexes.resize(fields.size());
    ColumnIndex& index = indexes[criterion.field];
    // One search is cheaper without the index; who searches twice will search often.
    if (++index.uses == 1) {
        for (position = from; position < rows.size(); ++position) {
            if (keyOf(rows[position]) == criterion.key)
                return;
        }
        return;
    }
    if (index.rowsByKey.empty()) {
        for (std::size_t i = 0; i < rows.size(); ++i) {
            if (const auto key = keyOf(rows[i]))
                index.rowsByKey[*key].push_back(i);
        }
    }
    position = rows.size();
    if (const auto entry = index.rowsByKey.find(criterion.key); entry != index.rowsByKey.end()) {
        const auto row = std::lower_bound(entry->second.begin(), entry->second.end(), from);
        if (row != entry->second.end())
            position = *row;
    }
}

void Recordset::find(std::string_view criterion, long skip) {
    if (!impl_)
        throw makeFailure(objectClosed);
    if (skip == 0 && impl_->unplaced) {
        impl_->dropEdits();
        if (impl_->seek(impl_->parseCriterion(criterion)))
            return;
    }
    impl_->ensureLoaded();
    if (impl_->atEnd())
        throw makeFailure(noCurrentRecord);
    find(criterion, skip, impl_->position);
}

void Recordset::find(std::string_view criterion, long skip, std::size_t start) {
    if (!impl_)
        throw makeFailure(objectClosed);
    impl_->dropEdits();
    impl_->ensureLoaded();
    if (impl_->base == 0 && impl_->liveCount() == 0)
        throw makeFailure(noCurrentRecord);
    const Impl::Criterion parsed = impl_->parseCriterion(criterion);
    // Unsigned arithmetic wraps a negative skip to what it should be.
    const std::size_t from = start + static_cast<std::size_t>(skip);
    if (skip < 0 && from > start)
        throw makeFailure(invalidProcedureCall, criterion);
    if (impl_->streaming)
        impl_->findStreaming(parsed, from);
    else
        impl_->find(parsed, std::min(from, impl_->rows.size()));
}

}  // namespace platform
