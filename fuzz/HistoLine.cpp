#include "core/DateTimes.h"
#include "events/HistoryWords.h"
#include "events/TextProcs.h"
#include "fuzz/Targets.h"
#include "fuzz/support/Bench.h"
#include "fuzz/support/Input.h"

#include <cmath>

using Fuzz::Require;
namespace FileLine = TextProcs::FileLine;
namespace ScreenLine = TextProcs::ScreenLine;

namespace {

/// One of each order of a date's parts, until the end of the run.
class Dates {
public:
    explicit Dates(int choice)
        : other_((choice & 3) != 0) {
        if (other_)
            DateTimes::ReadLocale(Locale(choice & 3));
    }
    ~Dates() {
        if (other_)
            DateTimes::ReadLocale(QLocale::c());
    }
    Dates(const Dates&) = delete;
    Dates& operator=(const Dates&) = delete;

private:
    static const QLocale& Locale(int choice) {
        static const QLocale locales[] = {QLocale::c(), QLocale(QLocale::French, QLocale::France),
                                          QLocale(QLocale::English, QLocale::UnitedStates),
                                          QLocale(QLocale::German, QLocale::Germany)};
        return locales[choice];
    }

    bool other_;
};

void ReadDate(const QString& text) {
    const std::optional<DateTime> when = DateTimes::Parse(text);
    if (!when)
        return;
    Require(std::isfinite(*when), "a date is a number");
    const QString plain = text.simplified();
    if (plain.size() == 10)
        Require(DateTimes::ShortDate(*when) == plain, "a date is written as it was read");
    else if (plain.size() == 8)
        Require(DateTimes::LongTime(*when) == plain, "a time is written as it was read");
    else
        Require(DateTimes::DateAndTime(*when) == plain,
                "a date and a time are written as they were read");
}

} // namespace

int FuzzHistoLine(const uint8_t* data, size_t size) {
    Fuzz::Prepare();
    Input input(data, size);
    const int choice = input.Byte();
    const Dates dates(choice);
    const QByteArray bytes = input.Rest();
    // As the files hold it, or any characters.
    const QString line =
        (choice & 4) == 0
            ? platform::FromCodePage(bytes)
            : QString(reinterpret_cast<const QChar*>(bytes.constData()), bytes.size() / 2);
    const Record record(FileLine::Width, line);
    ReadDate(record.Get(FileLine::Date) + u' ' + record.Get(FileLine::Time));
    ReadDate(record.Get(FileLine::Date));
    ReadDate(record.Get(FileLine::Time));

    const QString screen = TextProcs::HistoFileLineToHistoScreenLine(line);
    Require(screen.size() == ScreenLine::Width, "a screen line has its width");
    const QString file = TextProcs::HistoScreenLineToHistoFileLine(screen);
    Require(file.size() == FileLine::Width, "a file line has its width");
    for (const Column& column :
         {FileLine::Date, FileLine::Time, FileLine::Number, FileLine::PanelClock, FileLine::Origin,
          FileLine::Parameter, FileLine::Display, FileLine::Common, FileLine::Specific})
        Require(Record(FileLine::Width, file).Get(column) == record.Get(column),
                "a field comes back from the screen");
    Require(TextProcs::HistoScreenLineToHistoFileLine(line).size() == FileLine::Width,
            "any text gives a file line");

    static const HistoryWords words = [] {
        HistoryWords base;
        base.ReadBase();
        return base;
    }();
    const HistoryWords::Meaning meaning = words.Of(bytes.constData(), bytes.size());
    Require(meaning.panel < 100 && meaning.channel <= Family::LastChannel,
            "an origin has a panel of two digits and a channel that there is");
    return 0;
}
