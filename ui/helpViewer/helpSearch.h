// Search over all pages of a help file.
#pragma once

#include <QString>
#include <QStringList>
#include <vector>

namespace platform {
class ChmFile;
}

namespace ui {

struct HelpHit {
    QString title;
    QString page;
};

class HelpSearch {
  public:
    // Reads the text of every page.
    explicit HelpSearch(const platform::ChmFile& file);

    // The pages that hold every word, without regard to case: those with a word in the title first, then
    // those where the words stand most often. No words find nothing.
    std::vector<HelpHit> find(const QStringList& words) const;
    // The title of a page, its name when it has none.
    QString title(const QString& page) const;

  private:
    struct Page {
        QString name;
        QString title;
        QString text;
    };
    std::vector<Page> pages_;
};

}  // namespace ui
