#include <QApplication>

#include "host/eventViewer/eventWindow.h"
#include "host/viewer/showViewer.h"
#include "platform/machine/language.h"
#include "ui/base/appearance.h"
#include "ui/base/toolkitWords.h"

int main(int, char** argv) {
    // The toolkit gets none of the arguments: it would obey some of them.
    int ownName = 1;
    QApplication application(ownName, argv);
    ui::applyAppearance();
    ui::translateToolkit(platform::userDefaultLanguageId());
    viewer::EventWindow window(viewer::userLanguage());
    return viewer::showViewer(window);
}
