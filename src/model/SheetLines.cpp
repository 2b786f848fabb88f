#include "model/SheetLines.h"

#include "core/Bytes.h"
#include "platform/CodePage.h"

#include <QStringConverter>

namespace {

constexpr QChar Tab = u'\t';
constexpr QChar Quote = u'"';
constexpr char16_t LastAscii = 0x7F;
const QByteArray Utf8Mark = QByteArrayLiteral("\xEF\xBB\xBF");
/// Lines over which a field may stretch.
constexpr int MostJoined = 50;

/// Text in Windows-1252 may be valid UTF-8 by chance, as where a sign of the page's upper half
/// follows a capital letter of it: there the signs stand alone and mean nothing that the page has.
bool IsMeant(const QString& decoded) {
    bool before = false;
    for (const QChar character : decoded) {
        const bool foreign = character.unicode() > LastAscii;
        if (foreign && (before || platform::FitsCodePage(QString(character))))
            return true;
        before = foreign;
    }
    return false;
}

/// A number as the program writes it, up to the first tab.
bool BeginsAsWritten(const QString& line) {
    const qsizetype end = line.indexOf(Tab);
    return end > 2 && (line[0] == u' ' || line[0] == u'-') && line[end - 1] == u' ';
}

/// Where a quoted field ends that begins at `start`: behind its closing quote. -1 when no quote
/// closes it, 0 when its quotes are characters like any other.
qsizetype QuotedEnd(const QString& line, qsizetype start) {
    for (qsizetype i = start + 1; i < line.size(); ++i) {
        if (line[i] != Quote)
            continue;
        if (i + 1 == line.size() || line[i + 1] == Tab)
            return i + 1;
        if (line[i + 1] != Quote)
            return 0;
        ++i;
    }
    return -1;
}

/// The fields of a line with the quotes of a spreadsheet taken off. `open` tells that the last one
/// lacks its closing quote.
QStringList Unquoted(const QString& line, bool& open) {
    QStringList fields;
    open = false;
    for (qsizetype start = 0; start <= line.size();) {
        const bool quoted = start < line.size() && line[start] == Quote;
        const qsizetype close = quoted ? QuotedEnd(line, start) : 0;
        open = open || close < 0;
        if (close > 0) {
            fields += line.mid(start + 1, close - start - 2)
                          .replace(QStringLiteral("\"\""), QStringLiteral("\""));
            start = close + 1;
            continue;
        }
        const qsizetype end = line.indexOf(Tab, start);
        fields += line.mid(start, end < 0 ? -1 : end - start);
        start = end < 0 ? line.size() + 1 : end + 1;
    }
    return fields;
}

bool IsOpen(const QString& line) {
    bool open = false;
    Unquoted(line, open);
    return open;
}

/// A line that isn't passed over.
bool Counts(const QString& line) {
    bool open = false;
    return !line.isEmpty() && Bytes::Val(Unquoted(line.section(Tab, 0, 0), open).value(0)) != 0;
}

QString WithoutReturn(QString line) {
    if (line.endsWith(u'\r'))
        line.chop(1);
    return line;
}

} // namespace

std::optional<QString> UnicodeText(const QByteArray& bytes) {
    const auto marked = QStringConverter::encodingForData(bytes);
    QStringDecoder decoder(marked.value_or(QStringConverter::Utf8));
    QString text = decoder(bytes);
    if (decoder.hasError() || (!marked && !IsMeant(text)))
        return std::nullopt;
    // Some systems write an accent behind its letter; the page has both in one.
    return text.normalized(QString::NormalizationForm_C);
}

SheetLines::SheetLines(const QByteArray& bytes, int columns)
    : columns_(columns) {
    const std::optional<QString> text = UnicodeText(bytes);
    unicode_ = text.has_value();
    const qsizetype mark = !unicode_ && bytes.startsWith(Utf8Mark) ? Utf8Mark.size() : 0;
    lines_ = text.value_or(platform::FromCodePage(bytes.mid(mark))).split(u'\n');
}

/// Puts the lines that follow behind one until it is whole, if it gets so ahead of the next line
/// that counts.
template <class Predicate> bool SheetLines::Join(QString& line, Predicate whole) {
    QString joined = lines_[next_ - 1];
    qsizetype next = next_;
    do {
        if (next >= lines_.size() || next - next_ >= MostJoined || Counts(lines_[next]))
            return false;
        joined += u'\n' + lines_[next++];
    } while (!whole(WithoutReturn(joined)));
    line = WithoutReturn(joined);
    next_ = next;
    return true;
}

bool SheetLines::Next() {
    while (next_ < lines_.size()) {
        QString line = WithoutReturn(lines_[next_++]);
        number_ = int(next_);
        if (!Counts(line))
            continue;
        const auto isWhole = [this](const QString& joined) {
            return joined.endsWith(Tab) && joined.count(Tab) == columns_;
        };
        written_ = BeginsAsWritten(line) &&
                   ((line.endsWith(Tab) && line.count(Tab) >= columns_) || Join(line, isWhole));
        if (!written_ && IsOpen(line))
            Join(line, [](const QString& joined) { return !IsOpen(joined); });
        bool open = false;
        fields_ = written_ ? line.chopped(1).split(Tab) : Unquoted(line, open);
        return true;
    }
    return false;
}
