#include "config_screens/printer/TestPrint.h"

#include <QStringList>
#include <utility>

namespace {
constexpr int LookMs = 20;
const QString TestLine = QStringLiteral("***** TEST *****");
} // namespace

void TestPrint::Start(const QString& portString, std::function<void(const QString& error)> done) {
    const QStringList parts = portString.split(u':');
    done_ = std::move(done);
    printer_ = std::make_unique<DirectPrinting>();
    printer_->setAddLF(true);
    printer_->setPort(parts.value(0));
    QString error = printer_->OpenPrinter(QString(), parts.value(1), true);
    if (error.isEmpty())
        error = printer_->PrintLine(TestLine);
    if (!error.isEmpty() || !printer_->IsBusy()) {
        Finish(error);
        return;
    }
    timer_.callOnTimeout(this, [this] { Advance(); });
    timer_.start(LookMs);
}

void TestPrint::Advance() {
    const QString error = printer_->Advance();
    if (!error.isEmpty() || !printer_->IsBusy())
        Finish(error);
}

void TestPrint::Finish(const QString& error) {
    timer_.stop();
    timer_.disconnect(this);
    printer_.reset();
    std::exchange(done_, nullptr)(error);
}
