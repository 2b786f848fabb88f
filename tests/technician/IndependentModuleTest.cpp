// The far end is a Modbus slave that knows nothing of this program.

#include "bus/CommFunctions.h"
#include "platform/SerialLink.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <modbus.h>
#include <stdlib.h>
#include <termios.h>
#include <thread>
#include <unistd.h>

namespace {

constexpr int Address = 1;

/// A slave at one address with 300 registers, at the far end of a pseudo-terminal.
class Slave {
public:
    Slave()
        : context_(modbus_new_rtu("none", 9600, 'N', 8, 1))
        , registers(modbus_mapping_new(0, 0, 300, 0))
        , line_(posix_openpt(O_RDWR | O_NOCTTY)) {
        EXPECT_EQ(grantpt(line_) + unlockpt(line_), 0);
        // Held open and raw, the line neither hangs up nor echoes ahead of the program.
        held_ = open(ptsname(line_), O_RDWR | O_NOCTTY);
        termios raw{};
        tcgetattr(held_, &raw);
        cfmakeraw(&raw);
        tcsetattr(held_, TCSANOW, &raw);
        modbus_set_slave(context_, Address);
        modbus_set_socket(context_, line_);
        modbus_set_indication_timeout(context_, 0, 100000);
        server_ = std::jthread([this](const std::stop_token& stop) { Serve(stop); });
    }
    ~Slave() {
        server_ = {};
        close(held_);
        close(line_);
        modbus_mapping_free(registers);
        modbus_free(context_);
    }
    Slave(const Slave&) = delete;
    Slave& operator=(const Slave&) = delete;

    QString Device() const { return QString::fromLocal8Bit(ptsname(line_)); }
    uint16_t& operator[](int number) { return registers->tab_registers[number]; }

private:
    void Serve(const std::stop_token& stop) {
        uint8_t query[MODBUS_RTU_MAX_ADU_LENGTH];
        while (!stop.stop_requested()) {
            const int length = modbus_receive(context_, query);
            if (length > 0 && query[0] == Address)
                modbus_reply(context_, query, length, registers);
        }
    }

    modbus_t* context_;
    modbus_mapping_t* registers;
    int line_;
    int held_ = -1;
    std::jthread server_;
};

} // namespace

TEST(IndependentModule, IsReadAndWritten) {
    Slave slave;
    const auto link = platform::MakeSerialPort([&](int) { return slave.Device(); });
    link->setSettings("9600,N,8,1");
    link->setPortOpen(true);
    slave[132] = 1;
    slave[133] = 0x8002;
    Words words(2);
    EXPECT_TRUE(LitMots(*link, Address, 132, words));
    EXPECT_EQ(words, (Words{1, -32766}));
    EXPECT_TRUE(EcritUnMot(*link, Address, 64, 7));
    EXPECT_EQ(slave[64], 7);
    EXPECT_TRUE(EcritMots(*link, Address, 25, {1, -2, 3}));
    EXPECT_EQ(QList<int>({slave[25], slave[26], slave[27]}), QList<int>({1, 0xFFFE, 3}));
    EXPECT_FALSE(LitMots(*link, Address, 299, words)) << "beyond its registers";
    EXPECT_FALSE(LitMots(*link, Address + 1, 132, words)) << "nobody is there";
}
