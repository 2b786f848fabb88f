#pragma once

#include <QString>

/// The file dialogs of the touch screen. A filter is pairs of a name and a pattern, joined by
/// bars: "Words (*.kv2)|*.kv2"; a pattern may hold several parts, joined by ";".
namespace FilePicker {

/// Lets the user choose a file that exists, starting at a folder and a file name. Full path, empty
/// when nothing was chosen. A start folder that isn't there is replaced by the program's.
QString Open(const QString& folder, const QString& name, const QString& filter);

/// Lets the user choose where to save. Adds the extension of the pattern if the name has none of
/// its extensions, and asks before it gives a file that exists. Full path or empty.
QString SaveAs(const QString& folder, const QString& name, const QString& filter);

/// Lets the user choose a folder under a title, or a common one. Path without a separator at its
/// end, or empty.
QString ChooseFolder(const QString& folder, const QString& title = {});

/// A path in one form: separators of other systems replaced, doubled ones and those at the end
/// gone.
QString NormalPath(const QString& path);
/// Folder of a file's path; empty when the path has none.
QString Folder(const QString& path);
/// Name of a file's path with its extension.
QString FileName(const QString& path);
/// The same without the extension.
QString BaseName(const QString& path);
/// What the screens show of the setting "LastUsed": the base name of a path, or else, whatever
/// stands there, the word for a site without a file in the language in use.
QString SiteName(const QString& lastUsed);

} // namespace FilePicker
