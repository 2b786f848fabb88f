#include "events/HistoryWords.h"

#include "core/Config.h"
#include "events/EventClass.h"
#include "events/TextProcs.h"
#include "platform/CodePage.h"

#include <algorithm>
#include <cstring>

namespace FileLine = TextProcs::FileLine;

namespace {

constexpr int ChangeOfState = 51000;

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

/// Two digits, or -1.
int Pair(const char* text) {
    return IsDigit(text[0]) && IsDigit(text[1]) ? (text[0] - '0') * 10 + text[1] - '0' : -1;
}

bool Begins(const char* text, const char* word) {
    return std::memcmp(text, word, std::strlen(word)) == 0;
}

} // namespace

HistoryWords::Field HistoryWords::FieldOf(const char* text, qsizetype length) {
    char bytes[sizeof(Field)];
    std::memset(bytes, ' ', sizeof bytes);
    std::memcpy(bytes, text, size_t(std::min<qsizetype>(length, sizeof bytes)));
    Field field;
    std::memcpy(field.data(), bytes, sizeof bytes);
    return field;
}

void HistoryWords::Add(Family family, EventKind kind, const QByteArray& word) {
    const Field field =
        FieldOf(word.constData(), std::min<qsizetype>(word.size(), FileLine::Display.width));
    if (!word.isEmpty() && KindOf(family, field) == EventKind::Unknown)
        words_.push_back({field, family, kind});
}

void HistoryWords::AddText(Family family, EventKind kind, int key, int part) {
    for (const QString& text : Config::GetTexts(key))
        Add(family, kind, platform::ToCodePage(text.section(u'|', part, part)));
}

void HistoryWords::ReadBase() {
    words_.clear();
    changes_.clear();
    AddText(Family::Channel, EventKind::Normal, 51010);
    AddText(Family::Channel, EventKind::Active, 51011, 0);
    AddText(Family::Channel, EventKind::Acknowledged, 51011, 1);
    AddText(Family::Channel, EventKind::CableFault, 51012);
    AddText(Family::Channel, EventKind::FirstFault, 51013);
    AddText(Family::Channel, EventKind::SecondFault, 51014);
    AddText(Family::PanelWide, EventKind::PanelAcknowledged, 51020);
    AddText(Family::PanelWide, EventKind::HornSilenced, 51021);
    AddText(Family::PanelWide, EventKind::LampsAcknowledged, 51022);
    AddText(Family::PanelWide, EventKind::Cleared, 51023);
    AddText(Family::PanelModel, EventKind::PanelPresent, 51031);
    AddText(Family::PanelModel, EventKind::PanelLost, 51032);
    AddText(Family::PanelModel, EventKind::MidnightState, 51047);
    for (const Family family : {Family::Channel, Family::PanelModel}) {
        AddText(family, EventKind::OutOfService, 51060);
        AddText(family, EventKind::BackInService, 51061);
    }
    AddText(Family::System, EventKind::AcknowledgedOnPc, 51039);
    AddText(Family::System, EventKind::OutOfServiceCount, 51062);
    Add(Family::System, EventKind::ApplicationStarted, "APPLIC");
    Add(Family::System, EventKind::CommStarted, "COMM");
    Add(Family::System, EventKind::UserChanged, "LOGIN");
    for (const QString& text : Config::GetTexts(ChangeOfState)) {
        const QByteArray word = platform::ToCodePage(text).left(FileLine::Parameter.width);
        changes_.push_back(FieldOf(word.constData(), word.size()));
    }
}

EventKind HistoryWords::KindOf(Family family, const Field& field) const {
    const auto found = std::find_if(words_.cbegin(), words_.cend(), [&](const Word& word) {
        return word.field == field && word.family == family;
    });
    return found == words_.cend() ? EventKind::Unknown : found->kind;
}

/// A mark, two digits of the panel, "-", then "ACK", a mark and two digits of the channel, or
/// letters of the model, whose digits no channel has.
HistoryWords::Family HistoryWords::ReadOrigin(const char* origin, Meaning& meaning) {
    const int panel = Pair(origin + 1);
    if (panel < 1 || origin[3] != '-')
        return Family::System;
    meaning.panel = quint8(panel);
    if (Begins(origin + 4, "ACK"))
        return Family::PanelWide;
    const int channel = Pair(origin + 5);
    if (IsDigit(origin[4]) || !::Family::IsChannel(qint16(channel)))
        return Family::PanelModel;
    meaning.channel = quint8(channel);
    return Family::Channel;
}

HistoryWords::Meaning HistoryWords::Of(const char* line, qsizetype length) const {
    char fields[FileLine::Common.start];
    if (length < qsizetype(sizeof fields)) {
        std::memset(fields, ' ', sizeof fields);
        std::memcpy(fields, line, size_t(length));
        line = fields;
    }
    Meaning meaning;
    const Family family = ReadOrigin(line + FileLine::Origin.start, meaning);
    meaning.kind = KindOf(family, FieldOf(line + FileLine::Display.start, FileLine::Display.width));
    const char* const parameter = line + FileLine::Parameter.start;
    const Field field = FieldOf(parameter, FileLine::Parameter.width);
    meaning.isChange = std::find(changes_.cbegin(), changes_.cend(), field) != changes_.cend();
    meaning.isSynchro = Begins(line + FileLine::PanelClock.start, "SYNCHRO");
    if (meaning.kind == EventKind::ApplicationStarted && Begins(parameter, "STOP"))
        meaning.kind = EventKind::ApplicationStopped;
    if (meaning.kind == EventKind::CommStarted && Begins(parameter, "STOP"))
        meaning.kind = EventKind::CommStopped;
    return meaning;
}
