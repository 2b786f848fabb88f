#pragma once

#include "simulator/Frame.h"

#include <filesystem>
#include <string>

namespace Sim {

/// A file descriptor that is closed with its owner.
class Descriptor {
public:
    explicit Descriptor(int fd = -1)
        : fd_(fd) {}
    ~Descriptor();
    Descriptor(Descriptor&& other) noexcept;
    Descriptor& operator=(Descriptor&& other) noexcept;

    int Get() const { return fd_; }

private:
    int fd_;
};

/// A pseudo-terminal in raw mode, reached under a link of a given name. Its own end of the far side
/// stays open, so that the near side survives a master that closes and opens again.
class PseudoTerminal {
public:
    /// Makes the terminal and the link. A link that is there already is replaced; anything else of
    /// that name throws, as does every failure of the system (`std::system_error`).
    explicit PseudoTerminal(std::filesystem::path link);
    /// Removes the link, unless it has come to point elsewhere.
    ~PseudoTerminal();
    PseudoTerminal(const PseudoTerminal&) = delete;
    PseudoTerminal& operator=(const PseudoTerminal&) = delete;

    /// The descriptor to wait on.
    int Handle() const { return master_.Get(); }

    /// What has been received, without waiting.
    Bytes Receive();

    /// Sends without waiting. What does not fit is lost, as on a line that nobody reads.
    void Send(const Bytes& bytes);

private:
    std::filesystem::path link_;
    Descriptor master_;
    Descriptor slave_;
    std::string name_;
};

} // namespace Sim
