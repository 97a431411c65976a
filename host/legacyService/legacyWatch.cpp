#include "host/legacyService/legacyWatch.h"

#include <utility>

#include "platform/ado/ado.h"

namespace service {

namespace {
constexpr std::chrono::seconds betweenLooks(10);
constexpr char logName[] = "/TsKesnSvr.log";
}  // namespace

LegacyWatch::LegacyWatch(std::string folder) : folder_(std::move(folder)) {}

void LegacyWatch::begin() {
    log_.add("TsKESN started");
    log_.flush(folder_ + logName);
}

std::chrono::milliseconds LegacyWatch::look() {
    platform::Connection database;
    database.open("Provider=Microsoft.Jet.OLEDB.4.0;Mode=Read;Data Source=" + folder_ + "/KESN.MDB");
    platform::Recordset row;
    row.open("SELECT Count(*) AS Watched FROM Properties WHERE PropName = 'Source'", database);
    const long watched = row.number("Watched");
    if (watched != std::exchange(watched_, watched)) {
        log_.add("Events in KESN.MDB: " + std::to_string(watched));
        log_.flush(folder_ + logName);
    }
    return betweenLooks;
}

void LegacyWatch::end() {
    log_.add("TsKESN stopped");
    log_.flush(folder_ + logName);
}

}  // namespace service
