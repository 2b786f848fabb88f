#include "core/Message.h"

#include "core/Boxes.h"
#include "core/Operator.h"

#include <cstdio>

namespace {
Messages::Presenter presenter;
Messages::NoticePresenter noticePresenter;
} // namespace

void Messages::Install(Presenter newPresenter) {
    presenter = std::move(newPresenter);
    Boxes::Install(nullptr);
}

void Messages::InstallNotice(NoticePresenter newPresenter) {
    noticePresenter = std::move(newPresenter);
}

Messages::Notice::Notice(const QString& text) {
    if (noticePresenter)
        shown_ = noticePresenter(text);
}

Messages::Notice::~Notice() {
    if (shown_.close)
        shown_.close();
}

void Messages::Notice::setText(const QString& text) {
    if (shown_.change)
        shown_.change(text);
}

int Message(const QString& text, int buttons, bool noWait) {
    const bool asks = (buttons & Messages::ButtonSet) != 0;
    if (presenter && !noWait && !asks && !Operator::Acts()) {
        Boxes::Post(text, buttons);
        return 0;
    }
    if (presenter)
        return presenter(text, buttons, noWait);
    std::fprintf(stderr, "%s\n", text.toLocal8Bit().constData());
    return noWait ? 0 : Messages::Closed;
}
