// The other side of the recipients' rows: the same work on the engine's C interface, with statements that are
// prepared once. Where a row says so, it also writes a log of as many lines.
#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "bench/prepared.h"
#include "database/recipientRecord.h"

namespace bench {

class Peer {
  public:
    Peer(const std::filesystem::path& database, const std::filesystem::path& directory,
         const std::filesystem::path& log);
    ~Peer();
    Peer(const Peer&) = delete;
    Peer& operator=(const Peer&) = delete;

    // Whether every call writes two lines, as the console's procedures do.
    void setLogging(bool on) { logging_ = on; }

    // Each gives something that must come out the same on both sides.
    long rebuildAddressDetails();
    long recipientsForEvent(long event);
    long analyze(long event);
    long eventState(long event);
    long countDevices(long type, long recipient);
    void modify(long recipient, const mdlDatabase::RecipientRecord& record);

    bool active(long recipient);
    // A call of that procedure, which leaves its two lines where calls are logged.
    void called(std::string_view procedure);
    const Engine& engine() const { return engine_; }

  private:
    struct Stored {
        long key;
        long type;
        std::string address;
    };
    void rewrite(long device, const std::string& address);
    void create(long recipient, long type, const std::string& address);
    void remove(long device);
    void saveList(long recipient, long type, const std::vector<Stored>& stored,
                  const std::vector<mdlDatabase::AddressEntry>& entries);
    Prepared& statement(const char* text);
    Prepared& inDirectory(const char* text);

    Engine engine_;
    Engine directory_;
    std::map<const char*, Prepared> statements_;
    int log_ = -1;
    bool logging_ = false;
};

}  // namespace bench
