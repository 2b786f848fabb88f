// The far end is a Modbus slave that knows nothing of this program.

#include "TechnicianFixture.h"
#include "technician/wTechEtatModule.h"

#include <fcntl.h>
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

/// On the machine's own clock and serial port.
class IndependentModuleTest : public TechnicianTest {
protected:
    IndependentModuleTest() {
        platform::Clock::Install(nullptr);
        engine->Form_Unload();
        engine.reset(); // there is one at a time
        engine = std::make_unique<wPolling>(
            platform::MakeSerialPort([this](int) { return slave.Device(); }));
        engine->Form_Load();
        engine->CommBus().setSettings("9600,N,8,1");
        engine->CommBus().setPortOpen(true);
    }
    /// Ahead of the slave, whose line it holds.
    void TearDown() override {
        Forms::UnloadAllBut({});
        engine->Form_Unload();
        engine.reset();
    }

    Slave slave;
};

} // namespace

TEST_F(IndependentModuleTest, IsFoundAndShownLive) {
    slave[132] = 1;
    slave[133] = 2;
    const QString finder = FormNames::wTechFindPanels;
    Forms::Show(finder);
    auto* grid = Find<TouchTable>(finder, "grdPanels");
    // One module is enough: the second address is silent.
    QTimer stop;
    stop.callOnTimeout([&] {
        if (grid->Cell(1, 4) != QStringLiteral("?????"))
            Tap(finder, "imgFind_0");
    });
    stop.start(20);
    Tap(finder, "imgFind_1");
    stop.stop();
    EXPECT_EQ(grid->Cell(0, 4), ModuleName(Models::P5500));
    Forms::Unload(finder);
    RemoveUnloaded();

    const QString front = FormNames::wTechEtatModule;
    PanelClass& panel = AddPanel(Address, Models::Q7100);
    for (int channel = 1; channel <= panel.ChannelCount(); ++channel)
        slave[channel] = uint16_t(channel % 5);
    Script script;
    script.On(front, [&] {
        EXPECT_TRUE(Comes([&] { return TextOf(front, "lblCommResult") == GetText(830102); }));
        Tap(front, "cmdBoutons_4");
        EXPECT_TRUE(Comes([&] { return slave[64] == 1; }));
        Tap(front, "imgClose");
    });
    dynamic_cast<wTechEtatModule*>(Forms::Load(front))->Present(panel);
}
