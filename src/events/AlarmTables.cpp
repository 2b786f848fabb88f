#include "events/AlarmTables.h"

#include "core/Config.h"
#include "core/DateTimes.h"
#include "core/Global.h"
#include "events/TextProcs.h"
#include "platform/CodePage.h"

#include <algorithm>
#include <span>

namespace FileLine = TextProcs::FileLine;
using Unit = AlarmPeriod::Unit;

namespace {

constexpr qint64 Minute = 60;
constexpr double HoursADay = 24;
constexpr double DaySeconds = 86400;
constexpr int Median = 50;
constexpr int Most = 95;

enum Texts {
    TitleText = 715002,
    WeekText = 715015,
    ByTimeText = 715020,
    ByHourText = 715021,
    BadActorsText = 715022,
    NuisanceText = 715023,
    StaleText = 715024,
    FloodsText = 715025,
    AlarmsText = 715030,
    AlarmsADayText = 715031,
    BusiestDayText = 715032,
    BusiestHourText = 715033,
    DaysAboveText = 715034,
    MostInTenText = 715035,
    MedianText = 715036,
    NinetyFiveText = 715037,
    UnacknowledgedText = 715038,
    ChannelsThatChatterText = 715039,
    FleetingAlarmsText = 715040,
    UnreadText = 715041,
    UnreadFilesText = 715042,
    LimitsText = 715050,
    AtMostText = 715051,
    OriginText = 715060,
    ShareText = 715061,
    WordsText = 715062,
    ChatteringText = 715063,
    SpellsText = 715064,
    FleetingText = 715065,
    CameText = 715066,
    WentText = 715067,
    StoodText = 715068,
    BeginText = 715069,
    EndText = 715070,
    MostHeadText = 715071,
    StandsText = 715072,
    TimeText = 715073,
    FigureText = 715074,
    ValueText = 715075,
    LimitText = 715076
};

QString Filled(int text, const QStringList& values) {
    QString words = GetText(text);
    for (const QString& value : values)
        if (const qsizetype mark = words.indexOf(u'$'); mark >= 0)
            words.replace(mark, 1, value);
    return words;
}

/// The words of a button, on one line.
QString Heading(int text) {
    return GetText(text, true).replace(u'|', u' ');
}

QString DateOf(qint64 seconds) {
    return DateTimes::ShortDate(DateTimes::FromDate(AlarmPeriod::TimeOf(seconds).date()));
}

QString TimeOf(qint64 seconds) {
    const QDateTime time = AlarmPeriod::TimeOf(seconds);
    return DateTimes::DateAndTime(DateTimes::FromDate(time.date(), time.time()));
}

QString HourOf(qint64 seconds) {
    return AlarmPeriod::TimeOf(seconds).toString(QStringLiteral("HH:mm"));
}

/// Without a separator of thousands, which spreadsheets and readers of another language mistake.
QString Number(double value) {
    QLocale language = AlarmTables::Language();
    language.setNumberOptions(QLocale::OmitGroupSeparator);
    return language.toString(value, 'f', 1);
}

/// The columns of a line of history.
class LineText {
public:
    LineText(const HistoryRecords& records, const HistoryRecord& record)
        : record_(FileLine::Width, platform::FromCodePage(records.Line(record))) {}

    QString Origin() const { return record_.Get(FileLine::Origin).trimmed(); }
    /// Library text and the channel's own.
    QString Words() const {
        return (record_.Get(FileLine::Common) + u' ' + record_.Get(FileLine::Specific))
            .simplified();
    }

private:
    Record record_;
};

/// Those that are listed in a table; the table notes how many more there are.
template <class Item>
std::span<const Item> Listed(const std::vector<Item>& items, ReportTable& table) {
    const size_t listed = std::min(items.size(), AlarmTables::MostRows);
    table.more = qsizetype(items.size() - listed);
    return std::span(items).first(listed);
}

QString PartName(Unit unit, qint64 begin) {
    const QDateTime time = AlarmPeriod::TimeOf(begin);
    switch (unit) {
    case Unit::Hour:
        return HourOf(begin);
    case Unit::Day:
        return QString::number(time.time().hour());
    case Unit::Week:
        return AlarmTables::Language().standaloneDayName(time.date().dayOfWeek(),
                                                         QLocale::ShortFormat) +
               u' ' + QString::number(time.date().day());
    case Unit::Month:
        return QString::number(time.date().day());
    case Unit::Year:
        break;
    }
    return AlarmTables::Language().standaloneMonthName(time.date().month(), QLocale::ShortFormat);
}

} // namespace

AlarmTables::AlarmTables(const AlarmReport& report, const HistoryRecords& records)
    : period_(NameOf(report.Period())) {
    ReadFigures(report, records);
    ReadBars(report);
    ReadSources(report, records);
    ReadStale(report, records);
    ReadFloods(report);
}

QString AlarmTables::Title() {
    return GetText(TitleText);
}

QLocale AlarmTables::Language() {
    return QLocale(GetLanguage(Global::Get().language).left(2).toLower());
}

