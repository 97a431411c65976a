// The start that the viewers share.
#pragma once

class QWidget;

namespace viewer {

// Shows the window as its starter wished and runs until it is closed; the program's exit code.
int showViewer(QWidget& window);

}  // namespace viewer
