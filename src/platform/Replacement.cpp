#include "platform/Replacement.h"

#include <QCoreApplication>
#include <QFile>
#include <climits>
#include <fcntl.h>
#include <filesystem>
#include <unistd.h>
#include <vector>

#include <linux/close_range.h>

namespace platform::Replacement {

namespace {

constexpr const char* NoteVariable = "KORVANELLE_REPLACED";
constexpr unsigned FirstOwnHandle = 3;

QStringList kept;
std::vector<int> given; // handles

struct Successor {
    QByteArray program;
    QStringList arguments;
    QByteArray note;
};
std::optional<Successor> successor;

} // namespace

void KeepStart(int argc, char** argv) {
    kept.clear();
    for (int i = 1; i < argc; ++i)
        kept += QFile::decodeName(argv[i]);
    given.clear();
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd", error)) {
        const int handle = QByteArray(entry.path().filename().c_str()).toInt();
        const int flags = fcntl(handle, F_GETFD);
        // That of the iterator itself is closed when the program goes.
        if (handle >= int(FirstOwnHandle) && flags >= 0 && (flags & FD_CLOEXEC) == 0)
            given.push_back(handle);
    }
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
    for (const int handle : given)
        fcntl(handle, F_SETFD, 0);
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
