// A row's field as text for a window.
#pragma once

#include <string>
#include <string_view>

#include "platform/ado/ado.h"

namespace ui {

// Empty for a field without a value, so that its row still shows. Raises as Recordset::text does otherwise.
inline std::string textOrEmpty(const platform::Recordset& row, std::string_view field) {
    return row.isNull(field) ? std::string() : row.text(field);
}

}  // namespace ui
