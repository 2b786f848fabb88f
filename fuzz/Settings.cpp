#include "fuzz/Targets.h"
#include "fuzz/support/Bench.h"
#include "fuzz/support/Input.h"
#include "fuzz/support/MemoryFiles.h"
#include "platform/RunTimeError.h"
#include "platform/SettingsFile.h"

#include <QByteArrayList>
#include <QSet>
#include <memory>

using Fuzz::Require;
using platform::SettingsFile;

namespace {

const QString Path = QStringLiteral("/memory/fuzz.ini");
const QByteArray PathBytes = QByteArrayLiteral("/memory/fuzz.ini");
const QString OtherPath = QStringLiteral("/memory/other.ini");
const QByteArray OtherPathBytes = QByteArrayLiteral("/memory/other.ini");
/// Steps of a run, and of the rare one that goes on for long.
constexpr int MaxSteps = 3;
constexpr int MaxStepsRarely = 10;
/// A section with its name, at most one blank line ahead of it, and a key.
constexpr qsizetype MostNewLines = 3;

/// The lines without their ends.
QByteArrayList LinesOf(const QByteArray& content) {
    if (content.isEmpty())
        return {};
    QByteArrayList lines = content.split('\n');
    if (lines.last().isEmpty())
        lines.removeLast();
    for (QByteArray& line : lines) {
        while (line.endsWith('\r'))
            line.chop(1);
    }
    return lines;
}

/// The line behind its leading blanks and tabs; other white space counts as content.
QByteArray ContentOf(const QByteArray& line) {
    qsizetype start = 0;
    while (start < line.size() && QByteArrayView(" \t\r").contains(line[start]))
        ++start;
    return line.mid(start);
}

bool IsComment(const QByteArray& line) {
    const QByteArray content = ContentOf(line);
    return content.startsWith(';') || content.startsWith('#');
}

/// The lines of `before` that are missing from `after`, which has no others.
QByteArrayList Removed(const QByteArrayList& before, const QByteArrayList& after) {
    QByteArrayList removed;
    qsizetype kept = 0;
    for (const QByteArray& line : before) {
        if (kept < after.size() && after[kept] == line)
            ++kept;
        else
            removed += line;
    }
    Require(kept == after.size(), "a deletion adds and changes no line");
    return removed;
}

/// One line is changed in its place, or a few are added.
void CheckWritten(const QByteArrayList& before, const QByteArrayList& after) {
    qsizetype head = 0;
    while (head < before.size() && head < after.size() && before[head] == after[head])
        ++head;
    qsizetype tail = 0;
    while (tail < before.size() - head && tail < after.size() - head &&
           before[before.size() - 1 - tail] == after[after.size() - 1 - tail])
        ++tail;
    const qsizetype gone = before.size() - head - tail;
    const qsizetype come = after.size() - head - tail;
    Require(gone == 0 ? come <= MostNewLines : gone == 1 && come == 1,
            "a write leaves the lines of others");
    Require(gone == 0 || !IsComment(before[head]), "a write leaves comments");
}

QString Name(Input& input) {
    static const QString names[] = {QStringLiteral("A"), QStringLiteral("General"),
                                    QStringLiteral("a"), QStringLiteral("x y"),
                                    QString(),           QStringLiteral("\u00C4")};
    const int choice = input.Byte();
    return choice < 0xC0 ? names[choice % 6] : input.Text(choice & 7);
}

QString AsStored(const QString& value) {
    QString text = platform::FromCodePage(platform::ToCodePage(value));
    return text.replace(QStringLiteral("\r\n"), QStringLiteral(" "))
        .replace(u'\r', u' ')
        .replace(u'\n', u' ');
}

class Session {
public:
    explicit Session(Input& input)
        : input_(input) {
        if (input.Byte() != 0)
            MemoryFiles::Put(PathBytes, input.Bytes(input.Byte() & 127));
        file_ = std::make_unique<SettingsFile>(Path);
    }

