#include "service/decision/configuration.h"

#include <sys/stat.h>

#include <utility>

#include "platform/failure.h"

namespace service {

namespace {

// A writer who holds the file for longer is waited for at the next look: the service has to hear a stop.
constexpr std::chrono::milliseconds longestWait(200);

ino_t numberOf(const std::filesystem::path& file) {
    struct stat status {};
    return ::stat(file.c_str(), &status) == 0 ? status.st_ino : 0;
}

}  // namespace

Configuration::Configuration(std::filesystem::path file) : file_(std::move(file)) {}

// A file that took the place of the open one, such as a backup that was put back, is opened in its stead.
void Configuration::open() {
    const ino_t number = numberOf(file_);
    if (connection_ && number == fileNumber_)
        return;
    isRead_ = false;
    connection_.reset();
    platform::setLockPatience(longestWait);
    auto connection = std::make_unique<platform::Connection>();
    connection->open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + file_.string());
    connection_ = std::move(connection);
    fileNumber_ = number;
}

platform::Connection& Configuration::connection() {
    open();
    return *connection_;
}

// Another number after each change that another connection has made.
std::int64_t Configuration::version() {
    platform::Recordset row;
    row.open("PRAGMA data_version", *connection_);
    return row.EOF_() ? 0 : row.number("data_version");
}

const Monitoring& Configuration::current() {
    try {
        open();
        const std::int64_t now = version();
        if (!isRead_ || now != readVersion_) {
            isRead_ = false;
            monitoring_ = readMonitoring(*connection_);
            readVersion_ = now;
            isRead_ = true;
        }
    } catch (const platform::Failure&) {
        connection_.reset();
        throw;
    }
    return monitoring_;
}

}  // namespace service
