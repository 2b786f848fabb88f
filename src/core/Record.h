#pragma once

#include <QString>
#include <QStringView>
#include <algorithm>

/// A column of a fixed-width record: where it begins and how wide it is.
struct Column {
    int start;
    int width;
};

/// A text of fixed columns: begins blank, takes values field by field, cut at the field's end or
/// padded with blanks on the right.
class Record {
public:
    explicit Record(int width)
        : text_(width, u' ') {}
    /// Lays a text over the record: shorter is padded, longer is cut.
    Record(int width, const QString& text)
        : text_(text.leftJustified(width, u' ', true)) {}

    /// A control character, such as the line break in a spreadsheet's cell, becomes blank: one
    /// event is one line.
    void Set(const Column& column, QStringView value) {
        QChar* target = text_.data() + column.start;
        const qsizetype copied = std::min<qsizetype>(value.size(), column.width);
        for (qsizetype i = 0; i < column.width; ++i)
            target[i] = i < copied && value[i] >= u' ' ? value[i] : QChar(u' ');
    }
    /// Carriage return and line feed, where a record has two rows.
    void Break(const Column& column) {
        text_[column.start] = u'\r';
        text_[column.start + 1] = u'\n';
    }
    QString Get(const Column& column) const { return text_.mid(column.start, column.width); }
    const QString& Text() const { return text_; }

private:
    QString text_;
};
