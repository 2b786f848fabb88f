#include "model/BusSettings.h"

#include <gtest/gtest.h>

TEST(BusSettingsTest, TheTextOfTheSiteInItsParts) {
    const BusSettings whole = BusSettings::Of(QStringLiteral("COM12:19200,E,7,2"));
    EXPECT_EQ(whole.port + u'/' + whole.speed + u'/' + whole.stop, QStringLiteral("12/19200/2"));
    EXPECT_EQ(whole.line, QStringLiteral("19200,E,7,2"));
    EXPECT_EQ(BusSettings::Text(12, whole.line), QStringLiteral("COM12:19200,E,7,2"));
    EXPECT_EQ(BusSettings::Line(whole.speed, whole.stop), QStringLiteral("19200,N,8,2"));
    for (const char* part : {"", "CO", "COM", ":", ":,,"}) {
        const BusSettings none = BusSettings::Of(QString::fromLatin1(part));
        EXPECT_EQ(none.port + none.speed + none.stop, QString()) << part;
    }
}
