#include "model/SiteFile.h"

#include "platform/CodePage.h"
#include "platform/FileReading.h"
#include "platform/RunTimeError.h"

#include <QtEndian>

using platform::RunTimeError;
namespace errors = platform::errors;

namespace {

/// Room for a site with every text in use.
constexpr qsizetype UsualSize = qsizetype(512) * 1024;

template <class T> void Append(QByteArray& bytes, T value) {
    char raw[sizeof(T)];
    qToLittleEndian(value, raw);
    bytes.append(raw, sizeof(T));
}

} // namespace

QString TrimBlanks(const QString& text) {
    qsizetype start = 0;
    qsizetype end = text.size();
    while (start < end && text[start] == u' ')
        ++start;
    while (end > start && text[end - 1] == u' ')
        --end;
    return text.mid(start, end - start);
}

SiteFileWriter::SiteFileWriter() {
    bytes_.reserve(UsualSize);
}

void SiteFileWriter::PutByte(quint8 value) {
    Append(bytes_, value);
}

void SiteFileWriter::PutWord(qint16 value) {
    Append(bytes_, value);
}

void SiteFileWriter::PutLong(qint32 value) {
    Append(bytes_, value);
}

void SiteFileWriter::PutBoolean(bool value) {
    PutWord(value ? -1 : 0);
}

void SiteFileWriter::PutFileString(const QString& text) {
    const QByteArray encoded = platform::ToCodePage(text);
    PutLong(qint32(encoded.size()));
    bytes_.append(encoded);
}

void SiteFileWriter::PutFixedText(const QString& text, int width) {
    bytes_.append(platform::ToCodePage(text).leftJustified(width, ' ', true));
}

void SiteFileWriter::PutZeros(qsizetype count) {
    bytes_.append(count, '\0');
}

SiteFileReader::SiteFileReader(QByteArray bytes)
    : bytes_(std::move(bytes)) {}

SiteFileReader SiteFileReader::Open(const QString& path) {
    return SiteFileReader(platform::ReadFile(path));
}

const char* SiteFileReader::Take(qsizetype count) {
    if (count < 0 || count > Left())
        throw RunTimeError(errors::InputPastEnd);
    const char* start = bytes_.constData() + position_;
    position_ += count;
    return start;
}

quint8 SiteFileReader::GetByte() {
    return quint8(*Take(1));
}

qint16 SiteFileReader::GetWord() {
    return qFromLittleEndian<qint16>(Take(2));
}

qint32 SiteFileReader::GetLong() {
    return qFromLittleEndian<qint32>(Take(4));
}

QString SiteFileReader::GetFileString() {
    const qint32 length = GetLong();
    return length == 0 ? QString() : TrimBlanks(GetFixedText(length));
}

QString SiteFileReader::GetFixedText(int width) {
    return platform::FromCodePage(QByteArray::fromRawData(Take(width), width));
}

void SiteFileReader::Skip(qsizetype count) {
    Take(count);
}
