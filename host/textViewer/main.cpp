#include <QApplication>
#include <QMessageBox>

#include "host/textViewer/textWindow.h"
#include "host/viewer/showViewer.h"
#include "platform/failure.h"
#include "platform/machine/language.h"
#include "ui/base/appearance.h"
#include "ui/base/toolkitWords.h"

namespace {

int refuse(const viewer::Texts& texts, const QString& reason) {
    QMessageBox box(QMessageBox::Warning, texts.textViewer, reason, QMessageBox::Ok);
    box.setTextFormat(Qt::PlainText);
    box.exec();
    return 1;
}

}  // namespace

int main(int argc, char** argv) {
    // The toolkit gets none of the arguments: it would obey some of them.
    int ownName = 1;
    QApplication application(ownName, argv);
    ui::applyAppearance();
    ui::translateToolkit(platform::userDefaultLanguageId());
    const viewer::Language language = viewer::userLanguage();
    const viewer::Texts& texts = viewer::texts(language);
    if (argc != 2)
        return refuse(texts, texts.noFile);
    try {
        viewer::TextWindow window(argv[1], language);
        return viewer::showViewer(window);
    } catch (const platform::Failure& failure) {
        return refuse(texts,
                      QString(texts.cannotOpen).arg(argv[1], QString::fromStdString(failure.description())));
    }
}
