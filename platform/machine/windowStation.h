// What programs of one host may know of each other's windows. A program that runs holds a lock in the
// host's run folder and answers on a socket beside it; both vanish for others when the process dies,
// however it dies.
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace platform {

using WindowHandle = long;  // 0 is no window

// The program's side. One instance per process, made at start.
class WindowStation {
  public:
    // What the program's toolkit does for others' requests.
    struct Actions {
        // Restores the main window if it is minimised.
        std::function<void()> openIcon;
        // Brings the main window to the front.
        std::function<void()> setForeground;
    };

    // Takes the lock of `programName`; when another instance holds it, earlierInstance() is true and
    // nothing is listened on. Failures to lock or listen leave a program that is alone and not found.
    explicit WindowStation(std::string_view programName);
    ~WindowStation();
    WindowStation(const WindowStation&) = delete;
    WindowStation& operator=(const WindowStation&) = delete;

    bool earlierInstance() const noexcept { return earlier_; }
    // True when the earlier instance lives and did not answer in time: it is busy.
    bool earlierIsBusy() const noexcept { return unanswered_; }
    // Descriptor that becomes readable when a request waits; -1 when not listening.
    int descriptor() const noexcept { return listener_; }
    // Answers the waiting requests, each within a second, and returns.
    void serve();
    void setActions(Actions actions) { actions_ = std::move(actions); }

    // Sends one request to the first instance's socket and gives its answer; "0" when nobody answers
    // within three seconds; nobody is asked a second time then. Requests: FIND class title, BEFORE handle,
    // ICON handle, FRONT handle.
    std::string ask(std::string_view request) const;

  private:
    std::string answer(std::string_view request);

    std::string socketPath_;
    Actions actions_;
    int lock_ = -1;
    int listener_ = -1;
    bool earlier_ = false;
    mutable bool unanswered_ = false;
};

// The window system's calls, answered by the first instance. The hidden owner window of the program has
// the class "ThunderRT6Main" and the program's title; the main window stands in front of it.
WindowHandle findWindow(const WindowStation& station, std::string_view className, std::string_view title);
WindowHandle windowBefore(const WindowStation& station, WindowHandle window);
void openIcon(const WindowStation& station, WindowHandle window);
void setForegroundWindow(const WindowStation& station, WindowHandle window);

}  // namespace platform
