#include "core/ErrorHandling.h"

#include "core/Boxes.h"
#include "core/Config.h"
#include "core/Message.h"
#include "core/Operator.h"
#include "core/Pointer.h"
#include "core/Trace.h"
#include "platform/Clock.h"
#include "platform/RunTimeError.h"
#include "platform/ServiceManager.h"

#include <QHash>
#include <QScopeGuard>
#include <QSet>
#include <QStringList>
#include <new>
#include <stdexcept>
#include <utility>

namespace ErrorHandling {

namespace {
/// Errors whose box stands on the screen now. Timers go on while it waits: the same error again
/// must not stack boxes over it.
QSet<QString> standing;

/// What one touch has told already: a screen that saves many settings on a full disk has the same
/// error with each of them.
struct {
    quint64 touch = 0;
    QSet<QString> texts;
} told;

int postponing = 0;
QStringList postponed;

/// When each error was last written to the trace, ms of the monotonic clock.
QHash<QString, qint64> traced;
constexpr qint64 TracePause = 600000;
constexpr qsizetype MostTraced = 100;

/// Of the errors that files and sticks make there are words in each language, by their number.
constexpr int ErrorWords = 714200;

/// English, like all of the trace: what the run-time library says of an error number.
QString LibraryText(int number) {
    using namespace platform;
    static const QHash<int, QString> texts = {
        {errors::Overflow, QStringLiteral("Overflow")},
        {errors::OutOfMemory, QStringLiteral("Out of memory")},
        {errors::Subscript, QStringLiteral("Subscript out of range")},
        {errors::TypeMismatch, QStringLiteral("Type mismatch")},
        {errors::Internal, QStringLiteral("Internal error")},
        {errors::BadFileName, QStringLiteral("Bad file name or number")},
        {errors::FileNotFound, QStringLiteral("File not found")},
        {errors::DeviceIo, QStringLiteral("Device I/O error")},
        {errors::DiskFull, QStringLiteral("Disk full")},
        {errors::InputPastEnd, QStringLiteral("Input past end of file")},
        {errors::PermissionDenied, QStringLiteral("Permission denied")},
        {errors::PathAccess, QStringLiteral("Path/File access error")},
        {errors::PathNotFound, QStringLiteral("Path not found")},
        {errors::InvalidPropertyValue, QStringLiteral("Invalid property value")},
        {errors::PrinterError, QStringLiteral("Printer error")},
        {errors::NoSuchField, QStringLiteral("Item not found in this collection")},
        {errors::DatabaseOpen, QStringLiteral("Could not find or open the database file")},
        {errors::DatabasePassword, QStringLiteral("Not a valid password")},
        {errors::PortNotOpen, QStringLiteral("Operation valid only when the port is open")},
        {errors::PortUnavailable, QStringLiteral("The port is not available")},
    };
    return texts.value(number, QStringLiteral("Application-defined or object-defined error"));
}

/// An error that repeats must not fill the disk.
void TraceError(const QString& source, int number) {
    const QString words = QStringLiteral("ERROR %1 %2").arg(number).arg(source);
    const qint64 now = platform::Clock::Current().MonotonicMs();
    const auto last = traced.constFind(words);
    if (last != traced.cend() && now >= *last && now - *last < TracePause)
        return;
    if (traced.size() >= MostTraced)
        traced.clear();
    traced.insert(words, now);
    Trace::Note(words);
    platform::ServiceManager::Current().Log(platform::ServiceManager::Priority::Error,
                                            words + QStringLiteral(": ") + LibraryText(number));
}

void Tell(const QString& text) {
    Pointer::Default();
    const quint64 touch = Operator::Touch();
    if (standing.contains(text) || (touch != 0 && touch == told.touch && told.texts.contains(text)))
        return;
    standing.insert(text);
    const auto answered = qScopeGuard([&text] { standing.remove(text); });
    Message(text, Messages::Critical);
    if (std::exchange(told.touch, touch) != touch)
        told.texts.clear();
    told.texts.insert(text);
}
} // namespace

Postponed::Postponed() {
    ++postponing;
}

Postponed::~Postponed() {
    if (--postponing > 0)
        return;
    try {
        const QStringList texts = std::exchange(postponed, {});
        if (!Operator::Acts()) {
            for (const QString& text : texts)
                Tell(text);
        } else if (!texts.isEmpty()) {
            Tell(texts.first());
            for (const QString& text : texts.mid(1))
                Boxes::Post(text, Messages::Critical);
        }
    } catch (...) {
        // As in the guard: an error of the handler has nowhere to go.
        return;
    }
}

QString RunTimeText(int number) {
    const QStringList words = Config::GetTexts(ErrorWords + number);
    return words.isEmpty() ? LibraryText(number) : words.first();
}

QString ErrorText(const QString& source, int number) {
    QString text =
        QStringLiteral("Error Nr %1 : %2\r\nModule : ").arg(number).arg(LibraryText(number));
    const qsizetype point = source.indexOf(u'.');
    if (point < 0)
        return text + source;
    const qsizetype underscore = source.indexOf(u'_', point);
    text += source.left(point) + QStringLiteral("\r\n");
    if (underscore < 0)
        return text + QStringLiteral("Function : ") + source.mid(point + 1);
    return text + QStringLiteral("Object : ") + source.mid(point + 1, underscore - point - 1) +
           QStringLiteral("\r\nEvent : ") + source.mid(underscore + 1);
}

void Report(const QString& source, int number) {
    const QString text = ErrorText(source, number);
    TraceError(source, number);
    if (postponing == 0)
        Tell(text);
    else if (!postponed.contains(text))
        postponed.append(text);
}

int CurrentErrorNumber() {
    using namespace platform;
    try {
        throw;
    } catch (const RunTimeError& error) {
        return error.Number();
    } catch (const std::bad_alloc&) {
        return errors::OutOfMemory;
    } catch (const std::out_of_range&) {
        return errors::Subscript;
    } catch (...) {
        return errors::Internal;
    }
}

} // namespace ErrorHandling
