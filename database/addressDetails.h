// The derived table that holds what the views show for a device's address.
#pragma once

namespace mdlDatabase {

// Rebuilds AddressDetails from Device and the directory, one row for each device, and switches off every
// voice mail and e-mail device whose entry is gone; none is ever switched on again. A directory that could
// not be read switches nothing off: its devices are shown as not found until the next rebuild.
void rebuildAddressDetailsTable();

}  // namespace mdlDatabase
