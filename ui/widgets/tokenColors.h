// Colours tokens in a text document. The colours lie over the text and are no part of it: undo, copies and
// saved texts never see them, and a change recolours the paragraphs that it touches.
#pragma once

#include <QColor>
#include <QStringList>
#include <QSyntaxHighlighter>

namespace ui {

class TokenColors : public QSyntaxHighlighter {
  public:
    explicit TokenColors(QTextDocument& document);

    // What is coloured, and how; letter case counts. A change recolours everything.
    void setTokens(const QStringList& tokens);
    void setColor(const QColor& color);

  protected:
    void highlightBlock(const QString& text) override;

  private:
    void noteChange(int position, int removed, int added);

    QStringList tokens_;
    QColor color_;
    // The text's first character is coloured only anew, never put back to black: required. Whatever moves to
    // the front by a deletion takes its colour over; what is typed there begins in black.
    bool firstColored_ = false;
};

}  // namespace ui
