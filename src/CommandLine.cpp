#include "CommandLine.h"

#include "platform/Folders.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace CommandLine {

bool WantsWords(int argc, char** argv) {
    return std::any_of(argv, argv + argc, [](std::string_view argument) {
        return argument == "--help" || argument == "-h" || argument == "--version" ||
               argument == "-v";
    });
}

bool Take(const QCoreApplication& application) {
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Supervision of alarm annunciator modules on a serial Modbus RTU bus."));
    const QCommandLineOption folder(
        QStringLiteral("folder"),
        QStringLiteral("Keep settings, site, traces, histories and sounds in DIR. Without it they "
                       "lie beside the program."),
        QStringLiteral("DIR"));
    parser.addOption(folder);
    const QCommandLineOption rehearsal(
        QStringLiteral("rehearsal"),
        QStringLiteral("Play the site with simulated modules, in the folder Rehearsal of that "
                       "one. The program does this by itself; its end brings the watch back."));
    parser.addOption(rehearsal);
    parser.addHelpOption();
    parser.addVersionOption();
    parser.process(application);
    if (!parser.isSet(folder) || platform::UseApplicationFolder(parser.value(folder)))
        return parser.isSet(rehearsal);
    std::fprintf(stderr, "%s: can't write to the folder %s\n",
                 qUtf8Printable(platform::ExecutableName()), qUtf8Printable(parser.value(folder)));
    std::exit(EXIT_FAILURE);
}

} // namespace CommandLine
