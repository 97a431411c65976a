// A mail server that takes everything as fast as it comes, so that a measurement tells of its sender.
#pragma once

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "platform/files/descriptor.h"

namespace bench {

class SmtpSink {
  public:
    // Listens on a free port of the loopback interface; one thread for each connection.
    SmtpSink();
    ~SmtpSink();
    SmtpSink(const SmtpSink&) = delete;
    SmtpSink& operator=(const SmtpSink&) = delete;

    std::string url() const;
    long taken() const noexcept { return taken_; }

  private:
    void accept();
    void serve(int socket);

    platform::Descriptor listener_;
    std::atomic<bool> isEnding_ = false;
    std::atomic<long> taken_ = 0;
    std::vector<std::jthread> connections_;
    std::jthread acceptor_;
};

}  // namespace bench
