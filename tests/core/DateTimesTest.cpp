#include "core/DateTimes.h"

#include "support/PrintText.h"

#include <ctime>
#include <gtest/gtest.h>

namespace {

class Dates : public ::testing::Test {
protected:
    ~Dates() override { DateTimes::ReadLocale(QLocale::system()); }
    static void Use(const char* name) { DateTimes::ReadLocale(QLocale(Text(name))); }
};

TEST_F(Dates, ShortDateHasTenColumnsInEveryLocale) {
    using Case = std::pair<const char*, const char*>;
    for (const auto& [locale, text] :
         {Case{"C", "2024-03-05"}, Case{"fr_FR", "05/03/2024"}, Case{"de_DE", "05.03.2024"},
          Case{"en_US", "03/05/2024"}, Case{"ja_JP", "2024/03/05"}, Case{"nl_NL", "05-03-2024"}}) {
        Use(locale);
        EXPECT_EQ(DateTimes::ShortDate(DateTimes::FromDate(QDate(2024, 3, 5))), Text(text))
            << locale;
    }
}

TEST_F(Dates, WhatIsWrittenIsReadBack) {
    for (const char* locale : {"C", "fr_FR", "de_DE", "en_US", "ja_JP", "ar_EG", "hu_HU", "bg_BG",
                               "sr_RS", "th_TH", "zh_CN"}) {
        Use(locale);
        for (const DateTime when : {45366.0, 45366.5, 45292 + 86399.0 / 86400, 36526.25, 1.0}) {
            const QString text = DateTimes::DateAndTime(when);
            EXPECT_EQ(text.size(), 19) << locale;
            const auto parsed = DateTimes::Parse(text);
            ASSERT_TRUE(parsed) << locale << ' ' << text.toStdString();
            EXPECT_NEAR(*parsed, when, 1e-9) << locale;
            EXPECT_EQ(DateTimes::Parse(DateTimes::ShortDate(when)), std::floor(when)) << locale;
            EXPECT_NEAR(DateTimes::Parse(DateTimes::LongTime(when)).value_or(-1),
                        when - std::floor(when), 1e-9);
        }
    }
}

// An end may be reckoned into the hour that the change to summer time leaves out.
TEST_F(Dates, AKeptTimeIsReadBackInAnyZone) {
    const QByteArray zone = qgetenv("TZ");
    qputenv("TZ", "Europe/Paris");
    tzset();
    for (const QDate& date : {QDate(2026, 3, 29), QDate(2026, 10, 25), QDate(1999, 12, 31)}) {
        const DateTime when = DateTimes::FromDate(date, QTime(2, 30, 9));
        const QString text = DateTimes::KeptTime(when);
        EXPECT_EQ(text, date.toString(Qt::ISODate) + Text(" 02:30:09"));
        EXPECT_EQ(DateTimes::FromKept(text), when);
    }
    for (const char* text : {"", "2026-02-30 02:30:00", "2026-03-29", "29.03.2026 02:30:00"})
        EXPECT_FALSE(DateTimes::FromKept(Text(text))) << text;
    if (zone.isNull())
        qunsetenv("TZ");
    else
        qputenv("TZ", zone);
    tzset();
}

// Lines written before the locale was changed must not turn into other dates.
TEST_F(Dates, TextsOfAnotherLocaleAreNoDates) {
    const auto isDate = [](const char* text) { return DateTimes::Parse(Text(text)).has_value(); };
    Use("fr_FR");
    EXPECT_TRUE(isDate("15/03/2024 12:00:00"));
    for (const char* text :
         {"03/15/2024", "15.03.2024", "2024-03-15", "2024/03/15", "30/02/2024", "15/03/24",
          "5/3/2024", "15/03/2024 24:00:00", "15/03/2024 12:00", "12:00:00 15/03/2024",
          "15/03/2024 15/03/2024", "15/03/2024 12:00:00 x", "", "   ", "aa/bb/cccc", "12:60:00"})
        EXPECT_FALSE(isDate(text)) << text;
    Use("de_DE");
    EXPECT_TRUE(isDate("15.03.2024"));
    EXPECT_FALSE(isDate("15/03/2024"));
    Use("C");
    EXPECT_FALSE(isDate("15.03.2024"));
}

TEST_F(Dates, DayNumbers) {
    EXPECT_EQ(DateTimes::FromDate(QDate(1899, 12, 30)), 0);
    EXPECT_EQ(DateTimes::FromDate(QDate(2000, 1, 1), QTime(6, 0)), 36526.25);
    EXPECT_EQ(DateTimes::DateOf(-0.25), QDate(1899, 12, 29));
    EXPECT_EQ(DateTimes::TimeOf(-0.25), QTime(18, 0));
    EXPECT_EQ(DateTimes::FileDate(36526.25), Text("20000101"));
    EXPECT_EQ(DateTimes::FileMonth(36526.25), Text("200001"));
    // Seconds are added as fractions of a day; the sum must not fall short of the second.
    const DateTime start = DateTimes::FromDate(QDate(2024, 3, 15));
    for (int second = 0; second < 86400; ++second)
        ASSERT_EQ(DateTimes::TimeOf(start + second * platform::OneSecond),
                  QTime(0, 0).addSecs(second));
}

} // namespace
