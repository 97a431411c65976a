// The bar between tree and panes: an invisible hit area, and a bar that follows the mouse while it is
// dragged.
#pragma once

#include <QObject>

class QFrame;
class QWidget;

class Splitter : public QObject {
    Q_OBJECT

  public:
    // Both lie over `client`, whose window's width limits the bar.
    explicit Splitter(QWidget& client);

    // Puts the hit area, whose left edge is in twips, above the panes; top and height are in pixels.
    void place(int left, int top, int height);
    // Of the hit area, in twips.
    int left() const { return left_; }

  signals:
    // The bar was let go there, in twips; nobody has limited it to the layout yet.
    void moved(int left);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void imgSplitter_MouseDown();
    void imgSplitter_MouseMove(int pointerX);
    void imgSplitter_MouseUp();

    QWidget& client_;
    QFrame* imgSplitter_;
    QFrame* picSplitter_;
    int left_ = 0;
    bool moving_ = false;
};
