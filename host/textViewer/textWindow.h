// The text viewer: one file, read-only, kept up with while others write it.
#pragma once

#include <QMainWindow>
#include <QStringDecoder>
#include <filesystem>

#include "host/textViewer/growingFile.h"
#include "host/viewer/texts.h"
#include "ui/widgets/findBar.h"

class QCheckBox;
class QPlainTextEdit;

namespace viewer {

class TextWindow : public QMainWindow {
  public:
    // Raises the file's failure number when it cannot be read.
    TextWindow(const std::filesystem::path& file, Language language);

    // Shows what was written since the last look; a file that is gone for now keeps what is shown.
    void lookAgain();

  private:
    void takeNews();
    void append(const GrowingFile::News& news);
    bool find(const QString& text, ui::FindBar::Step step);
    void followEnd();

    const Texts& texts_;
    GrowingFile file_;
    QStringDecoder decoder_{QStringDecoder::Utf8};
    QPlainTextEdit* txtFile_;
    QCheckBox* chkFollow_;
};

}  // namespace viewer
