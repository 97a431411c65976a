// The directory on a real server, reached through unixODBC. It is read and never written: the session is set
// read-only on the server where it knows how, nothing is ever committed, and only what requireOneSelect lets
// pass is sent.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/ado/rows.h"

namespace platform::ado {

class OdbcServer;

// Connects to a data source by its name; user, password and server are the data source's own. Raises
// -2147467259 with the driver's text when there is no such source or it does not answer within 15 seconds.
std::shared_ptr<OdbcServer> connectServer(const std::string& dataSource);

// Runs one SELECT, which keeps the server connected. Raises -2147217900 for a statement that the server does
// not understand, a missing column or table among them, or that requireOneSelect refuses; -2147467259 for all
// else that goes wrong, the loss of the connection first of all.
std::unique_ptr<RowSource> openServerRows(std::shared_ptr<OdbcServer> server, std::string_view source);

}  // namespace platform::ado
