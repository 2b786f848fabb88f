#pragma once

#include "platform/RecordDatabase.h"

#include <QHash>
#include <QMap>
#include <QString>
#include <QStringList>

/// The built configuration base.
inline const QString BasePath = QStringLiteral(KORVANELLE_BUILD_DIR "/korvanelle.cfg");
/// The folder of the plain files that it is made of.
inline const QString DataFolder = QStringLiteral(KORVANELLE_SOURCE_DIR "/data");

/// A table of a base: the record layer is proved apart, on bases that it didn't make.
inline platform::RecordTable BaseTable(const QString& name, const QString& path = BasePath) {
    return platform::RecordDatabase(path, QStringLiteral(";pwd=9C42")).OpenTable(name);
}

/// The words by text id, one for each language, and the languages' names.
struct LanguageTexts {
    QStringList languages;
    QMap<int, QStringList> words;
};

/// The texts of the built base, read once for the whole program.
inline const LanguageTexts& BaseTexts() {
    static const LanguageTexts texts = [] {
        LanguageTexts read;
        const platform::RecordTable table = BaseTable(QStringLiteral("T_Language"));
        constexpr int First = 3;
        for (int field = First; field < table.FieldCount(); ++field)
            read.languages += table.FieldName(field);
        for (const auto& [id, row] : table.ReadAll().asKeyValueRange()) {
            for (const QVariant& words : row.mid(First))
                read.words[int(id)] += words.toString();
        }
        return read;
    }();
    return texts;
}
