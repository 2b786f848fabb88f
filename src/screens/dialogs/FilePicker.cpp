#include "screens/dialogs/FilePicker.h"

#include "core/Config.h"
#include "screens/dialogs/dlgFilePicker.h"
#include "screens/touch/ModalDialog.h"

#include <QDir>
#include <QFileInfo>
#include <functional>

namespace FilePicker {

namespace {

/// Shows the dialog from a place and gives what was chosen; nothing if it went while it waited.
QString Choose(dlgFilePicker::Mode mode, const QString& folder,
               const std::function<void(dlgFilePicker&)>& prepare, const QString& name = {}) {
    return RunDialog(
               new dlgFilePicker(mode),
               [&](dlgFilePicker& dialog) {
                   prepare(dialog);
                   dialog.setStart(NormalPath(folder), name);
               },
               [](const dlgFilePicker& dialog) { return dialog.Path(); })
        .value_or(QString());
}

} // namespace

QString Open(const QString& folder, const QString& name, const QString& filter) {
    return Choose(
        dlgFilePicker::Mode::Open, folder, [&](dlgFilePicker& dialog) { dialog.setFilter(filter); },
        name);
}

QString SaveAs(const QString& folder, const QString& name, const QString& filter) {
    return Choose(
        dlgFilePicker::Mode::Save, folder, [&](dlgFilePicker& dialog) { dialog.setFilter(filter); },
        name);
}

QString ChooseFolder(const QString& folder, const QString& title) {
    return Choose(dlgFilePicker::Mode::Folder, folder, [&](dlgFilePicker& dialog) {
        if (!title.isEmpty())
            dialog.setTitle(title);
    });
}

QString NormalPath(const QString& path) {
    return QDir::cleanPath(QString(path).replace(u'\\', u'/'));
}

QString Folder(const QString& path) {
    const QString normal = NormalPath(path);
    const qsizetype end = normal.lastIndexOf(u'/');
    return end == 0 ? QStringLiteral("/") : normal.left(qMax(end, qsizetype(0)));
}

QString FileName(const QString& path) {
    return QFileInfo(NormalPath(path)).fileName();
}

QString BaseName(const QString& path) {
    return QFileInfo(NormalPath(path)).completeBaseName();
}

QString SiteName(const QString& lastUsed) {
    constexpr int Unnamed = 50010;
    return Folder(lastUsed).isEmpty() ? GetText(Unnamed) : BaseName(lastUsed);
}

} // namespace FilePicker
