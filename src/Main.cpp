#include "CommandLine.h"
#include "Startup.h"
#include "core/Global.h"
#include "screens/touch/Theme.h"

#include <QApplication>
#include <QTimer>

int main(int argc, char** argv) {
    QCoreApplication::setApplicationName(Global::Title);
    QCoreApplication::setApplicationVersion(QStringLiteral("%1.%2.%3")
                                                .arg(Global::VersionMajor)
                                                .arg(Global::VersionMinor)
                                                .arg(Global::VersionRevision));
    if (CommandLine::WantsWords(argc, argv))
        CommandLine::Take(QCoreApplication(argc, argv));
    QApplication application(argc, argv);
    CommandLine::Take(application);
    QApplication::setApplicationDisplayName(Global::Title);
    QApplication::setQuitOnLastWindowClosed(false);
    Theme::Apply(application);
    Startup startup;
    QTimer::singleShot(0, &startup, [&startup] {
        if (!startup.Main())
            QApplication::exit(1);
    });
    return QApplication::exec();
}
