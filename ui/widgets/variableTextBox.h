// A box for plain text with insertion variables: a subject of one line or a body of many. It tells where the
// pointer was pressed and asks for a menu; it does not know what is in the menu.
#pragma once

#include <QStringList>
#include <QTextEdit>
#include <string>

namespace ui {

class TokenColors;

class VariableTextBox : public QTextEdit {
    Q_OBJECT

  public:
    enum class Lines { one, many };
    explicit VariableTextBox(Lines lines, QWidget* parent = nullptr);

    // Text with line breaks as the database keeps them: carriage return and line feed.
    std::string storedText() const;
    void setStoredText(const std::string& text);

    // Colours every occurrence of the tokens in blue, now and from now on. No change of the text, and nothing
    // that undo takes back.
    void colorTokens(const QStringList& tokens);
    // Inserts a text as a step of its own for undo; an index past the end counts as the end. The caret goes
    // behind it, what is scrolled stays.
    void insertAt(int index, const QString& text);
    // Puts the caret before a character and drops the selection.
    void placeCaret(int index);

  signals:
    // A mouse button was pressed on the character with that index; the text's length when behind it all.
    void charPressed(int charIndex);
    // A right click, or the keyboard at the caret; the place is of the screen.
    void menuRequested(int charIndex, const QPoint& place);
    void entered();

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    void insertFromMimeData(const QMimeData* source) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void changeEvent(QEvent* event) override;

  private:
    int charFromPos(const QPoint& position) const;
    QString asLines(const QString& text) const;
    void limitWrapping(const QString& coming);

    Lines lines_;
    TokenColors* colors_;
};

}  // namespace ui
