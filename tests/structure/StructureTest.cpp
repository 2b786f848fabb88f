// What holds the structure of the tree: the order of the folders, and files of a size that can be
// read.

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QStringList>
#include <gtest/gtest.h>

namespace {

const QString Root = QStringLiteral(KORVANELLE_SOURCE_DIR);
const QStringList Folders = {"platform", "core",    "model",          "events",
                             "bus",      "screens", "config_screens", "technician"};
const QString Include = "^\\s*#include \"([a-z_]+)/";
constexpr int MaxLines = 500;

QStringList SourcesIn(const QString& folder) {
    QStringList found;
    QDirIterator walk(Root + u'/' + folder, {"*.cpp", "*.h"}, QDir::Files,
                      QDirIterator::Subdirectories);
    while (walk.hasNext())
        found += walk.next();
    return found;
}

QString ContentOf(const QString& path) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return QString::fromUtf8(file.readAll());
}

/// Nothing in a row of folders includes one that stands behind it. Gives the number of includes.
int CheckOrder(const QString& under, const QStringList& folders, const QString& pattern) {
    const QRegularExpression include(pattern, QRegularExpression::MultilineOption);
    int seen = 0;
    for (int place = 0; place < folders.size(); ++place) {
        const QStringList sources = SourcesIn(under + folders[place]);
        EXPECT_FALSE(sources.isEmpty()) << folders[place].toStdString();
        for (const QString& path : sources) {
            for (auto match = include.globalMatch(ContentOf(path)); match.hasNext(); ++seen) {
                const QString target = match.next().captured(1);
                EXPECT_TRUE(folders.contains(target) && folders.indexOf(target) <= place)
                    << path.toStdString() << " includes " << target.toStdString();
            }
        }
    }
    return seen;
}

} // namespace

// The rooms of the screens stand in an order too: what one shows is built from those before it.
TEST(Structure, IncludesPointLeft) {
    EXPECT_GT(CheckOrder("src/", Folders, Include), 100);
    EXPECT_GT(CheckOrder("src/screens/",
                         {"touch", "dialogs", "console", "history", "remote", "report", "menu"},
                         "#include \"screens/([a-z]+)/"),
              50);
}

TEST(Structure, SimulatorAndProgramShareNothing) {
    EXPECT_GT(CheckOrder(QString(), {"simulator"}, Include), 10);
    for (const QString& path : SourcesIn("src"))
        EXPECT_FALSE(ContentOf(path).contains("#include \"simulator/")) << path.toStdString();
}

TEST(Structure, NoFileIsLong) {
    for (const char* folder : {"src", "simulator", "tools", "tests", "benchmarks"}) {
        for (const QString& path : SourcesIn(QString::fromLatin1(folder)))
            EXPECT_LE(ContentOf(path).count(u'\n'), MaxLines) << path.toStdString();
    }
}

TEST(Structure, OnlyThePlatformNamesTheSystem) {
    static const QRegularExpression systemHeader(QStringLiteral(
        "#include "
        "<(unistd|fcntl|termios|poll|csignal|signal|sys/|sqlite3|QSerialPort|pulse/|alsa/)"));
    for (int place = 1; place < Folders.size(); ++place) {
        for (const QString& path : SourcesIn(QStringLiteral("src/") + Folders[place]))
            EXPECT_FALSE(ContentOf(path).contains(systemHeader)) << path.toStdString();
    }
}
