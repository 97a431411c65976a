// The derived table that holds what the views show for a device's address.
#pragma once

namespace mdlDatabase {

// Rebuilds AddressDetails from Device and the directory, one row for each device, and switches off every
// voice mail and e-mail device whose entry is gone; none is ever switched on again. A directory that could
// not be read switches nothing off: its devices are shown as not found until the next rebuild. False when a
// device has no row of its own afterwards, because it could not be added, or one of before: the table stays
// as it was where it could not be read, or its rows not be replaced together.
bool rebuildAddressDetailsTable();

// Whether a device of the recipient has no row, as after a rebuild that failed: no view shows it. Raises the
// engine's failures.
bool hasDeviceWithoutDetails(long recipientKey);

}  // namespace mdlDatabase
