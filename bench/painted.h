// Watches an X display for the first painted window.
#pragma once

#include <memory>

struct xcb_connection_t;

namespace bench {

class Screen {
  public:
    // The display that the environment names. Ends the program when it cannot be reached.
    Screen();

    // True when a mapped top-level window of at least 400 by 300 points shows content: of sixteen of its
    // lines, spread over its height, at least four hold more than one colour. A window that is mapped but not
    // painted yet is of one colour.
    bool showsPaintedWindow() const;
    bool isEmpty() const;

  private:
    struct Disconnect {
        void operator()(xcb_connection_t* connection) const noexcept;
    };
    std::unique_ptr<xcb_connection_t, Disconnect> connection_;
};

}  // namespace bench
