#include "simulator/PseudoTerminal.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <system_error>
#include <termios.h>
#include <unistd.h>
#include <utility>

namespace Sim {

namespace fs = std::filesystem;

namespace {

int Checked(int result, const char* what) {
    if (result < 0) {
        throw std::system_error(errno, std::generic_category(), what);
    }
    return result;
}

Descriptor OpenMaster() {
    Descriptor master(
        Checked(::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC), "posix_openpt"));
    Checked(::grantpt(master.Get()), "grantpt");
    Checked(::unlockpt(master.Get()), "unlockpt");
    return master;
}

std::string SlaveName(const Descriptor& master) {
    std::array<char, 128> name{};
    const int error = ::ptsname_r(master.Get(), name.data(), name.size());
    if (error != 0) {
        throw std::system_error(error, std::generic_category(), "ptsname");
    }
    return name.data();
}

void MakeRaw(const Descriptor& slave) {
    termios settings{};
    Checked(::tcgetattr(slave.Get(), &settings), "tcgetattr");
    ::cfmakeraw(&settings);
    Checked(::tcsetattr(slave.Get(), TCSANOW, &settings), "tcsetattr");
}

void MakeLink(const fs::path& link, const std::string& target) {
    const auto status = fs::symlink_status(link);
    if (fs::is_symlink(status)) {
        fs::remove(link);
    } else if (fs::exists(status)) {
        throw std::system_error(EEXIST, std::generic_category(), link.string());
    }
    fs::create_symlink(target, link);
}

} // namespace

Descriptor::~Descriptor() {
    if (fd_ >= 0) {
        ::close(fd_);
    }
}

Descriptor::Descriptor(Descriptor&& other) noexcept
    : fd_(std::exchange(other.fd_, -1)) {}

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept {
    std::swap(fd_, other.fd_);
    return *this;
}

PseudoTerminal::PseudoTerminal(fs::path link)
    : link_(std::move(link))
    , master_(OpenMaster())
    , name_(SlaveName(master_)) {
    slave_ = Descriptor(Checked(::open(name_.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC), "open"));
    MakeRaw(slave_);
    MakeLink(link_, name_);
}

PseudoTerminal::~PseudoTerminal() {
    std::error_code error;
    if (fs::read_symlink(link_, error) == name_) {
        fs::remove(link_, error);
    }
}

Bytes PseudoTerminal::Receive() {
    // A master that died while it held the terminal for itself would lock out its successor, since
    // the terminal lives on.
    ::ioctl(slave_.Get(), TIOCNXCL);
    Bytes bytes(512);
    const auto got = ::read(master_.Get(), bytes.data(), bytes.size());
    bytes.resize(got > 0 ? static_cast<std::size_t>(got) : 0);
    return bytes;
}

void PseudoTerminal::Send(const Bytes& bytes) {
    [[maybe_unused]] const auto sent = ::write(master_.Get(), bytes.data(), bytes.size());
}

} // namespace Sim
