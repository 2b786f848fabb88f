#include "core/ErrorHandling.h"

#include "core/Boxes.h"
#include "core/Config.h"
#include "core/Faults.h"
#include "core/Message.h"
#include "core/Operator.h"
#include "core/Pointer.h"
#include "platform/RunTimeError.h"
#include "support/PrintText.h"

#include <QGuiApplication>
#include <QStringList>
#include <gtest/gtest.h>
#include <new>
#include <stdexcept>
#include <vector>

namespace errors = platform::errors;
using ErrorHandling::ErrorText;
using ErrorHandling::Guard;

namespace {

class Errors : public ::testing::Test {
protected:
    Errors() {
        Messages::Install([this](const QString& text, int buttons, bool noWait) {
            EXPECT_EQ(buttons, Messages::Critical);
            EXPECT_EQ(noWait, !Operator::Acts()) << "nobody waits for what no touch has called";
            boxes.append(text);
            if (whileShown)
                whileShown();
            return int(Messages::Ok);
        });
    }
    ~Errors() override {
        Messages::Install({});
        Boxes::Forget();
        Faults::Forget();
    }

    QStringList boxes;
    std::function<void()> whileShown;
};

TEST_F(Errors, TextSplitsTheSource) {
    const QString head = Text("Error Nr 9 : Subscript out of range\r\nModule : ");
    for (const auto& [source, rest] :
         {std::pair{"OpenConfigBase", "OpenConfigBase"},
          {"", ""},
          {"a_b", "a_b"},
          {"HistoProcs.HistoEvent", "HistoProcs\r\nFunction : HistoEvent"},
          {"my_Form.Go", "my_Form\r\nFunction : Go"},
          {"wMain.a_b_c", "wMain\r\nObject : a\r\nEvent : b_c"},
          {"a.b.c", "a\r\nFunction : b.c"}})
        EXPECT_EQ(ErrorText(Text(source), 9), head + Text(rest));
    EXPECT_TRUE(
        ErrorText(Text("M.F"), 4711).startsWith(Text("Error Nr 4711 : Application-defined")));
}

TEST_F(Errors, GuardTurnsExceptionsIntoNumbers) {
    EXPECT_TRUE(Guard("Module.Function", [] {}));
    EXPECT_TRUE(boxes.isEmpty());
    const std::pair<std::function<void()>, int> cases[] = {
        {[] { throw platform::RunTimeError(errors::DiskFull); }, errors::DiskFull},
        {[] { throw std::bad_alloc(); }, errors::OutOfMemory},
        {[] { (void)std::vector<int>().at(1); }, errors::Subscript},
        {[] { throw std::runtime_error("x"); }, errors::Internal},
        {[] { throw 1; }, errors::Internal},
    };
    for (const auto& [body, number] : cases) {
        boxes.clear();
        EXPECT_FALSE(Guard("Module.Function", body));
        EXPECT_EQ(boxes, QStringList{ErrorText(Text("Module.Function"), number)});
    }
}

TEST_F(Errors, PostponedErrorsAreToldAtTheEndAndOnce) {
    {
        const ErrorHandling::Postponed outer;
        ErrorHandling::Report(Text("A.First"), errors::DiskFull);
        {
            const ErrorHandling::Postponed inner;
            ErrorHandling::Report(Text("A.Second"), errors::DiskFull);
        }
        ErrorHandling::Report(Text("A.First"), errors::DiskFull);
        EXPECT_TRUE(boxes.isEmpty());
    }
    EXPECT_EQ(boxes, QStringList({ErrorText(Text("A.First"), errors::DiskFull),
                                  ErrorText(Text("A.Second"), errors::DiskFull)}));
}

// A touch brought the error: its box waits. What comes meanwhile was called by nobody.
TEST_F(Errors, SameErrorDoesNotStackWhileItsBoxStands) {
    const auto tick = [] {
        ErrorHandling::Report(Text("wPolling.tmrPolling_Timer"), errors::PortNotOpen);
    };
    const auto touch = [&] {
        const Operator::Acting acting;
        tick();
        const Operator::Acting inner;
        tick();
    };
    whileShown = [&] {
        whileShown = {};
        const Operator::Away away;
        tick();
        ErrorHandling::Report(Text("wPolling.tmrPolling_Timer"), errors::DeviceIo);
    };
    touch();
    EXPECT_EQ(boxes.size(), 2) << "one for each error of a touch";
    touch();
    EXPECT_EQ(boxes.size(), 3) << "answered, then failed again";
}

TEST_F(Errors, FailureOfTheBoxItselfEndsThere) {
    whileShown = [] { throw std::bad_alloc(); };
    EXPECT_FALSE(Guard("M.Box", [] { throw platform::RunTimeError(errors::Overflow); }));
    whileShown = {};
    EXPECT_FALSE(Guard("M.Box", [] { throw platform::RunTimeError(errors::Overflow); }));
    EXPECT_EQ(boxes.size(), 2) << "the next one is shown again";
}

TEST_F(Errors, NoHourglassOutlivesAFailure) {
    Pointer::Hourglass();
    Pointer::Hourglass();
    EXPECT_NE(QGuiApplication::overrideCursor(), nullptr);
    Guard("M.F", [] { throw platform::RunTimeError(errors::Overflow); });
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
}

} // namespace
