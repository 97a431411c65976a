// A list of texts with a key each, one of which may be chosen. Indexes count from 0.
#pragma once

#include <QListWidget>
#include <string>

namespace ui {

class EntryList : public QListWidget {
    Q_OBJECT

  public:
    explicit EntryList(QWidget* parent = nullptr);

    // Keys need not be unique and may be empty.
    void addEntry(const std::string& key, const std::string& text);
    // These raise 5 for no such entry.
    void setEntryText(int index, const std::string& text);
    // Afterwards no entry is chosen.
    void removeEntry(int index);
    std::string entryKey(int index) const;
    std::string entryText(int index) const;
    // -1 when none is chosen.
    int chosenEntry() const;

  signals:
    // A person chose an entry, by mouse or keyboard; also one that was chosen already.
    void entryClicked(int index);

  protected:
    bool viewportEvent(QEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    QListWidgetItem& entry(int index) const;
};

}  // namespace ui
