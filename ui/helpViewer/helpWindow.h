// The window in which help is read: contents, index and search at the left, the page at the right.
#pragma once

#include <QMainWindow>
#include <memory>
#include <string>

class QAction;
class QLineEdit;
class QListWidget;
class QTabWidget;
class QTreeWidget;

namespace platform {
class ChmFile;
struct ChmEntry;
}  // namespace platform

namespace ui {

class HelpPages;
class HelpSearch;

class HelpWindow : public QMainWindow {
    Q_OBJECT

  public:
    HelpWindow();
    ~HelpWindow() override;

    // Shows another help file from now on; its default page comes up.
    void setFile(std::shared_ptr<const platform::ChmFile> file);
    // Shows a page, named as in the file, with an anchor behind "#"; an unknown page does nothing.
    void showPage(const std::string& page);

  private:
    void createActions();
    void createSidebar();
    void createLayout();
    void fillContents();
    void fillIndex();
    void search();
    void openHit();
    void followPage(const QUrl& url);

    HelpPages* pages_;
    QTabWidget* sidebar_;
    QTreeWidget* contents_;
    QLineEdit* indexFilter_;
    QListWidget* index_;
    QLineEdit* searchText_;
    QListWidget* hits_;
    QAction* back_;
    QAction* forward_;
    QAction* home_;
    std::shared_ptr<const platform::ChmFile> file_;
    std::unique_ptr<HelpSearch> search_;
};

}  // namespace ui
