// A box for plain text with insertion variables: a subject of one line or a body of many.
#pragma once

#include <QTextEdit>
#include <string>

namespace ui {

class VariableTextBox : public QTextEdit {
    Q_OBJECT

  public:
    enum class Lines { one, many };
    explicit VariableTextBox(Lines lines, QWidget* parent = nullptr);

    // Text with line breaks as the database keeps them: carriage return and line feed.
    std::string storedText() const;
    void setStoredText(const std::string& text);

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    void insertFromMimeData(const QMimeData* source) override;

  private:
    Lines lines_;
};

}  // namespace ui
