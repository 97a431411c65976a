// Comma-separated values: fields may stand in double quotes, a doubled quote inside them is one quote.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace host {

struct CsvRow {
    std::size_t line;  // where it begins, from 1
    std::vector<std::string> fields;
};

// All rows but empty ones. A byte-order mark at the beginning is passed over; lines end in LF or CR LF.
// Raises 5 with "name:line: reason" for a quote without its end or text behind one.
std::vector<CsvRow> parseCsv(std::string_view text, const std::string& name);

}  // namespace host