QString AlarmTables::NameOf(const AlarmPeriod& period) {
    const QDate first = AlarmPeriod::TimeOf(period.Begin()).date();
    QString year = QString::number(first.year());
    switch (period.Kind()) {
    case Unit::Hour:
        return DateOf(period.Begin()) + QStringLiteral("  ") + HourOf(period.Begin()) +
               QStringLiteral(" - ") + HourOf(period.End());
    case Unit::Day:
        return Language().standaloneDayName(first.dayOfWeek()) + u' ' + DateOf(period.Begin());
    case Unit::Week:
        return Filled(WeekText, {QString::number(first.weekNumber()), DateOf(period.Begin())});
    case Unit::Month:
        return Language().standaloneMonthName(first.month()) + u' ' + year;
    case Unit::Year:
        break;
    }
    return year;
}

QString AlarmTables::Duration(qint64 seconds) {
    return QStringLiteral("%1:%2:%3")
        .arg(seconds / AlarmPeriod::HourSeconds)
        .arg(seconds / Minute % Minute, 2, 10, QChar(u'0'))
        .arg(seconds % Minute, 2, 10, QChar(u'0'));
}

QList<ReportFigure> AlarmTables::Unread(const HistoryRecords& records) {
    QList<ReportFigure> figures;
    if (records.Unread() > 0)
        figures += {GetText(UnreadText), QString::number(records.Unread())};
    if (records.UnreadFiles() > 0)
        figures += {GetText(UnreadFilesText), QString::number(records.UnreadFiles())};
    return figures;
}

void AlarmTables::ReadFigures(const AlarmReport& report, const HistoryRecords& records) {
    const QString acceptable = QString::number(AlarmLimits::AcceptableADay);
    const QString most = QString::number(AlarmLimits::MostADay);
    const auto named = [this](const QString& name, const QString& value) {
        figures_ += {name, value};
    };
    const auto figure = [&named](int text, const QString& value) { named(GetText(text), value); };
    const auto limited = [this](int text, const QString& value, const QString& limit,
                                bool isExceeded) {
        figures_ += {GetText(text), value, limit, isExceeded};
    };
    figure(AlarmsText, QString::number(report.Alarms()));
    if (report.Period().Kind() != Unit::Hour)
        limited(AlarmsADayText, Number(report.AlarmsADay()), Filled(LimitsText, {acceptable, most}),
                report.AlarmsADay() > AlarmLimits::AcceptableADay);
    if (report.Period().Kind() > Unit::Day) {
        const auto [alarms, day] = report.BusiestDay();
        limited(BusiestDayText, QStringLiteral("%1 (%2)").arg(alarms).arg(DateOf(day)),
                Filled(AtMostText, {most}), alarms > AlarmLimits::MostADay);
        figures_ += {Filled(DaysAboveText, {acceptable, most}),
                     QStringLiteral("%1 / %2")
                         .arg(report.DaysAbove(AlarmLimits::AcceptableADay))
                         .arg(report.DaysAbove(AlarmLimits::MostADay))};
    }
    if (report.Period().Kind() == Unit::Day) {
        const auto busiest = std::max_element(report.ByHour().cbegin(), report.ByHour().cend());
        figure(BusiestHourText, QStringLiteral("%1 (%2:00)")
                                    .arg(*busiest)
                                    .arg(busiest - report.ByHour().cbegin(), 2, 10, QChar(u'0')));
    }
    limited(MostInTenText, QString::number(report.MostInTenMinutes()),
            Filled(AtMostText, {QString::number(AlarmLimits::MostInTenMinutes)}),
            report.MostInTenMinutes() > AlarmLimits::MostInTenMinutes);
    named(Heading(FloodsText), report.Floods().empty() ? QStringLiteral("0")
                                                       : QStringLiteral("%1 (%2)")
                                                             .arg(report.Floods().size())
                                                             .arg(Duration(report.FloodTime())));
    const auto within = [&report](int percent) {
        const qint64 seconds = report.AcknowledgedWithin(percent);
        return seconds < 0 ? QStringLiteral("-") : Duration(seconds);
    };
    figure(MedianText, within(Median));
    figure(NinetyFiveText, within(Most));
    figure(UnacknowledgedText, QString::number(report.Unacknowledged()));
    int chattering = 0;
    int fleeting = 0;
    for (const AlarmReport::Source& source : report.Sources()) {
        chattering += source.chatters > 0 ? 1 : 0;
        fleeting += source.fleeting;
    }
    figure(ChannelsThatChatterText, QString::number(chattering));
    figure(FleetingAlarmsText, QString::number(fleeting));
    named(Heading(StaleText), QString::number(report.StaleAlarms().size()));
    figures_ += Unread(records);
}

