#include "events/HistorySearch.h"

#include "events/TextProcs.h"
#include "platform/Clock.h"
#include "platform/CodePage.h"

#include <QFileInfo>
#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace FileLine = TextProcs::FileLine;

namespace {

/// The kinds whose lines always hold the name of a user, and those that do where one was logged in.
const EventKinds WithUser{EventKind::UserChanged, EventKind::AcknowledgedOnPc};
const EventKinds OftenWithUser{EventKind::OutOfService, EventKind::BackInService};

/// Records between two looks at the clock; those whose lines are read take a microsecond each.
constexpr size_t Portion = 2048;

/// The small letter of every letter of the code page.
std::array<char, 256> SmallLetters() {
    std::array<char, 256> letters{};
    for (size_t code = 0; code < letters.size(); ++code) {
        const QByteArray byte(1, char(code));
        const QByteArray small = platform::ToCodePage(platform::FromCodePage(byte).toLower());
        letters[code] = small.size() == 1 && small != "?" ? small[0] : byte[0];
    }
    return letters;
}

void MakeSmall(QByteArrayView text, QByteArray& small) {
    static const std::array<char, 256> letters = SmallLetters();
    small.resize(text.size());
    std::transform(text.begin(), text.end(), small.begin(),
                   [](char letter) { return letters[quint8(letter)]; });
}

std::string_view View(const QByteArray& text) {
    return {text.constData(), size_t(text.size())};
}

QByteArrayView UserOf(QByteArrayView line) {
    return line.size() <= FileLine::Common.start
               ? QByteArrayView()
               : line.sliced(FileLine::Common.start)
                     .first(qMin<qsizetype>(FileLine::Common.width,
                                            line.size() - FileLine::Common.start))
                     .trimmed();
}

} // namespace

HistorySearch::HistorySearch() = default;

qint64 HistorySearch::SizeOfFiles() const {
    qint64 size = 0;
    for (const HistoryRecords::File& file : HistoryRecords::Files()) {
        if (file.last >= filter_.from && file.first <= filter_.to.addDays(1))
            size += QFileInfo(file.path).size();
    }
    return size;
}

void HistorySearch::Begin(const HistoryFilter& filter) {
    const bool samePeriod = isRead_ && filter.SamePeriod(filter_);
    filter_ = filter;
    found_.clear();
    const qint64 size = SizeOfFiles();
    if (samePeriod && size == sizeRead_) {
        BeginMatching();
        return;
    }
    isRead_ = false;
    sizeRead_ = size;
    users_.clear();
    records_.Begin(filter.from, filter.to);
    stage_ = Stage::Reading;
}

void HistorySearch::Return(const HistoryFilter& filter, std::vector<quint32> found) {
    if (!isRead_ || !filter.SamePeriod(filter_)) {
        Begin(filter);
        return;
    }
    filter_ = filter;
    found_ = std::move(found);
    stage_ = Stage::Done;
}

void HistorySearch::BeginMatching() {
    words_.clear();
    for (const QString& word : filter_.words.simplified().split(u' ', Qt::SkipEmptyParts)) {
        words_.emplace_back();
        MakeSmall(platform::ToCodePage(word), words_.last());
    }
    user_ = platform::ToCodePage(filter_.user).left(FileLine::Common.width).trimmed();
    lines_.Forget();
    at_ = 0;
    stage_ = Stage::Matching;
}

bool HistorySearch::Step(int budget) {
    const platform::Clock& clock = platform::Clock::Current();
    const qint64 end = clock.MonotonicMs() + budget;
    if (stage_ == Stage::Reading && records_.Step(budget)) {
        isRead_ = true;
        BeginMatching();
    }
    while (stage_ == Stage::Matching && clock.MonotonicMs() < end)
        Match();
    return Done();
}

void HistorySearch::Match() {
    const std::vector<HistoryRecord>& all = records_.Records();
    const size_t end = std::min(all.size(), at_ + Portion);
    for (; at_ < end; ++at_) {
        if (Takes(all[at_]))
            found_.push_back(quint32(at_));
    }
    if (at_ == all.size())
        stage_ = Stage::Done;
}

void HistorySearch::Cancel() {
    if (stage_ == Stage::Reading) {
        records_.Cancel();
        BeginMatching();
    } else {
        stage_ = Stage::Done;
    }
}

double HistorySearch::Progress() const {
    if (stage_ == Stage::Reading)
        return records_.Progress();
    const size_t all = records_.Records().size();
    return stage_ == Stage::Done || all == 0 ? 1 : double(at_) / double(all);
}

int HistorySearch::RowOf(qint64 record) const {
    const auto place = std::lower_bound(found_.cbegin(), found_.cend(), record);
    return place != found_.cend() && *place == record ? int(place - found_.cbegin()) : -1;
}

/// What costs no look into the file comes first.
bool HistorySearch::Takes(const HistoryRecord& record) {
    const bool holdsUser = WithUser.Has(record.kind);
    if (holdsUser)
        NoteUser(UserOf(lines_.Of(record)));
    if ((filter_.panel != 0 && record.panel != filter_.panel) ||
        (filter_.channel != 0 && record.channel != filter_.channel) ||
        (!filter_.kinds.IsEmpty() && !filter_.kinds.Has(record.kind)) ||
        (!user_.isEmpty() && !holdsUser && !OftenWithUser.Has(record.kind)))
        return false;
    if (words_.isEmpty() && user_.isEmpty())
        return true;
    const QByteArrayView line = lines_.Of(record);
    return (user_.isEmpty() || UserOf(line) == user_) && HoldsWords(line);
}

bool HistorySearch::HoldsWords(QByteArrayView line) {
    if (words_.isEmpty())
        return true;
    MakeSmall(line, lower_);
    return std::all_of(words_.cbegin(), words_.cend(), [this](const QByteArray& word) {
        return View(lower_).find(View(word)) != std::string_view::npos;
    });
}

void HistorySearch::NoteUser(QByteArrayView name) {
    const auto place = std::lower_bound(users_.begin(), users_.end(), name);
    if (!name.isEmpty() && (place == users_.end() || *place != name))
        users_.insert(place, name.toByteArray());
}

QStringList HistorySearch::Users() const {
    QStringList names;
    for (const QByteArray& name : users_)
        names += platform::FromCodePage(name);
    names.sort(Qt::CaseInsensitive);
    return names;
}
