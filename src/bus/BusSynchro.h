#pragma once

#include "bus/BusProgress.h"
#include "bus/CommFunctions.h"

#include <array>
#include <functional>

class BusEngine;
class CommandQueue;
class PanelClass;

/// What looks at the whole bus at once: the general synchronisation, the slow update of one panel
/// after the other, and the day's record at midnight.
class BusSynchro {
public:
    static constexpr int PanelCount = 64;

    BusSynchro(BusEngine& engine, platform::SerialLink& link, CommandQueue& queue)
        : engine_(engine)
        , link_(link)
        , queue_(queue) {}

    /// How far the work is, ahead of each panel.
    std::function<void(const BusStep& step)> onStep;

    /// Throws forced states and event memories away and makes the list of alarms anew of what the
    /// channels show. Stops when the program is to end.
    void Agree();
    /// Reads a panel and tells of what differs from what is known of it.
    void UpdatePanel(int address, bool force);
    /// The same for all panels.
    void LectureGeneraleBus();
    /// Starts the slow update, and takes its next panel: true when it has gone through all.
    void StartUpdate() { updatePointer_ = 1; }
    bool ContinueUpdate();
    /// The day's record of each panel, and the release of mirrored states that nothing holds.
    void MidnightSynchro();

private:
    /// One word for each channel, 1 to 24.
    using ChannelWords = std::array<qint16, 25>;
    using QualifierTable = std::array<ChannelWords, PanelCount + 1>;

    void Walk(int pass, int passes, const std::function<void(int address)>& work);
    int AskModuleType(int address);
    void MeetPanel(int address, ChannelWords& qualifiers);
    void RecordDay(int address);
    void ResetModule(int address);
    static void EmptyConsole();
    void ReportStanding(int address, const ChannelWords& qualifiers);
    bool ReadStubbornly(int address, qint32 registerNo, Words& words);
    void SetPresence(int address, bool present);
    void ReportChange(PanelClass& panel, int number, qint16 qualifier, qint16 state);
    void ReleaseStale(int address, int number);
    static void HistoBusState();
    static void PrintBusState();

    BusEngine& engine_;
    platform::SerialLink& link_;
    CommandQueue& queue_;
    qint16 updatePointer_ = 0;
};
