// The far end is a Modbus slave that knows nothing of this program.

#include "TechnicianFixture.h"
#include "model/Models.h"
#include "screens/touch/TouchTable.h"
#include "technician/wTechEtatModule.h"

#include <atomic>
#include <fcntl.h>
#include <modbus.h>
#include <poll.h>
#include <stdlib.h>
#include <termios.h>
#include <thread>
#include <unistd.h>

namespace {

constexpr int Address = 1;

/// Two pseudo-terminals joined like the ends of a cable.
class Cable {
public:
    Cable() {
        for (int end = 0; end < 2; ++end) {
            masters_[end] = posix_openpt(O_RDWR | O_NOCTTY);
            EXPECT_GE(masters_[end], 0);
            EXPECT_EQ(grantpt(masters_[end]), 0);
            EXPECT_EQ(unlockpt(masters_[end]), 0);
            names_[end] = QString::fromLocal8Bit(ptsname(masters_[end]));
            termios line{};
            tcgetattr(masters_[end], &line);
            cfmakeraw(&line);
            tcsetattr(masters_[end], TCSANOW, &line);
        }
        carrier_ = std::thread([this] { Carry(); });
    }
    ~Cable() {
        ended_ = true;
        carrier_.join();
        for (const int master : masters_)
            close(master);
    }
    Cable(const Cable&) = delete;
    Cable& operator=(const Cable&) = delete;

    const QString& End(int end) const { return names_[end]; }

private:
    void Carry() {
        while (!ended_) {
            pollfd ends[] = {{masters_[0], POLLIN, 0}, {masters_[1], POLLIN, 0}};
            // An end that nobody holds open hangs up at once.
            if (poll(ends, 2, 10) <= 0)
                continue;
            for (int end = 0; end < 2; ++end) {
                char bytes[512];
                if ((ends[end].revents & POLLIN) == 0) {
                    usleep(500);
                    continue;
                }
                const ssize_t count = read(masters_[end], bytes, sizeof bytes);
                if (count > 0) {
                    EXPECT_EQ(write(masters_[1 - end], bytes, size_t(count)), count);
                }
            }
        }
    }

    int masters_[2] = {-1, -1};
    QString names_[2];
    std::thread carrier_;
    std::atomic<bool> ended_ = false;
};

/// A slave at one address with 300 registers.
class Slave {
public:
    explicit Slave(const QString& device)
        : context_(modbus_new_rtu(device.toLocal8Bit().constData(), 9600, 'N', 8, 1))
        , registers(modbus_mapping_new(0, 0, 300, 0)) {
        modbus_set_slave(context_, Address);
        EXPECT_EQ(modbus_connect(context_), 0);
        modbus_set_indication_timeout(context_, 0, 100000);
        server_ = std::thread([this] { Serve(); });
    }
    ~Slave() {
        ended_ = true;
        server_.join();
        modbus_close(context_);
        modbus_mapping_free(registers);
        modbus_free(context_);
    }
    Slave(const Slave&) = delete;
    Slave& operator=(const Slave&) = delete;

    uint16_t& operator[](int number) { return registers->tab_registers[number]; }

private:
    void Serve() {
        uint8_t query[MODBUS_RTU_MAX_ADU_LENGTH];
        while (!ended_) {
            const int length = modbus_receive(context_, query);
            if (length > 0 && query[0] == Address)
                modbus_reply(context_, query, length, registers);
        }
    }

    modbus_t* context_;
    modbus_mapping_t* registers;
    std::thread server_;
    std::atomic<bool> ended_ = false;
};

/// On the machine's own clock and serial port.
class IndependentModuleTest : public TechnicianTest {
protected:
    IndependentModuleTest()
        : slave(cable.End(1)) {
        platform::Clock::Install(nullptr);
        engine->Form_Unload();
        engine.reset();
        engine = std::make_unique<wPolling>(
            platform::MakeSerialPort([this](int) { return cable.End(0); }));
        engine->Form_Load();
        engine->CommBus().setSettings("9600,N,8,1");
        engine->CommBus().setPortOpen(true);
    }
    ~IndependentModuleTest() override {
        Forms::UnloadAllBut({});
        engine->Form_Unload();
        engine.reset();
    }

    Cable cable;
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
