#pragma once

#include "core/FormNames.h"
#include "core/Forms.h"
#include "core/Message.h"
#include "support/FakeForm.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>
#include <memory>
#include <random>

/// Taps of a run; long runs set the variable.
inline int MonkeyTaps() {
    const int wanted = qEnvironmentVariableIntValue("KORVANELLE_TAPS");
    return wanted > 0 ? wanted : 2000;
}

/// Where a way out leads: what is there is no business of this test.
class Elsewhere : public QObject, public FakeForm {
public:
    explicit Elsewhere(const QString& name)
        : FakeForm(name, log) {}
    void Unload() override {
        FakeForm::Unload();
        deleteLater();
    }

private:
    static inline QStringList log;
};

/// Taps at random places of the form that takes touches, one tap as soon as the one before has
/// been taken in, and inside the dialogs that a tap brings up as well.
class Monkey : public QObject {
public:
    Monkey(QString form, unsigned seed)
        : form_(std::move(form))
        , random_(seed) {}

    void Run(int taps) {
        left_ = taps;
        Later();
        while (left_ > 0)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }

    int Number(int below) { return int(random_() % unsigned(below)); }

private:
    /// The next tap is asked for ahead of this one, which may wait in a dialog.
    void Later() {
        QMetaObject::invokeMethod(
            this,
            [this] {
                if (left_ > 0)
                    Step();
            },
            Qt::QueuedConnection);
    }
    void Step() {
        if (--left_ <= 0) {
            Forms::UnloadAllBut({});
            return;
        }
        QWidget* top = Top();
        if (top == nullptr) {
            Forms::UnloadAllBut({});
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
            Forms::Show(form_);
            top = Top();
        }
        ASSERT_NE(top, nullptr) << form_.toStdString();
        if (!top->isEnabled()) {
            // It works, and takes no tap meanwhile.
            ++left_;
            QTimer::singleShot(1, this, [this] { Step(); });
            return;
        }
        Later();
        Tap(*top);
    }
    /// The form that takes touches, or null when the monkey got out to another screen.
    QWidget* Top() const {
        if (QWidget* modal = QApplication::activeModalWidget())
            return modal;
        auto* screen = dynamic_cast<QWidget*>(Forms::Find(form_));
        return screen != nullptr && screen->isVisible() ? screen : nullptr;
    }
    /// On the file dialog only its answers: nothing outside the test's folder is a monkey's
    /// business.
    static bool IsHarmless(const QWidget& top, const QWidget& control) {
        return top.objectName() != FormNames::dlgFilePicker ||
               control.objectName().startsWith(QLatin1String("imgControl"));
    }
    void Tap(QWidget& top) {
        QList<QWidget*> targets;
        for (QWidget* control : top.findChildren<QWidget*>()) {
            if (control->isVisibleTo(&top) && control->isEnabled() && IsHarmless(top, *control) &&
                control->objectName() != QLatin1String("imgBackPicture"))
                targets += control;
        }
        if (targets.isEmpty())
            return;
        QWidget* target = targets[Number(int(targets.size()))];
        if (auto* view = qobject_cast<QAbstractItemView*>(target))
            target = view->viewport();
        const QPoint place(Number(qMax(1, target->width())), Number(qMax(1, target->height())));
        QTest::mouseClick(target, Qt::LeftButton, {}, place);
    }

    QString form_;
    std::mt19937 random_;
    int left_ = 0;
};

/// Answers at random to every box from now on.
inline void AnswerAtRandom() {
    const auto random = std::make_shared<std::mt19937>(7);
    Messages::Install([random](const QString&, int, bool) {
        constexpr int Replies[] = {Messages::Ok, Messages::Cancel, Messages::Yes, Messages::No,
                                   Messages::Closed};
        return Replies[(*random)() % std::size(Replies)];
    });
}
