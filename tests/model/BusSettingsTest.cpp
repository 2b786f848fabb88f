#include "model/BusSettings.h"

#include "support/PrintText.h"

#include <gtest/gtest.h>

TEST(BusSettingsTest, TheTextOfTheSiteInItsParts) {
    const BusSettings whole = BusSettings::Of(Text("COM12:19200,E,7,2"));
    EXPECT_EQ(whole.port + u'/' + whole.speed + u'/' + whole.stop, Text("12/19200/2"));
    EXPECT_EQ(whole.line, Text("19200,E,7,2"));
    EXPECT_EQ(BusSettings::Text(12, whole.line), Text("COM12:19200,E,7,2"));
    EXPECT_EQ(BusSettings::Line(whole.speed, whole.stop), Text("19200,N,8,2"));
    for (const char* part : {"", "CO", "COM", ":", ":,,"}) {
        const BusSettings none = BusSettings::Of(Text(part));
        EXPECT_EQ(none.port + none.speed + none.stop, QString()) << part;
    }
}
