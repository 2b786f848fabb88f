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
const QStringList Folders = {
    QStringLiteral("platform"),       QStringLiteral("core"),      QStringLiteral("model"),
    QStringLiteral("events"),         QStringLiteral("bus"),       QStringLiteral("screens"),
    QStringLiteral("config_screens"), QStringLiteral("technician")};
constexpr int MaxLines = 500;

QStringList SourcesIn(const QString& folder) {
    QStringList found;
    QDirIterator walk(Root + u'/' + folder, {QStringLiteral("*.cpp"), QStringLiteral("*.h")},
                      QDir::Files, QDirIterator::Subdirectories);
    while (walk.hasNext())
        found += walk.next();
    return found;
}

QString ContentOf(const QString& path) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return QString::fromUtf8(file.readAll());
}

QStringList IncludesOf(const QString& content) {
    static const QRegularExpression include(QStringLiteral("^\\s*#include \"([a-z_]+)/"),
                                            QRegularExpression::MultilineOption);
    QStringList found;
    for (auto match = include.globalMatch(content); match.hasNext();)
        found += match.next().captured(1);
    return found;
}

} // namespace

TEST(Structure, IncludesPointLeft) {
    int seen = 0;
    for (int place = 0; place < Folders.size(); ++place) {
        for (const QString& path : SourcesIn(QStringLiteral("src/") + Folders[place])) {
            for (const QString& target : IncludesOf(ContentOf(path))) {
                ++seen;
                EXPECT_TRUE(Folders.contains(target) && Folders.indexOf(target) <= place)
                    << path.toStdString() << " includes " << target.toStdString();
            }
        }
    }
    EXPECT_GT(seen, 100);
}

// The rooms of the screens stand in an order too: what one shows is built from those before it.
TEST(Structure, RoomsOfTheScreensPointLeft) {
    const QStringList rooms{QStringLiteral("touch"),   QStringLiteral("dialogs"),
                            QStringLiteral("console"), QStringLiteral("history"),
                            QStringLiteral("remote"),  QStringLiteral("report"),
                            QStringLiteral("menu")};
    static const QRegularExpression include(QStringLiteral("#include \"screens/([a-z]+)/"));
    int seen = 0;
    for (int place = 0; place < rooms.size(); ++place) {
        const QStringList sources = SourcesIn(QStringLiteral("src/screens/") + rooms[place]);
        EXPECT_FALSE(sources.isEmpty()) << rooms[place].toStdString();
        for (const QString& path : sources) {
            for (auto match = include.globalMatch(ContentOf(path)); match.hasNext(); ++seen) {
                const QString target = match.next().captured(1);
                EXPECT_TRUE(rooms.contains(target) && rooms.indexOf(target) <= place)
                    << path.toStdString() << " includes " << target.toStdString();
            }
        }
    }
    EXPECT_GT(seen, 50);
}

TEST(Structure, SimulatorAndProgramShareNothing) {
    for (const QString& path : SourcesIn(QStringLiteral("simulator"))) {
        for (const QString& target : IncludesOf(ContentOf(path)))
            EXPECT_EQ(target, QStringLiteral("simulator")) << path.toStdString();
    }
    for (const QString& path : SourcesIn(QStringLiteral("src")))
        EXPECT_FALSE(IncludesOf(ContentOf(path)).contains(QStringLiteral("simulator")))
            << path.toStdString();
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
