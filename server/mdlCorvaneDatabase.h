// The server's directory database.
#pragma once

#include "platform/ado/ado.h"

namespace mdlCorvaneDatabase {

// Opens the connection given if it is closed; true only when it opened here without errors.
bool openCorvaneDB(platform::Connection& connection);
// True when the directory has the newer layout, with views.
bool determineViewsSupport(platform::Connection& connection);

}  // namespace mdlCorvaneDatabase
