// korvanelle-mkbase <data folder> <output>: builds the configuration base, the encrypted file of
// all words, factory defaults and alarm sounds, out of the plain files that are kept under version
// control. Prints nothing on success; a fault gives one line on the error output and the result 1.

#include "BaseFile.h"

#include <QCoreApplication>
#include <cstdio>

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 3) {
        std::fputs("usage: korvanelle-mkbase <data folder> <output>\n", stderr);
        return 2;
    }
    try {
        mkbase::WriteBase(mkbase::ReadSources(arguments[1]), arguments[2]);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "korvanelle-mkbase: %s\n", error.what());
        return 1;
    }
    return 0;
}
