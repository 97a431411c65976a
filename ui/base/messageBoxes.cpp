#include "ui/base/messageBoxes.h"

#include <QFileDialog>
#include <QHeaderView>
#include <QInputDialog>
#include <QMessageBox>
#include <QTreeView>
#include <QWindow>

#include "ui/base/loadedWindows.h"
#include "ui/base/paintingWait.h"
#include "ui/base/text.h"

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

// The window that a box belongs to. One that was shown a moment ago has its place on the screen only when it
// is up, and a box would stand beside it.
QWidget* ownerOfBox() {
    QWidget* owner = frontWindow();
    if (owner && owner->windowHandle() && !owner->windowHandle()->isExposed())
        paintBeforeGoingOn(*owner);
    return owner;
}

// Size, kind and date of a file in full; its name has the rest.
void widenColumns(QFileDialog& window) {
    constexpr int width = 760;
    constexpr int height = 460;
    window.resize(width, height);
    // A dialog of the desktop's own has no such view.
    if (const auto* files = window.findChild<QTreeView*>("treeView")) {
        files->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
        files->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    }
}

}  // namespace

BoxAnswer MessageBoxes::messageBox(const MessageBox& box) {
    QMessageBox window(ownerOfBox());
    window.setObjectName("messageBox");
    window.setIcon(iconOf(box.icon));
    window.setWindowTitle(fromUtf8(box.title));
    window.setTextFormat(Qt::PlainText);  // texts hold names and addresses as people typed them
    const QString whole = fromUtf8(box.text);
    const QString shown = withoutMiddle(whole);
    window.setText(breakable(shown));
    if (shown != whole)
        window.setDetailedText(breakable(whole));  // it scrolls
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
    QInputDialog window(ownerOfBox());
    window.setObjectName("inputBox");
    window.setWindowTitle(fromUtf8(title));
    window.setLabelText(breakable(withoutMiddle(fromUtf8(text))));
    window.setTextValue(fromUtf8(initial));
    constexpr int width = 420;  // for a file's name
    window.resize(width, window.sizeHint().height());
    return window.exec() == QDialog::Accepted ? std::optional(toUtf8(onOneLine(window.textValue())))
                                              : std::nullopt;
}

std::optional<std::string> MessageBoxes::openFile(const FileQuestion& question) {
    // "Audio file (*.wav)|*.wav" names the pattern twice; the first half is all that the dialog needs.
    const QString description = fromUtf8(question.filter).section('|', 0, 0);
    QFileDialog window(ownerOfBox(), fromUtf8(question.title), fromUtf8(question.folder), description);
    window.setObjectName("fileDialog");
    window.setFileMode(QFileDialog::ExistingFile);
    window.setDefaultSuffix(fromUtf8(question.defaultExtension));
    widenColumns(window);
    if (window.exec() != QDialog::Accepted || window.selectedFiles().isEmpty())
        return std::nullopt;
    return toUtf8(window.selectedFiles().first());
}

}  // namespace ui
