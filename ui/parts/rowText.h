// What a window asks of a row.
#pragma once

#include <string>
#include <string_view>

#include "platform/ado/ado.h"

namespace ui {

// Empty for a field without a value, so that its row still shows. Raises as Recordset::text does otherwise.
inline std::string textOrEmpty(const platform::Recordset& row, std::string_view field) {
    return row.isNull(field) ? std::string() : row.text(field);
}

// True when a row that was read by its key is not in the database any more; false when it could not be read.
inline bool isGone(const platform::Recordset& row) {
    return row.state() == platform::ObjectState::open && row.EOF_();
}

}  // namespace ui
