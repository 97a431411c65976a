#include "ui/messageBoxes.h"

#include <QApplication>
#include <QFileDialog>
#include <QInputDialog>
#include <QMessageBox>

#include "ui/text.h"

namespace ui {

using namespace platform;

namespace {

QMessageBox::Icon iconOf(BoxIcon icon) {
    switch (icon) {
        case BoxIcon::critical:
            return QMessageBox::Critical;
        case BoxIcon::question:
            return QMessageBox::Question;
        case BoxIcon::exclamation:
            return QMessageBox::Warning;
        case BoxIcon::information:
            return QMessageBox::Information;
        case BoxIcon::none:
            break;
    }
    return QMessageBox::NoIcon;
}

}  // namespace

BoxAnswer MessageBoxes::messageBox(const MessageBox& box) {
    QMessageBox window(QApplication::activeWindow());
    window.setObjectName("messageBox");
    window.setIcon(iconOf(box.icon));
    window.setWindowTitle(fromUtf8(box.title));
    window.setTextFormat(Qt::PlainText);  // texts hold names and addresses as people typed them
    window.setText(fromUtf8(box.text));
    switch (box.buttons) {
        case BoxButtons::ok:
            window.setStandardButtons(QMessageBox::Ok);
            break;
        case BoxButtons::yesNo:
            window.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
            window.setEscapeButton(QMessageBox::No);
            break;
        case BoxButtons::yesNoCancel:
            window.setStandardButtons(QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
            break;
    }
    switch (window.exec()) {
        case QMessageBox::Yes:
            return BoxAnswer::yes;
        case QMessageBox::No:
            return BoxAnswer::no;
        case QMessageBox::Cancel:
            return BoxAnswer::cancel;
        default:
            return BoxAnswer::ok;
    }
}

std::optional<std::string> MessageBoxes::inputBox(const std::string& text, const std::string& title) {
    bool accepted = false;
    const QString answer = QInputDialog::getText(QApplication::activeWindow(), fromUtf8(title),
                                                 fromUtf8(text), QLineEdit::Normal, QString(), &accepted);
    return accepted ? std::optional(toUtf8(answer)) : std::nullopt;
}

std::optional<std::string> MessageBoxes::openFile(const std::string& title, const std::string& filter) {
    // "Audio file (*.wav)|*.wav" names the pattern twice; the first half is all that the dialog needs.
    const QString description = fromUtf8(filter).section('|', 0, 0);
    const QString file =
        QFileDialog::getOpenFileName(QApplication::activeWindow(), fromUtf8(title), QString(), description);
    return file.isEmpty() ? std::nullopt : std::optional(toUtf8(file));
}

}  // namespace ui
