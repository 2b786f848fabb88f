#include "simulator/PseudoTerminal.h"

#include <QTemporaryDir>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <system_error>

using namespace Sim;

namespace fs = std::filesystem;

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
