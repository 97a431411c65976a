// Waiting with painted windows: a wait for a service lasts up to 20 seconds, and a blank window looks dead.
#pragma once

#include <chrono>

class QWidget;

namespace ui {

// Waits; windows paint meanwhile, and take no input: keys and clicks stay queued, a closing is refused.
void waitPainting(std::chrono::milliseconds duration);

// Returns when the window, just shown, is painted on the screen, after half a second at most.
void paintBeforeGoingOn(QWidget& window);

// True while one of these waits: no input reaches a window.
bool isWaitingPainted();

}  // namespace ui
