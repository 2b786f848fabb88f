#pragma once

#include "simulator/Bus.h"
#include "simulator/PseudoTerminal.h"
#include "simulator/Timeline.h"

#include <ostream>
#include <vector>

namespace Sim {

/// The one loop of the program: the line, the console, the timeline and the replies that wait.
class Loop {
public:
    /// Commands are read from `input`, a line each; its end is no reason to stop. The loop ends as
    /// soon as `stop` is readable. What the console says goes to `out`.
    Loop(Bus& bus, PseudoTerminal& terminal, Timeline timeline, TimeSource now, int input, int stop,
         std::ostream& out);

    /// Runs until `quit`, or until `stop` is readable. Throws `std::system_error`.
    void Run();

private:
    struct Waiting {
        Milliseconds due{0};
        Bytes frame;
    };

    int Timeout() const;
    void ReceiveFrames();
    void ReceiveCommands();
    void Obey(const std::string& line);
    void RunTimeline();
    void SendDue();

    Bus& bus_;
    PseudoTerminal& terminal_;
    Timeline timeline_;
    TimeSource now_;
    int input_;
    int stop_;
    std::ostream& out_;
    FrameReader reader_;
    std::vector<Waiting> waiting_;
    std::string line_;
    bool quit_ = false;
};

} // namespace Sim
