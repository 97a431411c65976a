// Colours tokens in a text document. The colours lie over the text and are no part of it: undo, copies and
// saved texts never see them. A change recolours the paragraphs that it touches and no others, since no token
// goes over the end of one; the cost is linear in their length.
#pragma once

#include <QColor>
#include <QList>
#include <QObject>
#include <QStringList>
#include <QTextLayout>

class QTextBlock;
class QTextDocument;

namespace ui {

class TokenColors : public QObject {
  public:
    // Belongs to the document.
    explicit TokenColors(QTextDocument& document);

    // What is coloured, and how; letter case counts. A change recolours everything.
    void setTokens(const QStringList& tokens);
    void setColor(const QColor& color);

    // While an instance that is in force lives, a change is one behind the first character, although the
    // toolkit tells of it from the paragraph's beginning on.
    class FirstKept {
      public:
        FirstKept(TokenColors& colors, bool inForce) : colors_(colors) { colors_.firstKept_ = inForce; }
        ~FirstKept() { colors_.firstKept_ = false; }
        FirstKept(const FirstKept&) = delete;
        FirstKept& operator=(const FirstKept&) = delete;

      private:
        TokenColors& colors_;
    };

  private:
    using Ranges = QList<QTextLayout::FormatRange>;

    void noteChange(int position, int removed, int added);
    void colorAll();
    // True when the paragraph looks different now.
    bool colorBlock(const QTextBlock& block);
    Ranges rangesOf(const QTextBlock& block);
    QTextLayout::FormatRange colored(qsizetype start, qsizetype length) const;

    QTextDocument& document_;
    QStringList tokens_;
    QColor color_;
    // The text's first character is coloured only anew, never put back to black: required. Whatever moves to
    // the front by a deletion takes its colour over; what is typed there begins in black.
    bool firstColored_ = false;
    bool firstKept_ = false;
};

}  // namespace ui
