#pragma once

#include "core/Forms.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QList>
#include <QString>
#include <QStringList>
#include <QTimer>
#include <QWidget>
#include <functional>
#include <gtest/gtest.h>

/// What an operator does with the dialogs that a touch brings up: one step after another, each as
/// soon as its form takes a touch. A form that doesn't come or doesn't go fails the test, and every
/// dialog goes, so that nothing hangs.
class Script {
public:
    using Step = std::function<void()>;

    Script() {
        timer_.setSingleShot(true);
        timer_.setInterval(1);
        timer_.callOnTimeout([this] { Look(); });
    }
    ~Script() { EXPECT_TRUE(steps_.isEmpty()) << "waits for " << Waiting(); }
    Script(const Script&) = delete;
    Script& operator=(const Script&) = delete;

    void On(const QString& form, Step act) {
        steps_.append({form, std::move(act)});
        Begin();
    }
    /// A step ahead of those that wait, for a dialog that a step itself brings up.
    void Next(const QString& form, Step act) {
        steps_.prepend({form, std::move(act)});
        Begin();
    }

private:
    static constexpr qint64 Patience = 30000;
    /// While a step is at work, which may take its time.
    static constexpr qint64 LongPatience = 60000;

    void Begin() {
        since_.start();
        timer_.start();
    }
    std::string Waiting() const {
        return steps_.isEmpty() ? "nothing" : steps_.first().first.toStdString();
    }
    /// A form under another one that waits takes no touch. A step on a form that is under way ends
    /// before the next one.
    bool CanAct() const {
        if (steps_.isEmpty() || busy_.contains(steps_.first().first))
            return false;
        const Forms::Form* form = Forms::Find(steps_.first().first);
        const QWidget* modal = QApplication::activeModalWidget();
        return form != nullptr && form->Visible() &&
               (modal == nullptr || modal == dynamic_cast<const QWidget*>(form));
    }
    /// The next look is set up ahead of the step: a step may open a dialog that waits.
    void Look() {
        if (CanAct()) {
            const auto [name, act] = steps_.takeFirst();
            since_.start();
            QTimer::singleShot(0, &timer_, [this] { Look(); });
            busy_.append(name);
            act();
            busy_.removeLast();
        } else if (steps_.isEmpty() && QApplication::activeModalWidget() == nullptr) {
            return;
        } else if (since_.elapsed() > (busy_.isEmpty() ? Patience : LongPatience)) {
            ADD_FAILURE() << "waits for " << Waiting();
            steps_.clear();
            Forms::UnloadAllBut({QStringLiteral("wPolling"), QStringLiteral("wMain")});
        } else {
            timer_.start();
        }
    }

    QTimer timer_;
    QElapsedTimer since_;
    QList<QPair<QString, Step>> steps_;
    QStringList busy_;
};
