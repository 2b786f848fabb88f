#include "Startup.h"
#include "core/Global.h"
#include "screens/touch/Theme.h"

#include <QApplication>
#include <QTimer>

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QApplication::setApplicationName(Global::Title);
    QApplication::setApplicationDisplayName(Global::Title);
    QApplication::setApplicationVersion(QStringLiteral("%1.%2.%3")
                                            .arg(Global::VersionMajor)
                                            .arg(Global::VersionMinor)
                                            .arg(Global::VersionRevision));
    QApplication::setQuitOnLastWindowClosed(false);
    Theme::Apply(application);
    Startup startup;
    QTimer::singleShot(0, &startup, [&startup] {
        if (!startup.Main())
            QApplication::exit(1);
    });
    return QApplication::exec();
}
