// How a recordset keeps the values of its rows: a number in its cell, a text as a piece of memory that all
// texts of the recordset share. So a row that is read costs no allocation, and its texts are copied once.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ado/ado.h"

namespace platform::ado {

enum class CellKind : std::uint8_t { null, integer, real, text };

// Not initialised, because a block of cells is filled with values at once.
struct Cell {
    union {
        std::int64_t integer;
        double real;
        const char* text;
    };
    std::size_t size;  // bytes of the text
    CellKind kind;

    void setNull() noexcept { kind = CellKind::null; }
    void setInteger(std::int64_t number) noexcept {
        integer = number;
        kind = CellKind::integer;
    }
    void setReal(double number) noexcept {
        real = number;
        kind = CellKind::real;
    }
    bool isNull() const noexcept { return kind == CellKind::null; }
    std::string_view view() const noexcept { return {text, size}; }  // of a text
};

// Memory for texts. A piece stays where it is until all are dropped.
class Texts {
  public:
    // Copies the text and lets the cell point at the copy.
    void put(Cell& cell, const char* bytes, std::size_t size) {
        if (size > room_)
            makeRoom(size);
        if (size > 0)
            std::memcpy(next_, bytes, size);
        cell.text = next_;
        cell.size = size;
        cell.kind = CellKind::text;
        next_ += size;
        room_ -= size;
    }
    // Puts a value into the cell.
    void put(Cell& cell, const Value& value);
    // Drops all pieces and keeps their memory for the next ones.
    void clear() noexcept;

  private:
    struct Chunk {
        std::unique_ptr<char[]> bytes;
        std::size_t size;
    };
    void makeRoom(std::size_t size);
    void use(const Chunk& chunk) noexcept;

    std::vector<Chunk> chunks_;
    std::size_t present_ = 0;  // the one that is being filled
    char* next_ = nullptr;
    std::size_t room_ = 0;  // bytes from there to the chunk's end
};

// A cell that shows a value, and its text only as long as the value lives.
Cell cellOf(const Value& value) noexcept;
Value valueOf(const Cell& cell);

// What ado.h says of reading a field: raise 94 for Null, and 13 and 6.
std::string convertedText(const Cell& cell);
long convertedLong(const Cell& cell);
bool convertedBoolean(const Cell& cell);

// The same. A cell that holds what is asked for needs no conversion.
inline std::string textOf(const Cell& cell) {
    return cell.kind == CellKind::text ? std::string(cell.view()) : convertedText(cell);
}
inline long longOf(const Cell& cell) {
    if (cell.kind == CellKind::integer && cell.integer == static_cast<std::int32_t>(cell.integer))
        return static_cast<long>(cell.integer);
    return convertedLong(cell);
}
inline bool booleanOf(const Cell& cell) {
    return cell.kind == CellKind::integer ? cell.integer != 0 : convertedBoolean(cell);
}
// See statement.h.
std::string searchKey(const Cell& cell);

}  // namespace platform::ado
