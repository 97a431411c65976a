#include "platform/ado/cells.h"

#include <algorithm>

#include "platform/ado/statement.h"

namespace platform::ado {

namespace {

constexpr std::size_t firstChunk = 1 << 10;
constexpr std::size_t largestChunk = 1 << 16;

}  // namespace

void Texts::use(const Chunk& chunk) noexcept {
    next_ = chunk.bytes.get();
    room_ = chunk.size;
}

// Goes on to the next chunk that the text fits into.
void Texts::makeRoom(std::size_t size) {
    while (present_ + 1 < chunks_.size())
        if (chunks_[++present_].size >= size)
            return use(chunks_[present_]);
    const std::size_t usual = std::min(chunks_.empty() ? firstChunk : 2 * chunks_.back().size, largestChunk);
    const std::size_t wanted = std::max(usual, size);
    chunks_.push_back({std::make_unique_for_overwrite<char[]>(wanted), wanted});
    present_ = chunks_.size() - 1;
    use(chunks_.back());
}

void Texts::put(Cell& cell, const Value& value) {
    const Cell shown = cellOf(value);
    if (shown.kind == CellKind::text)
        put(cell, shown.text, shown.size);
    else
        cell = shown;
}

void Texts::clear() noexcept {
    present_ = 0;
    if (!chunks_.empty())
        use(chunks_.front());
}

Cell cellOf(const Value& value) noexcept {
    Cell cell{};
    if (const auto* integer = std::get_if<std::int64_t>(&value)) {
        cell.setInteger(*integer);
    } else if (const auto* real = std::get_if<double>(&value)) {
        cell.setReal(*real);
    } else if (const auto* text = std::get_if<std::string>(&value)) {
        cell.text = text->data();
        cell.size = text->size();
        cell.kind = CellKind::text;
    }
    return cell;
}

Value valueOf(const Cell& cell) {
    switch (cell.kind) {
        case CellKind::integer:
            return cell.integer;
        case CellKind::real:
            return cell.real;
        case CellKind::text:
            return std::string(cell.view());
        case CellKind::null:
            break;
    }
    return Null{};
}

std::string convertedText(const Cell& cell) {
    if (cell.isNull())
        throw makeFailure(invalidUseOfNull);
    return valueText(valueOf(cell));
}

long convertedLong(const Cell& cell) {
    return longOf(valueOf(cell));
}

bool convertedBoolean(const Cell& cell) {
    if (cell.isNull())
        throw makeFailure(invalidUseOfNull);
    return booleanOf(valueOf(cell)) != 0;
}

std::string searchKey(const Cell& cell) {
    return searchKey(valueOf(cell));
}

}  // namespace platform::ado
