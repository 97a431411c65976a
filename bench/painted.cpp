#include "bench/painted.h"

#include <xcb/xcb.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "bench/workplace.h"

namespace bench {

namespace {

constexpr int leastWidth = 400;
constexpr int leastHeight = 300;
constexpr std::size_t lineCount = 16;
constexpr int paintedLines = 4;

struct Release {
    void operator()(void* reply) const noexcept { std::free(reply); }
};
template <class Reply>
using Owned = std::unique_ptr<Reply, Release>;

bool hasSeveralColours(const xcb_get_image_reply_t& line) {
    const std::uint8_t* bytes = xcb_get_image_data(&line);
    const int length = xcb_get_image_data_length(&line);
    for (int i = 4; i + 3 < length; i += 4)
        if (bytes[i] != bytes[0] || bytes[i + 1] != bytes[1] || bytes[i + 2] != bytes[2])
            return true;
    return false;
}

// All lines are asked for before the first answer is awaited: one way to the server and back. The outer
// tenths are left out, so that a frame around the window does not count.
bool isPainted(xcb_connection_t* connection, xcb_window_t window, const xcb_get_geometry_reply_t& size) {
    const int margin = size.width / 10;
    std::array<xcb_get_image_cookie_t, lineCount> requests{};
    for (std::size_t i = 0; i < lineCount; ++i) {
        const std::size_t line = (2 * i + 1) * size.height / (2 * lineCount);
        requests[i] = xcb_get_image_unchecked(
            connection, XCB_IMAGE_FORMAT_Z_PIXMAP, window, static_cast<std::int16_t>(margin),
            static_cast<std::int16_t>(line), static_cast<std::uint16_t>(size.width - 2 * margin), 1, ~0u);
    }
    int painted = 0;
    for (const xcb_get_image_cookie_t& request : requests) {
        const Owned<xcb_get_image_reply_t> line(xcb_get_image_reply(connection, request, nullptr));
        painted += line && hasSeveralColours(*line) ? 1 : 0;
    }
    return painted >= paintedLines;
}

struct TopLevel {
    xcb_window_t window;
    Owned<xcb_get_geometry_reply_t> size;
};

std::vector<TopLevel> largeMappedWindows(xcb_connection_t* connection) {
    std::vector<TopLevel> found;
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    const Owned<xcb_query_tree_reply_t> tree(
        xcb_query_tree_reply(connection, xcb_query_tree(connection, root), nullptr));
    for (int i = 0; tree && i < xcb_query_tree_children_length(tree.get()); ++i) {
        const xcb_window_t window = xcb_query_tree_children(tree.get())[i];
        const auto stateAsked = xcb_get_window_attributes(connection, window);
        const auto sizeAsked = xcb_get_geometry(connection, window);
        const Owned<xcb_get_window_attributes_reply_t> state(
            xcb_get_window_attributes_reply(connection, stateAsked, nullptr));
        Owned<xcb_get_geometry_reply_t> size(xcb_get_geometry_reply(connection, sizeAsked, nullptr));
        if (state && size && state->map_state == XCB_MAP_STATE_VIEWABLE && size->width >= leastWidth &&
            size->height >= leastHeight)
            found.push_back({window, std::move(size)});
    }
    return found;
}

}  // namespace

void Screen::Disconnect::operator()(xcb_connection_t* connection) const noexcept {
    xcb_disconnect(connection);
}

Screen::Screen() : connection_(xcb_connect(nullptr, nullptr)) {
    insist(xcb_connection_has_error(connection_.get()) == 0, "no X display can be reached");
}

bool Screen::showsPaintedWindow() const {
    for (const TopLevel& each : largeMappedWindows(connection_.get()))
        if (isPainted(connection_.get(), each.window, *each.size))
            return true;
    return false;
}

bool Screen::isEmpty() const {
    return largeMappedWindows(connection_.get()).empty();
}

}  // namespace bench
