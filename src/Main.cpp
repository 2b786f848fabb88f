#include "CommandLine.h"
#include "Startup.h"
#include "core/Global.h"
#include "platform/Replacement.h"
#include "screens/touch/Theme.h"

#include <QApplication>
#include <QTimer>

namespace {

/// From the first window to the last.
int RunProgram(int argc, char** argv) {
    QApplication application(argc, argv);
    const bool rehearses = CommandLine::Take(application);
    QApplication::setApplicationDisplayName(Global::Title);
    QApplication::setQuitOnLastWindowClosed(false);
    Theme::Apply(application);
    Startup startup;
    QTimer::singleShot(0, &startup, [&startup, rehearses] {
        if (!startup.Main(rehearses))
            QApplication::exit(1);
    });
    return QApplication::exec();
}

} // namespace

int main(int argc, char** argv) {
    platform::Replacement::KeepStart(argc, argv);
    platform::Replacement::Note();
    QCoreApplication::setApplicationName(Global::Title);
    QCoreApplication::setApplicationVersion(QStringLiteral("%1.%2.%3")
                                                .arg(Global::VersionMajor)
                                                .arg(Global::VersionMinor)
                                                .arg(Global::VersionRevision));
    if (CommandLine::WantsWords(argc, argv))
        CommandLine::Take(QCoreApplication(argc, argv));
    const int status = RunProgram(argc, argv);
    platform::Replacement::Run();
    return status;
}
