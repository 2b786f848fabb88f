#include "simulator/Loop.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <limits>
#include <poll.h>
#include <system_error>
#include <unistd.h>

namespace Sim {

Loop::Loop(Bus& bus, PseudoTerminal& terminal, Timeline timeline, TimeSource now, int input,
           int stop, std::ostream& out)
    : bus_(bus)
    , terminal_(terminal)
    , timeline_(std::move(timeline))
    , now_(std::move(now))
    , input_(input)
    , stop_(stop)
    , out_(out) {}

void Loop::Run() {
    while (!quit_) {
        std::array<pollfd, 3> watched{{{terminal_.Handle(), POLLIN, 0},
                                       {stop_, POLLIN, 0},
                                       {input_, POLLIN, 0}}}; // a negative descriptor is skipped
        if (::poll(watched.data(), watched.size(), Timeout()) < 0 && errno != EINTR) {
            throw std::system_error(errno, std::generic_category(), "poll");
        }
        if (watched[1].revents != 0) {
            return;
        }
        if (watched[2].revents != 0) {
            ReceiveCommands();
        }
        RunTimeline();
        if (watched[0].revents != 0) {
            ReceiveFrames();
        }
        SendDue();
    }
}

// Milliseconds up to the next thing that has to be done, -1 for none.
int Loop::Timeout() const {
    auto next = timeline_.NextDue();
    for (const auto& reply : waiting_) {
        next = next ? std::min(*next, reply.due) : reply.due;
    }
    if (!next) {
        return -1;
    }
    const auto rest =
        std::clamp<std::int64_t>((*next - now_()).count(), 0, std::numeric_limits<int>::max());
    return static_cast<int>(rest);
}

void Loop::ReceiveFrames() {
    const auto now = now_();
    reader_.Feed(terminal_.Receive(), now);
    while (const auto request = reader_.Next()) {
        if (auto reply = bus_.Handle(*request)) {
            waiting_.push_back({now + reply->delay, std::move(reply->frame)});
        }
    }
}

void Loop::ReceiveCommands() {
    std::array<char, 1024> buffer{};
    const auto got = ::read(input_, buffer.data(), buffer.size());
    if (got <= 0) {
        if (got == 0 || (errno != EINTR && errno != EAGAIN)) {
            input_ = -1;
        }
        return;
    }
    line_.append(buffer.data(), static_cast<std::size_t>(got));
    for (auto end = line_.find('\n'); end != std::string::npos && !quit_; end = line_.find('\n')) {
        const auto line = line_.substr(0, end);
        line_.erase(0, end + 1);
        Obey(line);
    }
}

void Loop::Obey(const std::string& line) {
    if (line.find_first_not_of(" \t\r") == std::string::npos) {
        return;
    }
    try {
        const auto command = ParseCommand(line);
        CheckCommand(command, bus_);
        RunCommand(command, bus_, out_);
        quit_ = command.verb == Verb::Quit;
    } catch (const CommandError& error) {
        out_ << "error: " << error.what() << std::endl;
    }
}

void Loop::RunTimeline() {
    while (const auto command = timeline_.Take(now_())) {
        RunCommand(*command, bus_, out_);
        quit_ = quit_ || command->verb == Verb::Quit;
    }
}

// Replies leave in the order of their times; of two at the same time the first made goes first.
void Loop::SendDue() {
    const auto now = now_();
    const auto rest = std::stable_partition(waiting_.begin(), waiting_.end(),
                                            [now](const auto& reply) { return reply.due <= now; });
    std::stable_sort(waiting_.begin(), rest,
                     [](const auto& a, const auto& b) { return a.due < b.due; });
    std::for_each(waiting_.begin(), rest,
                  [this](const auto& reply) { terminal_.Send(reply.frame); });
    waiting_.erase(waiting_.begin(), rest);
}

} // namespace Sim
