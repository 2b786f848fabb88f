#pragma once

#include "events/AlarmReport.h"

#include <QList>
#include <QLocale>
#include <QString>
#include <QStringList>

/// A list of the alarm report in the words of the language in use.
struct ReportTable {
    struct Column {
        QString title;
        /// Of the width, among the shares of all.
        int share;
        bool isNumber;
    };
    QString title;
    QList<Column> columns;
    QList<QStringList> rows;
    /// Rows that were left out at the end.
    qsizetype more = 0;
};

/// One figure of the report beside the limit that it should keep.
struct ReportFigure {
    QString name;
    QString value;
    QString limit = {}; ///< empty for a figure that has none
    bool isExceeded = false;
};

/// The bars of a report: alarms, the words below them, and what is acceptable and the most of each.
struct ReportBars {
    QStringList names;
    QList<int> alarms;
    QList<double> acceptable;
    QList<double> most;
};

/// What a report tells, in words and numbers of the language in use.
class AlarmTables {
public:
    /// Rows of a list of alarms or floods: what all of them hold is read and shown in one go.
    static constexpr size_t MostRows = 1000;

    /// The lines behind the report tell the texts of its channels. Both are read at once.
    AlarmTables(const AlarmReport& report, const HistoryRecords& records);

    static QString Title();
    /// A period's name, such as "March 2024".
    static QString NameOf(const AlarmPeriod& period);
    /// Hours, minutes and seconds.
    static QString Duration(qint64 seconds);
    static QLocale Language();
    /// What couldn't be read of the files; nothing as a rule.
    static QList<ReportFigure> Unread(const HistoryRecords& records);

    const QString& Period() const { return period_; }
    const QList<ReportFigure>& Figures() const { return figures_; }
    const ReportBars& ByPart() const { return byPart_; }
    const ReportBars& ByHour() const { return byHour_; }
    const ReportTable& BadActors() const { return badActors_; }
    const ReportTable& Nuisance() const { return nuisance_; }
    const ReportTable& Stale() const { return stale_; }
    const ReportTable& Floods() const { return floods_; }

    /// Places of the tables in All.
    enum Order { FigureTable, PartTable, HourTable };
    /// Everything as tables, in the order in which it is read.
    QList<ReportTable> All() const;

private:
    void ReadFigures(const AlarmReport& report, const HistoryRecords& records);
    void ReadBars(const AlarmReport& report);
    void ReadSources(const AlarmReport& report, const HistoryRecords& records);
    void ReadStale(const AlarmReport& report, const HistoryRecords& records);
    void ReadFloods(const AlarmReport& report);
    ReportTable TableOf(const ReportBars& bars, const QString& heading) const;

    QString period_;
    QList<ReportFigure> figures_;
    ReportBars byPart_;
    ReportBars byHour_;
    ReportTable badActors_;
    ReportTable nuisance_;
    ReportTable stale_;
    ReportTable floods_;
};
