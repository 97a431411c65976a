// Files that stay beside what they serve, logs and locks, in a folder that may be somebody else's.
#pragma once

#include "platform/files/descriptor.h"
#include "platform/files/files.h"

namespace platform::files {

// Opens a file with the flags of open(2), a link in its place not being followed; creates it, for its owner
// alone, where it is missing. Nothing, with errno set, when it could not be opened or created.
Descriptor openOwnedFile(const Path& path, int flags);
// Gives a file that the superuser made in a folder to the folder's owner, whom it would lock out otherwise.
// Whoever else makes one owns it. False, with errno set, on failure.
bool giveToOwnerOf(const Descriptor& folder, const Descriptor& file);

}  // namespace platform::files
