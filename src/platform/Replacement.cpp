#include "platform/Replacement.h"

#include <QCoreApplication>
#include <QFile>
#include <climits>
#include <unistd.h>
#include <vector>

#include <linux/close_range.h>

namespace platform::Replacement {

namespace {

constexpr const char* NoteVariable = "KORVANELLE_REPLACED";
constexpr unsigned FirstOwnHandle = 3;

QStringList kept;

struct Successor {
    QByteArray program;
    QStringList arguments;
    QByteArray note;
};
std::optional<Successor> successor;

} // namespace

void KeepArguments(int argc, char** argv) {
    kept.clear();
    for (int i = 1; i < argc; ++i)
        kept += QFile::decodeName(argv[i]);
}

QStringList Arguments() {
    return kept;
}

void Ask(const QStringList& arguments, const QByteArray& note) {
    successor =
        Successor{QFile::encodeName(QCoreApplication::applicationFilePath()), arguments, note};
}

bool IsAsked() {
    return successor.has_value();
}

void Forget() {
    successor.reset();
}

void Run() {
    if (!successor)
        return;
    qputenv(NoteVariable, successor->note);
    std::vector<QByteArray> words = {successor->program};
    for (const QString& argument : std::as_const(successor->arguments))
        words.push_back(QFile::encodeName(argument));
    std::vector<char*> pointers;
    pointers.reserve(words.size() + 1);
    for (QByteArray& word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);
    // A library may have left something open.
    close_range(FirstOwnHandle, UINT_MAX, CLOSE_RANGE_CLOEXEC);
    execv(successor->program.constData(), pointers.data());
}

/// No program that is started from here may find it.
std::optional<QByteArray> Note() {
    static const std::optional<QByteArray> note = [] {
        std::optional<QByteArray> found;
        if (qEnvironmentVariableIsSet(NoteVariable))
            found = qgetenv(NoteVariable);
        qunsetenv(NoteVariable);
        return found;
    }();
    return note;
}

} // namespace platform::Replacement
