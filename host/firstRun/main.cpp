// Asks once whether the console is for this machine or for a demonstration, and makes the host: on the
// desktop where there is one, else in the terminal. Exit code 0 when the console is to start.

#include <QApplication>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <string>

#include "host/firstRun/firstRunWindow.h"
#include "ui/base/appearance.h"
#include "ui/base/controls.h"
#include "ui/base/text.h"

namespace {

// As a terminal shows it.
std::string plain(const char* caption) {
    return ui::toUtf8(ui::plainCaption(caption));
}

bool hasDesktop() {
    const auto isSet = [](const char* name) {
        const char* value = std::getenv(name);
        return value && *value;
    };
    return isSet("DISPLAY") || isSet("WAYLAND_DISPLAY") || isSet("QT_QPA_PLATFORM");
}

int askInTerminal(const QString& tree, const firstRun::Texts& texts) {
    std::printf("%s\n\n  1  %s\n     %s\n  2  %s\n     %s\n\n%s", texts.question,
                plain(texts.thisMachine).c_str(), texts.thisMachineMeans, plain(texts.demonstration).c_str(),
                texts.demonstrationMeans, texts.answer);
    std::fflush(stdout);
    std::string answer;
    std::getline(std::cin, answer);
    if (answer != "1" && answer != "2")
        return 1;
    const auto choice = answer == "1" ? firstRun::Choice::thisMachine : firstRun::Choice::demonstration;
    const firstRun::Outcome outcome = firstRun::makeHost(choice, tree, texts);
    std::printf("%s\n", outcome.told.toUtf8().constData());
    return outcome.isMade ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fputs("usage: quillon-first-run TREE\n", stderr);
        return 2;
    }
    const firstRun::Texts& texts = firstRun::texts(viewer::userLanguage());
    // The toolkit gets none of the arguments: it would obey some of them.
    int ownName = 1;
    if (!hasDesktop()) {
        QCoreApplication application(ownName, argv);
        return askInTerminal(QString::fromLocal8Bit(argv[1]), texts);
    }
    QApplication application(ownName, argv);
    ui::applyAppearance();
    firstRun::FirstRunWindow window(QString::fromLocal8Bit(argv[1]), texts);
    return window.exec() == QDialog::Accepted ? 0 : 1;
}
