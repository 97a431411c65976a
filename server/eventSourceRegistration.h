// The console's own event sources in the registry.
#pragma once

namespace mdlUtility {

// Each writes the key of its source when there is none, and never changes one that is there.
void registerTestEventSource();
void registerServiceEventSource();

}  // namespace mdlUtility
