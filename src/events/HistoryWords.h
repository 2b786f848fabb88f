#pragma once

#include <QByteArray>
#include <QtGlobal>
#include <array>
#include <vector>

/// What a history line tells.
enum class EventKind : quint8 {
    Unknown,
    // A channel.
    Normal,
    Active,
    Acknowledged,
    CableFault,
    FirstFault,
    SecondFault,
    // A panel as a whole.
    PanelAcknowledged,
    HornSilenced,
    LampsAcknowledged,
    Cleared,
    PanelPresent,
    PanelLost,
    MidnightState,
    // A panel or a channel.
    OutOfService,
    BackInService,
    // The system.
    AcknowledgedOnPc,
    ApplicationStarted,
    ApplicationStopped,
    UserChanged,
    CommStarted,
    CommStopped,
    OutOfServiceCount,
};

/// What the words of a history line mean, in whichever language of the base it was written.
class HistoryWords {
public:
    /// Panel, channel and kind, and of what the line is a step.
    struct Meaning {
        quint8 panel = 0;
        quint8 channel = 0;
        EventKind kind = EventKind::Unknown;
        bool isChange = false;
        bool isSynchro = false;
    };

    /// Takes the words of all languages of the base, in which none has two meanings for lines of
    /// the same origin.
    void ReadBase();
    /// The meaning of a line of Windows-1252; what is missing at its end counts as blank.
    Meaning Of(const char* line, qsizetype length) const;

private:
    enum class Family : quint8 { Channel, PanelWide, PanelModel, System };
    /// A field of up to 16 columns, filled with blanks, in a form that is compared at once.
    using Field = std::array<quint64, 2>;
    struct Word {
        Field field;
        Family family;
        EventKind kind;
    };

    static Field FieldOf(const char* text, qsizetype length);
    static Family ReadOrigin(const char* origin, Meaning& meaning);
    void Add(Family family, EventKind kind, const QByteArray& word);
    void AddText(Family family, EventKind kind, int key, int part = 0);
    EventKind KindOf(Family family, const Field& field) const;

    std::vector<Word> words_;
    std::vector<Field> changes_;
};
