// What the two rows of an event's content are for. The numbers are shared with the service.
#pragma once

namespace mdlDatabase {

enum ContentType : long { voiceContent = 1, emailContent = 3 };

}  // namespace mdlDatabase
