// Keeps what is read of one moment while many statements are run.
#pragma once

#include <memory>

struct sqlite3_stmt;

namespace platform {

class Connection;

// While an instance lives the connection's file stays locked for reading: no other program writes to it, and
// a statement need neither take the lock nor look whether the file has changed, which is most of the time of
// a small one. Others wait for their turn, so an instance is for a loop of reading that ends by itself within
// a second, and never for one that asks or writes. It waits for the lock as a statement does; where it cannot
// be had, on a server and on a closed connection it does nothing: each statement takes the lock for itself.
class ReadLock {
  public:
    explicit ReadLock(const Connection& connection) noexcept;
    ~ReadLock();
    ReadLock(const ReadLock&) = delete;
    ReadLock& operator=(const ReadLock&) = delete;

  private:
    struct Finalize {
        void operator()(sqlite3_stmt* statement) const noexcept;
    };
    std::unique_ptr<sqlite3_stmt, Finalize> pending_;  // begun and not ended
};

}  // namespace platform
