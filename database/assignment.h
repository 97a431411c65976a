// Which device is notified for which event.
#pragma once

#include "platform/ado.h"

namespace mdlDatabase {

// The devices assigned to an event with their recipients, by recipient name; left open for the caller.
platform::Recordset getRecipientsForEvent(long eventKey);

}  // namespace mdlDatabase
