// The derived table that holds what the views show for a device's address.
#pragma once

namespace mdlDatabase {

// Rebuilds AddressDetails from Device and the directory.
void rebuildAddressDetailsTable();

}  // namespace mdlDatabase
