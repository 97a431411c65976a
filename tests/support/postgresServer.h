// A database server of the test's own, on loopback and under an ordinary account, with data sources that
// name its databases; gone with the test.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <string>
#include <vector>

namespace support {

class PostgresServer {
  public:
    // Empty when the packages are there; otherwise what is missing, for the line of a skipped test.
    static std::string missing();

    // Starts a server in a new folder with these databases, each of them a data source.
    explicit PostgresServer(const std::vector<std::string>& databases);
    ~PostgresServer();
    PostgresServer(const PostgresServer&) = delete;
    PostgresServer& operator=(const PostgresServer&) = delete;

    // The name of a database's data source. It is another one for each server, since the driver manager
    // remembers what it has once read.
    std::string dataSource(const std::string& database) const;
    // Runs statements as the server's owner; fails the test when one fails.
    void run(const std::string& database, const std::string& statements) const;
    // Rows of a query: fields joined by '|', lines by '\n'.
    std::string query(const std::string& database, const std::string& statement) const;
    // Gives a database what an embedded directory holds.
    void copyDirectory(const std::string& database, const std::filesystem::path& directory) const;
    // Ends the server at once, its sessions with it.
    void kill();

  private:
    void initialize() const;
    void start();
    void writeDataSources(const std::vector<std::string>& databases) const;
    std::string psql(const std::string& database) const;

    std::filesystem::path folder_;
    int port_ = 0;
    pid_t process_ = -1;
};

}  // namespace support
