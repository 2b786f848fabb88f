#include "platform/ZipFile.h"

#include "platform/FileWriting.h"
#include "platform/RunTimeError.h"

#include <QFile>
#include <memory>
#include <zip.h>

namespace platform {

namespace {

/// Share of the whole between two calls of whoever watches.
constexpr double Step = 0.002;
/// Lines of text shrink to a fraction by any level, and the lowest takes the least of a small
/// processor.
constexpr zip_uint32_t Level = 1;
constexpr qsizetype Portion = qsizetype(256) * 1024;

zip_t* Open(const QString& path, int flags, int otherwise) {
    int error = 0;
    zip_t* opened = zip_open(QFile::encodeName(path).constData(), flags, &error);
    if (opened == nullptr)
        throw RunTimeError(error == ZIP_ER_NOENT ? errors::FileNotFound : otherwise);
    return opened;
}

int ErrorOf(zip_t* zip) {
    zip_error_t* error = zip_get_error(zip);
    const bool mayNotWrite = zip_error_code_zip(error) == ZIP_ER_TMPOPEN;
    return FileError(zip_error_code_system(error),
                     mayNotWrite ? errors::PathAccess : errors::DeviceIo);
}

} // namespace

ZipWriter::ZipWriter(const QString& path)
    : zip_(Open(path, ZIP_CREATE | ZIP_TRUNCATE, errors::PathAccess)) {}

ZipWriter::~ZipWriter() {
    if (zip_ != nullptr)
        zip_discard(zip_);
}

void ZipWriter::Add(const QString& name, const QByteArray& bytes) {
    // The source frees what malloc gave, unless that has no length.
    void* copy = nullptr;
    if (!bytes.isEmpty()) {
        copy = malloc(size_t(bytes.size()));
        if (copy == nullptr)
            throw RunTimeError(errors::OutOfMemory);
        memcpy(copy, bytes.constData(), size_t(bytes.size()));
    }
    zip_source_t* source = zip_source_buffer(zip_, copy, zip_uint64_t(bytes.size()), 1);
    if (source == nullptr)
        free(copy);
    Take(name, source);
}

void ZipWriter::AddFile(const QString& name, const QString& path, qint64 size) {
    // A length of 0 would be the file's own.
    if (size == 0)
        Add(name, {});
    else
        Take(name, zip_source_file(zip_, QFile::encodeName(path).constData(), 0, size));
}

void ZipWriter::Take(const QString& name, zip_source_t* source) {
    if (source == nullptr)
        throw RunTimeError(ErrorOf(zip_));
    const zip_int64_t added =
        zip_file_add(zip_, name.toUtf8().constData(), source, ZIP_FL_ENC_UTF_8);
    if (added < 0) {
        zip_source_free(source);
        throw RunTimeError(ErrorOf(zip_));
    }
    zip_set_file_compression(zip_, zip_uint64_t(added), ZIP_CM_DEFLATE, Level);
}

void ZipWriter::Finish(const QByteArray& comment, const std::function<bool(double)>& told) {
    told_ = told;
    zip_set_archive_comment(zip_, comment.constData(), zip_uint16_t(comment.size()));
    zip_register_progress_callback_with_state(
        zip_, Step,
        [](zip_t*, double share, void* self) {
            auto* writer = static_cast<ZipWriter*>(self);
            writer->stopped_ = writer->stopped_ || !writer->told_(share);
        },
        nullptr, this);
    zip_register_cancel_callback_with_state(
        zip_, [](zip_t*, void* self) { return int(static_cast<ZipWriter*>(self)->stopped_); },
        nullptr, this);
    if (zip_close(zip_) == 0) {
        zip_ = nullptr;
        return;
    }
    if (stopped_)
        throw BackgroundTask::Ended();
    throw RunTimeError(ErrorOf(zip_));
}

ZipReader::ZipReader(const QString& path)
    : zip_(Open(path, ZIP_RDONLY | ZIP_CHECKCONS, errors::DeviceIo)) {}

ZipReader::~ZipReader() {
    zip_discard(zip_);
}

QStringList ZipReader::Names() const {
    QStringList names;
    const zip_int64_t count = zip_get_num_entries(zip_, 0);
    for (zip_int64_t i = 0; i < count; ++i)
        names += QString::fromUtf8(zip_get_name(zip_, zip_uint64_t(i), ZIP_FL_ENC_GUESS));
    return names;
}

QByteArray ZipReader::Comment() const {
    int length = 0;
    const char* comment = zip_get_archive_comment(zip_, &length, ZIP_FL_ENC_RAW);
    return comment == nullptr ? QByteArray() : QByteArray(comment, length);
}

void ZipReader::Read(const QString& name,
                     const std::function<void(const QByteArray&)>& take) const {
    const std::unique_ptr<zip_file_t, int (*)(zip_file_t*)> file(
        zip_fopen(zip_, name.toUtf8().constData(), 0), zip_fclose);
    if (file == nullptr)
        throw RunTimeError(errors::FileNotFound);
    QByteArray portion(Portion, Qt::Uninitialized);
    for (;;) {
        const zip_int64_t got = zip_fread(file.get(), portion.data(), zip_uint64_t(Portion));
        if (got < 0)
            throw RunTimeError(errors::DeviceIo);
        if (got == 0)
            return;
        take(QByteArray::fromRawData(portion.constData(), qsizetype(got)));
    }
}

} // namespace platform
