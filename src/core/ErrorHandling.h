#pragma once

#include <QString>
#include <utility>

/// The one handler of run-time errors and the guard that leads to it.
namespace ErrorHandling {

/// Tells the operator of an error in a procedure, in a box that waits for whoever touched the
/// screen and for nobody else, and in the trace; there the same error comes once in ten minutes.
/// One touch is told the same error once. `source` is the module or form, a point and the
/// procedure; handlers of a form add the object, "_" and the event.
void Report(const QString& source, int number);

/// The text of the box.
QString ErrorText(const QString& source, int number);

/// What an operator is told of an error number, in his language where it has words for it.
QString RunTimeText(int number);

/// The number of the exception that is being handled; only inside a catch.
int CurrentErrorNumber();

/// While one exists the errors that are reported wait, and are told when the outermost one goes: a
/// box stops what it stands in, and must not stand between a fault and the horn. One box comes of
/// them.
class Postponed {
public:
    Postponed();
    ~Postponed();
    Postponed(const Postponed&) = delete;
    Postponed& operator=(const Postponed&) = delete;
};

/// Runs the body of a procedure. An error inside goes to the handler, and the procedure returns
/// with what it had. True when the body ran to its end.
template <class Body> bool Guard(const char* source, Body&& body) noexcept {
    try {
        std::forward<Body>(body)();
        return true;
    } catch (...) {
        const int number = CurrentErrorNumber();
        try {
            Report(QString::fromLatin1(source), number);
        } catch (...) {
            // The handler is the end of the line: an error inside it has nowhere to go.
            return false;
        }
        return false;
    }
}

} // namespace ErrorHandling
