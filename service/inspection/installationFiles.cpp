#include "service/inspection/installationFiles.h"

#include "platform/machine/host.h"

namespace service {

std::filesystem::path databaseFile() {
    return platform::host::folder().parent_path() / "Database" / "QLNDB.MDB";
}

std::filesystem::path outboxFile() {
    return platform::host::folder().parent_path() / "Service" / "HbQlnSvc.db";
}

}  // namespace service
