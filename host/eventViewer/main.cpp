#include <QApplication>

#include "host/eventViewer/eventWindow.h"
#include "host/viewer/showViewer.h"
#include "ui/base/appearance.h"

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    ui::applyAppearance();
    viewer::EventWindow window(viewer::userLanguage());
    return viewer::showViewer(window);
}
