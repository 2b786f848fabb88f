#include "platform/InputDiscard.h"

#include "platform/ActivityDetection.h"

#include <QCoreApplication>
#include <QObject>
#include <QPointer>

namespace platform {

namespace {

/// Stands before all other filters of the application, for as long as something is to be eaten.
class Eater : public QObject {
public:
    Eater() { qApp->installEventFilter(this); }

    void Keep() { ++kept_; }
    void Release() { --kept_; }

protected:
    bool eventFilter(QObject* /*watched*/, QEvent* event) override {
        const QEvent::Type type = event->type();
        if (!IsInput(type))
            return false;
        // An event passes for its window first and for its widgets then; what is eaten for the
        // window goes no further.
        if (kept_ > 0) {
            if (Begins(type))
                halfway_ = true;
            else if (Ends(type))
                halfway_ = false;
            return true;
        }
        if (!halfway_ || Begins(type)) {
            halfway_ = false;
            return false;
        }
        if (Ends(type))
            halfway_ = false;
        return true;
    }

private:
    static bool Begins(QEvent::Type type) {
        return type == QEvent::MouseButtonPress || type == QEvent::MouseButtonDblClick ||
               type == QEvent::TouchBegin || type == QEvent::TabletPress ||
               type == QEvent::KeyPress;
    }
    static bool Ends(QEvent::Type type) {
        return type == QEvent::MouseButtonRelease || type == QEvent::TouchEnd ||
               type == QEvent::TabletRelease || type == QEvent::KeyRelease;
    }

    int kept_ = 0;
    bool halfway_ = false; // a press was eaten, its release has yet to come
};

Eater& TheEater() {
    // The application takes it along.
    static QPointer<Eater> eater;
    if (!eater) {
        eater = new Eater;
        eater->setParent(qApp);
    }
    return *eater;
}

} // namespace

InputDiscard::InputDiscard() {
    TheEater().Keep();
}

InputDiscard::~InputDiscard() {
    TheEater().Release();
}

} // namespace platform
