#include "host/firstRun/hostMaker.h"

#include <QDir>
#include <QProcess>

#include "platform/machine/host.h"

namespace firstRun {

namespace {

struct Ran {
    bool isDone = false;
    QString output;
};

Ran runToEnd(QStringList command) {
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.setStandardInputFile(QProcess::nullDevice());
    process.start(command.takeFirst(), command);
    process.closeWriteChannel();
    const bool hasEnded = process.waitForFinished(-1);
    return {hasEnded && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0,
            hasEnded ? QString::fromUtf8(process.readAll()).trimmed() : process.errorString()};
}

}  // namespace

QStringList makingCommand(Choice choice, const QString& tree) {
    const QString tool = QString::fromStdString((platform::program::folder() / "qlnhost").string());
    if (choice == Choice::thisMachine)
        return {tool, "create", tree, "--this-machine"};
    return {tool, "create", tree, "--no-legacy"};
}

Outcome makeHost(Choice choice, const QString& tree, const Texts& texts) {
    const Ran made = runToEnd(makingCommand(choice, tree));
    Outcome outcome{made.isDone, made.output};
    if (!outcome.isMade)
        outcome.told = QString(texts.failed) + "\n" + made.output;
    if (!outcome.isMade || choice != Choice::thisMachine)
        return outcome;
    // The unit knows one place.
    if (QDir(tree) != QDir(QDir::homePath() + "/.local/share/quillon-admin")) {
        outcome.told += "\n\n" + QString(texts.doesNotStart).arg(tree + ", quillon-services.service(8)");
        return outcome;
    }
    const Ran enabled = runToEnd({"systemctl", "--user", "enable", "--now", "quillon-services.service"});
    outcome.told += "\n\n" + (enabled.isDone ? QString(texts.startsWithMachine)
                                             : QString(texts.doesNotStart).arg(enabled.output));
    return outcome;
}

}  // namespace firstRun
