// The button beside a voice file's name, the same in every window.
#pragma once

class QLineEdit;

namespace ui {

// Lets the administrator choose a recording, brings it into the Database folder and shows its bare name;
// without a result the box keeps its text. To be called in the frame of the window's handler.
void browseVoiceFile(QLineEdit& txtVoiceMailFileName);

}  // namespace ui