    void Step() {
        const QByteArray before = MemoryFiles::Content(PathBytes);
        const int step = input_.Byte();
        section_ = Name(input_);
        key_ = Name(input_);
        switch (step & 7) {
        case 0:
        case 1:
            Change(before, [&] { Write(before); });
            break;
        case 2:
            Change(before, [&] { WriteSection(before); });
            break;
        case 3:
            Change(before, [&] { DeleteKey(before); });
            break;
        case 4:
            Change(before, [&] { DeleteSection(before); });
            break;
        case 5:
            file_->Keys(section_);
            file_->Read(section_, key_, QString());
            break;
        case 6:
            EditByHand();
            break;
        default:
            MemoryFiles::Fail(MemoryFiles::Failure(step >> 3 & 7));
            return;
        }
        MemoryFiles::Fail(MemoryFiles::Failure::None);
        if (saved_ && (step & 7) != 5)
            CompareWithDisk();
    }

private:
    template <class Body> void Change(const QByteArray& before, Body&& body) {
        try {
            body();
            saved_ = true;
        } catch (const platform::RunTimeError& error) {
            Require(MemoryFiles::Content(PathBytes) == before, "a failure leaves the old file");
            if (error.Number() != platform::errors::InvalidPropertyValue)
                saved_ = false;
        }
        Require(MemoryFiles::Count() <= 1, "no temporary file stays");
    }

    void Write(const QByteArray& before) {
        const QString value = input_.Text(input_.Byte() & 31);
        const bool compare = saved_;
        file_->Write(section_, key_, value);
        Require(file_->Read(section_, key_, QStringLiteral("none")) == AsStored(value),
                "a value comes back");
        if (compare)
            CheckWritten(LinesOf(before), Lines());
    }

    void DeleteKey(const QByteArray& before) {
        const bool compare = saved_;
        file_->DeleteKey(section_, key_);
        Require(file_->Read(section_, key_, QStringLiteral("none")) == QStringLiteral("none"),
                "a key that was deleted is gone");
        if (!compare)
            return;
        for (const QByteArray& line : Removed(LinesOf(before), Lines()))
            Require(line.contains('=') && !IsComment(line), "lines of the key alone go");
    }

    void DeleteSection(const QByteArray& before) {
        const bool compare = saved_;
        file_->DeleteSection(section_);
        Require(file_->Keys(section_).isEmpty(), "a section that was deleted is empty");
        if (!compare)
            return;
        for (const QByteArray& line : Removed(LinesOf(before), Lines()))
            Require(!IsComment(line) &&
                        (line.contains('=') || line.contains('[') || ContentOf(line).isEmpty()),
                    "comments and unknown lines of a section stay");
    }

    /// Different keys; a repeated one may come in another case, and either spelling will do.
    QList<std::pair<QString, QString>> Values() {
        QList<std::pair<QString, QString>> values;
        QSet<QString> known;
        for (int count = input_.Byte() & 3; count > 0; --count) {
            const QString key = Name(input_);
            const QString value = input_.Text(input_.Byte() & 15);
            if (!known.contains(key.toCaseFolded()))
                values.append({key, value});
            known.insert(key.toCaseFolded());
        }
        return values;
    }

    /// The whole of a section at once comes to what its parts come to one by one.
    void WriteSection(const QByteArray& before) {
        const auto values = Values();
        const bool compare = saved_;
        file_->WriteSection(section_, values);
        if (!compare)
            return;
        const QByteArrayList whole = Lines();
        MemoryFiles::Fail(MemoryFiles::Failure::None);
        if (MemoryFiles::Exists(PathBytes))
            MemoryFiles::Put(OtherPathBytes, before);
        {
            SettingsFile other(OtherPath);
            other.DeleteSection(section_);
            for (const auto& [key, value] : values)
                other.Write(section_, key, value);
        }
        // Ends apart: a line whose last byte is a carriage return gets another end when it is read.
        Require(LinesOf(MemoryFiles::Content(OtherPathBytes)) == whole,
                "a section is written as its keys are");
        MemoryFiles::Remove(OtherPathBytes);
    }

    void EditByHand() { MemoryFiles::Put(PathBytes, input_.Bytes(input_.Byte())); }

    static QByteArrayList Lines() { return LinesOf(MemoryFiles::Content(PathBytes)); }

    /// What is in memory is what another start of the program finds.
    void CompareWithDisk() const {
        const SettingsFile other(Path);
        const QStringList keys = file_->Keys(section_);
        Require(other.Keys(section_) == keys, "the file holds the keys");
        for (const QString& key : keys)
            Require(other.Read(section_, key, QString()) == file_->Read(section_, key, QString()),
                    "the file holds the values");
    }

    Input& input_;
    std::unique_ptr<SettingsFile> file_;
    QString section_;
    QString key_;
    bool saved_ = true;
};

} // namespace

int FuzzSettings(const uint8_t* data, size_t size) {
    Fuzz::Prepare();
    Input input(data, size);
    Session session(input);
    const int maxSteps = input.IsRare() ? MaxStepsRarely : MaxSteps;
    for (int step = 0; step < maxSteps && !input.IsEmpty(); ++step)
        session.Step();
    return 0;
}
