// The machine's clock is set through a service on a message bus of the test's own; nothing here
// may touch the real one.

#include "platform/SystemClock.h"

#include "support/PrintText.h"

#include <QDBusMessage>
#include <QDBusServer>
#include <QDBusVirtualObject>
#include <QThread>
#include <cerrno>
#include <ctime>
#include <gtest/gtest.h>
#include <optional>

using namespace platform;

namespace {

/// Stands in for the service of the system; lives in a thread of its own, as a call waits in that
/// of the caller.
class TimeService : public QDBusVirtualObject {
public:
    QString refusal; ///< name of the error to give
    std::optional<qlonglong> set;
    bool asked = false; ///< somebody was to be asked for a password

    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& request, const QDBusConnection& bus) override {
        if (request.interface() + u'.' + request.member() !=
            Text("org.freedesktop.timedate1.SetTime"))
            return false;
        const QVariantList arguments = request.arguments();
        const bool relative = arguments.value(1).toBool();
        asked = arguments.value(2).toBool();
        if (refusal.isEmpty() && !relative)
            set = arguments.value(0).toLongLong();
        return bus.send(refusal.isEmpty()
                            ? request.createReply()
                            : request.createErrorReply(refusal, Text("words of the system")));
    }
};

class SystemClockTest : public ::testing::Test {
protected:
    static constexpr qint64 Wanted = 1'710'504'000'000; // 15 March 2024, 12:00 UTC

    SystemClockTest() {
        host_.moveToThread(&thread_);
        service.moveToThread(&thread_);
        thread_.start();
        QMetaObject::invokeMethod(
            &host_,
            [this] {
                server_ = new QDBusServer(&host_);
                server_->setAnonymousAuthenticationAllowed(true);
                QObject::connect(
                    server_, &QDBusServer::newConnection, &host_, [this](QDBusConnection bus) {
                        bus.registerVirtualObject(Text("/org/freedesktop/timedate1"), &service);
                    });
            },
            Qt::BlockingQueuedConnection);
    }
    ~SystemClockTest() override {
        QDBusConnection::disconnectFromPeer(Name);
        QMetaObject::invokeMethod(
            &host_, [this] { delete server_; }, Qt::BlockingQueuedConnection);
        thread_.quit();
        thread_.wait();
    }

    SystemClock::Result Set(bool withBus = true) {
        ClockRoads roads;
        roads.bus = [&] {
            if (!withBus)
                return QDBusConnection(Text("none"));
            QDBusConnection bus = QDBusConnection::connectToPeer(server_->address(), Name);
            // The service is registered when the connection is there at its end as well.
            QMetaObject::invokeMethod(
                &host_, [] {}, Qt::BlockingQueuedConnection);
            return bus;
        };
        roads.call = [this](qint64 time) {
            called = time;
            return callError;
        };
        return MakeSystemClock(roads)->Set(QDateTime::fromMSecsSinceEpoch(Wanted));
    }

    const QString Name = Text("clock-test");
    TimeService service;
    std::optional<qint64> called;
    int callError = 0;

private:
    QThread thread_;
    QObject host_;
    QDBusServer* server_ = nullptr;
};

} // namespace

TEST_F(SystemClockTest, TheServiceSetsItAndOnlyWithoutOneTheSystemIsCalled) {
    using Outcome = SystemClock::Outcome;
    const struct {
        const char* refusal; ///< null without a bus
        int callError;
        Outcome outcome;
        bool isCalled;
    } rows[] = {{"", 0, Outcome::Done, false},
                {"timedate1.AutomaticTimeSyncEnabled", 0, Outcome::KeptByNetwork, false},
                {"DBus.Error.AccessDenied", 0, Outcome::Refused, false},
                {"DBus.Error.InteractiveAuthorizationRequired", 0, Outcome::Refused, false},
                {"DBus.Error.InvalidArgs", 0, Outcome::Failed, false},
                {"DBus.Error.ServiceUnknown", 0, Outcome::Done, true},
                {"systemd1.UnitMasked", 0, Outcome::Done, true},
                {nullptr, EPERM, Outcome::Refused, true},
                {nullptr, EINVAL, Outcome::Failed, true}};
    for (const auto& [refusal, error, outcome, isCalled] : rows) {
        SCOPED_TRACE(refusal == nullptr ? "no bus" : refusal);
        const QString name = Text(refusal);
        service.refusal = name.isEmpty() ? name : Text("org.freedesktop.") + name;
        service.set.reset();
        called.reset();
        callError = error;
        const SystemClock::Result result = Set(refusal != nullptr);
        EXPECT_EQ(result.outcome, outcome);
        EXPECT_NE(result.words.isEmpty(), outcome != Outcome::Done);
        EXPECT_EQ(called, isCalled ? std::optional<qint64>(Wanted) : std::nullopt);
        const bool isSet = outcome == Outcome::Done && !isCalled;
        EXPECT_EQ(service.set, isSet ? std::optional<qlonglong>(Wanted * 1000) : std::nullopt)
            << "in microseconds";
        EXPECT_FALSE(service.asked) << "nobody is asked";
    }
}

TEST(TimeZoneTest, IsNamedWithItsDistanceFromUtc) {
    const QByteArray before = qgetenv("TZ");
    for (const auto& [zone, text] : {std::pair{"Asia/Kolkata", "Asia/Kolkata (UTC+05:30)"},
                                     {"America/Bogota", "America/Bogota (UTC-05:00)"}}) {
        qputenv("TZ", zone);
        tzset();
        EXPECT_EQ(MakeSystemClock()->TimeZone(), Text(text));
    }
    before.isNull() ? void(qunsetenv("TZ")) : void(qputenv("TZ", before));
    tzset();
}