void AlarmTables::ReadBars(const AlarmReport& report) {
    const std::vector<qint64> parts = report.Period().Parts();
    const Unit unit = report.Period().Kind();
    for (size_t part = 0; part + 1 < parts.size(); ++part) {
        const double days = double(parts[part + 1] - parts[part]) / DaySeconds;
        byPart_.names += PartName(unit, parts[part]);
        byPart_.alarms += report.ByPart()[part];
        byPart_.acceptable +=
            unit == Unit::Hour ? AlarmLimits::MostInTenMinutes : days * AlarmLimits::AcceptableADay;
        byPart_.most +=
            unit == Unit::Hour ? AlarmLimits::MostInTenMinutes : days * AlarmLimits::MostADay;
    }
    const double days = std::max(1.0, report.Days());
    for (int hour = 0; hour < int(HoursADay); ++hour) {
        byHour_.names += QString::number(hour);
        byHour_.alarms += report.ByHour()[size_t(hour)];
        byHour_.acceptable += days * AlarmLimits::AcceptableADay / HoursADay;
        byHour_.most += days * AlarmLimits::MostADay / HoursADay;
    }
}

void AlarmTables::ReadSources(const AlarmReport& report, const HistoryRecords& records) {
    badActors_.title = Heading(BadActorsText);
    badActors_.columns = {{GetText(OriginText), 14, false},
                          {GetText(AlarmsText), 13, true},
                          {GetText(ShareText), 11, true},
                          {GetText(WordsText), 62, false}};
    nuisance_.title = Heading(NuisanceText);
    nuisance_.columns = {{GetText(OriginText), 12, false},    {GetText(AlarmsText), 12, true},
                         {GetText(ChatteringText), 15, true}, {GetText(SpellsText), 13, true},
                         {GetText(FleetingText), 13, true},   {GetText(WordsText), 35, false}};
    for (const AlarmReport::Source& source : report.Sources()) {
        const bool isNuisance = source.chatters > 0 || source.fleeting > 0;
        const bool isBad = badActors_.rows.size() < AlarmLimits::BadActors;
        if (!isNuisance && !isBad)
            continue;
        const LineText line(records, source.last);
        const QString alarms = QString::number(source.alarms);
        if (isBad)
            badActors_.rows += {line.Origin(), alarms,
                                Number(100.0 * source.alarms / report.Alarms()), line.Words()};
        if (isNuisance)
            nuisance_.rows += {line.Origin(),
                               alarms,
                               QString::number(source.chatterAlarms),
                               QString::number(source.chatters),
                               QString::number(source.fleeting),
                               line.Words()};
    }
    std::stable_sort(nuisance_.rows.begin(), nuisance_.rows.end(),
                     [](const QStringList& a, const QStringList& b) {
                         return a[2].toInt() + a[4].toInt() > b[2].toInt() + b[4].toInt();
                     });
}

void AlarmTables::ReadStale(const AlarmReport& report, const HistoryRecords& records) {
    stale_.title = Heading(StaleText);
    stale_.columns = {{GetText(OriginText), 12, false},
                      {GetText(CameText), 23, false},
                      {GetText(WentText), 26, false},
                      {GetText(StoodText), 15, true},
                      {GetText(WordsText), 24, false}};
    for (const AlarmReport::Stay& stay : Listed(report.StaleAlarms(), stale_)) {
        const LineText line(records, stay.coming);
        const bool isKnown = !stay.stands || report.IsKnownToNow();
        const QString least = isKnown ? QString() : QStringLiteral("> ");
        stale_.rows += {line.Origin(), TimeOf(stay.coming.time),
                        stay.stands && isKnown ? GetText(StandsText) : least + TimeOf(stay.went),
                        least + Duration(stay.went - stay.coming.time), line.Words()};
    }
}

void AlarmTables::ReadFloods(const AlarmReport& report) {
    floods_.title = Heading(FloodsText);
    floods_.columns = {{GetText(BeginText), 28, false},
                       {GetText(EndText), 28, false},
                       {GetText(StoodText), 14, true},
                       {GetText(AlarmsText), 12, true},
                       {GetText(MostHeadText), 18, true}};
    for (const AlarmFloods::Flood& flood : Listed(report.Floods(), floods_))
        floods_.rows += {TimeOf(flood.begin), TimeOf(flood.end), Duration(flood.end - flood.begin),
                         QString::number(flood.alarms), QString::number(flood.most)};
}

ReportTable AlarmTables::TableOf(const ReportBars& bars, const QString& heading) const {
    ReportTable table{
        heading, {{GetText(TimeText), 30, false}, {GetText(AlarmsText), 20, true}}, {}};
    for (int i = 0; i < bars.names.size(); ++i)
        table.rows += {bars.names[i], QString::number(bars.alarms[i])};
    return table;
}

QList<ReportTable> AlarmTables::All() const {
    ReportTable figures{Title() + QStringLiteral(" - ") + period_,
                        {{GetText(FigureText), 45, false},
                         {GetText(ValueText), 25, true},
                         {GetText(LimitText), 30, false}},
                        {}};
    for (const ReportFigure& figure : figures_)
        figures.rows += {figure.name, figure.value, figure.limit};
    return {figures,
            TableOf(byPart_, Heading(ByTimeText)),
            TableOf(byHour_, Heading(ByHourText)),
            badActors_,
            nuisance_,
            stale_,
            floods_};
}
