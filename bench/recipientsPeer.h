// The other side of the recipients' rows: the same work on the engine's C interface, with statements that are
// prepared once. Where a row says so, it also writes a log of as many lines.
#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "database/recipientRecord.h"

struct sqlite3;
struct sqlite3_stmt;

namespace bench {

struct CloseEngine {
    void operator()(sqlite3* handle) const noexcept;
};
struct FinalizeStatement {
    void operator()(sqlite3_stmt* statement) const noexcept;
};

// A statement that is run again and again. Ends the program with the engine's text on any failure: a row
// whose work failed must not be told as a time.
class Prepared {
  public:
    Prepared(sqlite3* engine, const std::string& text);
    Prepared& bind(int parameter, long value);
    Prepared& bind(int parameter, std::string_view value);
    bool row();  // false at the end, which also resets
    void run();  // to the end
    long number(int column);
    std::string text(int column);
    void reset();

  private:
    std::unique_ptr<sqlite3_stmt, FinalizeStatement> statement_;
};

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

  private:
    struct Stored {
        long key;
        long type;
        std::string address;
    };
    void called(std::string_view procedure);
    bool active(long recipient);
    void rewrite(long device, const std::string& address);
    void create(long recipient, long type, const std::string& address);
    void remove(long device);
    void saveList(long recipient, long type, const std::vector<Stored>& stored,
                  const std::vector<mdlDatabase::AddressEntry>& entries);
    Prepared& statement(const char* text);
    Prepared& inDirectory(const char* text);

    std::unique_ptr<sqlite3, CloseEngine> engine_;
    std::unique_ptr<sqlite3, CloseEngine> directory_;
    std::map<const char*, Prepared> statements_;
    int log_ = -1;
    bool logging_ = false;
};

// Opens a file as the console does: same durability.
std::unique_ptr<sqlite3, CloseEngine> openBare(const std::filesystem::path& file);
void runBare(sqlite3* engine, const std::string& statements);
[[noreturn]] void stop(const std::string& reason);

}  // namespace bench
