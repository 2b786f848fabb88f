// Makes the manual out of the help, one PDF for each language that has a help:
// korvanelle-manual <folder with korvanelle.cfg> <folder of the help> <target folder>

#include "Base.h"
#include "Manual.h"

#include "core/Global.h"
#include "platform/Folders.h"

#include <QApplication>
#include <QDir>
#include <cstdio>

int main(int argc, char** argv) {
    if (argc != 4) {
        std::fprintf(stderr, "usage: korvanelle-manual <folder> <help> <target>\n");
        return 2;
    }
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    if (!Base::Open(QString::fromLocal8Bit(argv[1])))
        return 1;
    const QDir help(QString::fromLocal8Bit(argv[2]));
    const QDir target(QString::fromLocal8Bit(argv[3]));
    if (!platform::MakeFolder(target.path()))
        return 1;
    for (int language = 0; !GetLanguage(language).isEmpty(); ++language) {
        Global::Get().language = qint16(language);
        const QString letters = GetLanguage(language).left(2).toLower();
        const QString page = help.filePath(QStringLiteral("korvanelle-%1.html").arg(letters));
        const QString pdf = target.filePath(QStringLiteral("manual-%1.pdf").arg(letters));
        if (!WriteManual(page, pdf)) {
            std::fprintf(stderr, "%s: not written\n", pdf.toLocal8Bit().constData());
            return 1;
        }
    }
    return 0;
}
