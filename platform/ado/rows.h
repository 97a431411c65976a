// The rows of a query, wherever they come from: the engine's own file or a server.
#pragma once

#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ado/cells.h"

namespace platform::ado {

class RowSource {
  public:
    RowSource() = default;
    RowSource(RowSource&&) = default;
    RowSource& operator=(RowSource&&) = default;
    virtual ~RowSource() = default;

    virtual std::vector<std::string> fieldNames() const = 0;
    // True with a row, false at the end, which also sets it back.
    virtual bool step() = 0;
    // Back before the first row; the next step runs the query anew.
    virtual void reset() noexcept = 0;
    // True when the query had to be prepared anew, because the schema is not what it was; its fields may then
    // be others.
    virtual bool preparedAnew() const noexcept { return false; }
    // Puts the present row's first fields into as many cells, and their texts into the memory for texts.
    virtual void row(std::span<Cell> cells, Texts& texts) const = 0;
};

// Runs a caller's statement on an open connection as far as its first row; nothing for a statement without
// rows, which has run. Raises 3709 on a closed connection and what the engine or the server says.
std::unique_ptr<RowSource> openRows(const Connection& connection, const Query& source);

}  // namespace platform::ado
