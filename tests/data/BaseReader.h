#pragma once

#include <QHash>
#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariant>

struct sqlite3;

namespace base_test {

/// The built configuration base.
QString BasePath();
/// The folder of the plain files that it is made of.
QString DataFolder();

/// A base opened read-only with a key, by the library's own calls, so that the file is judged
/// apart from the program's record layer.
class BaseReader {
public:
    explicit BaseReader(const QString& path, const QString& key = QStringLiteral("9C42"));
    ~BaseReader();
    BaseReader(const BaseReader&) = delete;
    BaseReader& operator=(const BaseReader&) = delete;

    /// All rows of a query, or none with Error() set.
    QList<QVariantList> Query(const QString& sql);
    /// Result code of the last query, 0 when it went well.
    int Error() const { return error_; }

private:
    sqlite3* handle_ = nullptr;
    int error_ = 0;
};

/// The words by text id, one for each language, and the languages' names.
struct Texts {
    QStringList languages;
    QMap<int, QStringList> words;
};

/// The texts of the built base, read once for the whole program.
const Texts& BaseTexts();

} // namespace base_test
