#include "simulator/Loop.h"

#include <QTemporaryDir>
#include <array>
#include <fcntl.h>
#include <fstream>
#include <gmock/gmock.h>
#include <poll.h>
#include <sstream>
#include <system_error>
#include <thread>
#include <unistd.h>

using namespace Sim;
using namespace std::chrono_literals;
using ::testing::HasSubstr;

namespace fs = std::filesystem;

namespace {

struct Pipe {
    Pipe() {
        std::array<int, 2> ends{};
        EXPECT_EQ(::pipe(ends.data()), 0);
        out = Descriptor(ends[0]);
        in = Descriptor(ends[1]);
    }
    void Put(const std::string& text) const {
        EXPECT_EQ(::write(in.Get(), text.data(), text.size()), static_cast<ssize_t>(text.size()));
    }
    Descriptor out;
    Descriptor in;
};

/// The whole simulator in a thread of its own, with the master's end of the line.
class LoopTest : public ::testing::Test {
protected:
    void Start(const std::string& scenarioText) {
        const auto scenario = ParseScenario(scenarioText);
        Populate(bus, scenario);
        thread = std::thread([this, scenario] {
            Loop(bus, terminal, Timeline(scenario), now, console.out.Get(), stop.out.Get(), out)
                .Run();
        });
        OpenLine();
    }

    void OpenLine() { line = Descriptor(::open(link.c_str(), O_RDWR | O_NOCTTY)); }

    void TearDown() override {
        if (thread.joinable()) {
            stop.Put("x");
            thread.join();
        }
    }

    /// Sends a frame and receives up to `expected` bytes within the time.
    Bytes Exchange(Bytes frame, std::size_t expected, Milliseconds limit = 2s) {
        AppendCrc(frame);
        EXPECT_EQ(::write(line.Get(), frame.data(), frame.size()),
                  static_cast<ssize_t>(frame.size()));
        Bytes reply;
        pollfd watched{line.Get(), POLLIN, 0};
        while (reply.size() < expected &&
               ::poll(&watched, 1, static_cast<int>(limit.count())) > 0) {
            Bytes part(300);
            const auto got = ::read(line.Get(), part.data(), part.size());
            reply.insert(reply.end(), part.begin(), part.begin() + std::max<ssize_t>(got, 0));
        }
        return reply;
    }

    QTemporaryDir folder;
    fs::path link = folder.filePath("bus").toStdString();
    TimeSource now = [start = std::chrono::steady_clock::now()] {
        return std::chrono::duration_cast<Milliseconds>(std::chrono::steady_clock::now() - start);
    };
    Bus bus{now};
    PseudoTerminal terminal{link};
    Pipe console;
    Pipe stop;
    std::ostringstream out;
    Descriptor line;
    std::thread thread;
};

} // namespace

TEST_F(LoopTest, PollReadReceiptOverTheLine) {
    Start(R"({"modules":[{"address":7,"model":"Q7100"}],
              "timeline":[{"at":0,"do":"active 7 1"},{"at":0,"do":"fault 7 10 first"}]})");
    EXPECT_EQ(Exchange({7, 3, 0, 144, 0, 1}, 7).at(4), 3);
    // Values such as 10, 13 and 17 would be altered by a terminal that is not raw.
    const auto events = Exchange({7, 3, 0, 146, 0, 6}, 17);
    EXPECT_EQ(FrameCrc(events), 0);
    EXPECT_EQ((Bytes{events.at(3), events.at(7), events.at(11)}), (Bytes{0x10, 0xA0, 0xA1}));
    EXPECT_EQ(Exchange({7, 6, 0x01, 0x20, 0, 3}, 8).size(), 8U);
    EXPECT_EQ(Exchange({7, 3, 0, 144, 0, 1}, 7).at(4), 0);
    EXPECT_EQ(Exchange({7, 16, 0, 17, 0, 2, 4, 0, 13, 0, 3}, 8).size(), 8U);
    EXPECT_EQ(Exchange({7, 3, 0, 2, 0, 1}, 7).at(4), 1);

    // The master may close and open again.
    line = Descriptor();
    OpenLine();
    EXPECT_EQ(Exchange({7, 3, 0, 132, 0, 1}, 7).size(), 7U);
    EXPECT_TRUE(Exchange({8, 3, 0, 132, 0, 1}, 7, 100ms).empty());
    console.Put("quit\n");
    thread.join();
}

TEST_F(LoopTest, ConsoleCommandsAndItsEnd) {
    Start(R"({"modules":[{"address":3,"model":"P5000"}]})");
    console.Put("fault 3 7 second\nfrobnicate\nactive 3 99\ndelay 3 150\nsho");
    console.Put("w 3\n");
    console.in = Descriptor();
    Bytes reply;
    for (int tries = 0; tries < 50 && (reply.size() < 7 || reply[4] != 4); ++tries) {
        reply = Exchange({3, 3, 0, 7, 0, 1}, 7);
    }
    EXPECT_EQ(reply.at(4), 4);
    const auto before = now();
    EXPECT_EQ(Exchange({3, 3, 0, 1, 0, 12}, 29).size(), 29U);
    EXPECT_GE(now() - before, 149ms);

    stop.Put("x");
    thread.join();
    EXPECT_THAT(out.str(), HasSubstr("error: unknown command 'frobnicate'\n"));
    EXPECT_THAT(out.str(), HasSubstr("error: the channel must be"));
    EXPECT_THAT(out.str(), HasSubstr("show 3 P5000 states=000000400000"));
}

TEST(PseudoTerminal, ReplacesLinksOnlyAndRemovesItsOwn) {
    const QTemporaryDir folder;
    const fs::path link = folder.filePath("bus").toStdString();
    fs::create_symlink("/nowhere", link);
    {
        const PseudoTerminal terminal(link);
        EXPECT_TRUE(fs::is_character_file(link));
    }
    EXPECT_FALSE(fs::is_symlink(link));
    {
        const PseudoTerminal older(link);
        const PseudoTerminal newer(link);
        const auto target = fs::read_symlink(link);
        fs::remove(link);
        fs::create_symlink("/elsewhere", link);
    }
    EXPECT_EQ(fs::read_symlink(link), "/elsewhere");

    const fs::path file = folder.filePath("file").toStdString();
    std::ofstream(file) << "kept";
    EXPECT_THROW(PseudoTerminal{file}, std::system_error);
    EXPECT_EQ(fs::file_size(file), 4U);
}
