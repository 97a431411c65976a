// A tip window of our own for the places where a control's own tip is not enough: the navigation tree,
// whose tip changes with the node under the pointer.
#pragma once

#include <QLabel>
#include <QObject>
#include <QTimer>
#include <array>
#include <memory>
#include <string>
#include <vector>

class cTooltip : public QObject {
    Q_OBJECT

  public:
    enum Delay { delayAutomatic = 0, delayReshow = 1, delayAutoPop = 2, delayInitial = 3 };

    explicit cTooltip(QObject* parent = nullptr);
    ~cTooltip() override;

    // Makes the tip window for an owner, once; a second call keeps the first window. Until then everything
    // else does nothing and gives 0 or false.
    bool Create(QWidget* owner);
    // Adds a control; false when it is there already. An empty text becomes "Tool" and the tool's number.
    bool AddTool(QWidget* control, const std::string& text);
    bool RemoveTool(QWidget* control);

    // Colours as blue-green-red numbers.
    long BackColor() const;
    void setBackColor(long color);
    // Milliseconds; `which` is masked with 3.
    int DelayTime(long which) const;
    void setDelayTime(long which, int milliseconds);
    // Required: reading sets the text to black and gives 0, because it asks with the message that sets.
    long ForeColor();
    void setForeColor(long color);
    WId hWnd() const;
    // Pixels; sides 0 to 3 are left, top, right, bottom.
    int Margin(int side) const;
    void setMargin(int side, int margin);
    // Pixels. A value below 1 means no limit; it reads back as 65535, the low word of -1.
    long MaxTipWidth() const;
    void setMaxTipWidth(long width);
    long ToolCount() const;
    // Empty for a control that is no tool.
    std::string ToolText(const QWidget* control) const;
    void setToolText(QWidget* control, const std::string& text);

    // Takes the tip off the screen; the pointer has to come anew to bring it back.
    void hide();
    // True while the tip is on the screen.
    bool isTipVisible() const;

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    struct Tool {
        QWidget* control;  // what receives the pointer: the viewport of a scrolling control
        std::string text;
    };
    Tool* findTool(const QWidget* control);
    const Tool* findTool(const QWidget* control) const;
    // Beside that point of the screen.
    void show(const QPoint& pointed);

    std::unique_ptr<QLabel> tip_;
    std::vector<Tool> tools_;
    std::array<int, 4> delays_{500, 100, 5000, 500};
    std::array<int, 4> margins_{4, 3, 4, 3};
    long maxTipWidth_ = -1;
    QTimer wait_;
    QTimer pop_;
    QWidget* hovered_ = nullptr;
};
