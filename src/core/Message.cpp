#include "core/Message.h"

#include <cstdio>

namespace {
Messages::Presenter presenter;
Messages::NoticePresenter noticePresenter;
} // namespace

void Messages::Install(Presenter newPresenter) {
    presenter = std::move(newPresenter);
}

void Messages::InstallNotice(NoticePresenter newPresenter) {
    noticePresenter = std::move(newPresenter);
}

Messages::Notice::Notice(const QString& text) {
    if (noticePresenter)
        close_ = noticePresenter(text);
}

Messages::Notice::~Notice() {
    if (close_)
        close_();
}

int Message(const QString& text, int buttons, bool noWait) {
    if (presenter)
        return presenter(text, buttons, noWait);
    std::fprintf(stderr, "%s\n", text.toLocal8Bit().constData());
    return noWait ? 0 : Messages::Closed;
}
