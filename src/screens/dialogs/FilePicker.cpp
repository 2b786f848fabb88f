#include "screens/dialogs/FilePicker.h"

#include "core/Config.h"
#include "screens/dialogs/dlgFilePicker.h"

#include <QDir>
#include <QFileInfo>
#include <QPointer>

namespace FilePicker {

namespace {

/// Shows the dialog and gives what was chosen; nothing if it went while it waited.
QString Choose(dlgFilePicker* picker) {
    const QPointer<dlgFilePicker> dialog(picker);
    dialog->ShowModal();
    if (!dialog)
        return {};
    QString path = dialog->Path();
    dialog->Unload();
    return path;
}

QString ChooseFile(dlgFilePicker::Mode mode, const QString& folder, const QString& name,
                   const QString& filter) {
    auto* picker = new dlgFilePicker(mode);
    picker->setFilter(filter);
    picker->setStart(NormalPath(folder), name);
    return Choose(picker);
}

} // namespace

QString Open(const QString& folder, const QString& name, const QString& filter) {
    return ChooseFile(dlgFilePicker::Mode::Open, folder, name, filter);
}

QString SaveAs(const QString& folder, const QString& name, const QString& filter) {
    return ChooseFile(dlgFilePicker::Mode::Save, folder, name, filter);
}

QString ChooseFolder(const QString& folder, const QString& title) {
    auto* picker = new dlgFilePicker(dlgFilePicker::Mode::Folder);
    if (!title.isEmpty())
        picker->setTitle(title);
    picker->setStart(NormalPath(folder), QString());
    return Choose(picker);
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
