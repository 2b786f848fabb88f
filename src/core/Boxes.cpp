#include "core/Boxes.h"

#include "core/Config.h"
#include "core/Faults.h"
#include "core/Message.h"

#include <utility>

namespace Boxes {

namespace {

constexpr int AndMore = 714050;

Presenter presenter;
int held = 0;
bool owed = false; // the box is to be shown when nothing holds it any more

struct {
    QString text;
    int style = 0;
    int count = 0;
} unread;

QString Counted() {
    if (unread.count < 2)
        return unread.text;
    return unread.text + QStringLiteral("\r\n\r\n") +
           GetText(AndMore).replace(u'$', QString::number(unread.count - 1));
}

void Present() {
    if (held > 0) {
        owed = true;
        return;
    }
    owed = false;
    if (presenter) {
        presenter(Counted(), unread.style);
        return;
    }
    const QString text = Counted();
    const int style = unread.style;
    Read();
    Message(text, style, true);
}

} // namespace

Held::Held() {
    ++held;
}

Held::~Held() {
    if (--held > 0 || !owed)
        return;
    try {
        Present();
    } catch (...) {
        // A box that can't be shown stays unread on the band.
        return;
    }
}

void Post(const QString& text, int style) {
    if (unread.count == 0) {
        unread.text = text;
        unread.style = style;
    }
    ++unread.count;
    if (presenter)
        Faults::Set(Faults::Kind::BoxUnanswered, QString::number(unread.count));
    Present();
}

int Unread() {
    return unread.count;
}

void ShowUnread() {
    if (unread.count > 0)
        Present();
}

void Read() {
    unread = {};
    owed = false;
    Faults::Clear(Faults::Kind::BoxUnanswered);
}

void Forget() {
    unread = {};
    owed = false;
}

void Install(Presenter newPresenter) {
    presenter = std::move(newPresenter);
}

} // namespace Boxes
