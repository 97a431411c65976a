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

std::optional<std::string> MessageBoxes::inputBox(const std::string& text, const std::string& title,
                                                  const std::string& initial) {
    QInputDialog window(QApplication::activeWindow());
    window.setObjectName("inputBox");
    window.setWindowTitle(fromUtf8(title));
    window.setLabelText(fromUtf8(text));
    window.setTextValue(fromUtf8(initial));
    return window.exec() == QDialog::Accepted ? std::optional(toUtf8(window.textValue())) : std::nullopt;
}

std::optional<std::string> MessageBoxes::openFile(const FileQuestion& question) {
    // "Audio file (*.wav)|*.wav" names the pattern twice; the first half is all that the dialog needs.
    const QString description = fromUtf8(question.filter).section('|', 0, 0);
    QFileDialog window(QApplication::activeWindow(), fromUtf8(question.title), fromUtf8(question.folder),
                       description);
    window.setObjectName("fileDialog");
    window.setFileMode(QFileDialog::ExistingFile);
    window.setDefaultSuffix(fromUtf8(question.defaultExtension));
    if (window.exec() != QDialog::Accepted || window.selectedFiles().isEmpty())
        return std::nullopt;
    return toUtf8(window.selectedFiles().first());
}

}  // namespace ui
