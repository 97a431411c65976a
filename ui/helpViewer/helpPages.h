// Shows pages of an open help file: the toolkit's page browser, fed from the file instead of the disk.
#pragma once

#include <QTextBrowser>
#include <memory>

namespace platform {
class ChmFile;
}

namespace ui {

// The address of a page, with the anchor that its name may carry behind "#".
QUrl helpUrl(const QString& page);

class HelpPages : public QTextBrowser {
    Q_OBJECT

  public:
    explicit HelpPages(QWidget* parent);

    // Pages come from this file from now on; the history begins anew.
    void setFile(std::shared_ptr<const platform::ChmFile> file);
    // Shows the page, and marks the first place where one of the words stands.
    void showFound(const QString& page, const QStringList& words);

  protected:
    QVariant loadResource(int type, const QUrl& name) override;
    void doSetSource(const QUrl& name, QTextDocument::ResourceType type) override;

  private:
    std::shared_ptr<const platform::ChmFile> file_;
};

}  // namespace ui
