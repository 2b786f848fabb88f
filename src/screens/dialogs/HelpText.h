#pragma once

#include <QImage>
#include <QList>
#include <QString>
#include <QTextBrowser>

/// The help as it is read. Its source names what stands on the screens by `{{number}}`, a text of
/// the language base, and by `{{name}}`, a picture; `{{contents}}` is where the links to the
/// chapters go. So a text that changes never makes the help wrong.
namespace HelpText {

/// Scheme of the addresses of pictures that are drawn and not read from a file.
inline const QString PictureScheme = QStringLiteral("picture");

/// A heading: of a group of chapters (level 1, no anchor) or of a chapter (level 2).
struct Heading {
    int level = 0;
    QString anchor;
    QString title;
};
QList<Heading> Headings(const QString& source);

/// The source of a file, in UTF-8; empty when it can't be read.
QString Read(const QString& path);
/// The source with words, pictures and, if they are wanted, the links in it.
QString Filled(QString source, bool withContents = true);
/// The button with the picture of an address of `PictureScheme`, `side` pixels wide and high.
QImage Picture(const QUrl& address, int side);

} // namespace HelpText

/// Shows a file of the help as it is read.
class HelpBrowser : public QTextBrowser {
    Q_OBJECT
public:
    using QTextBrowser::QTextBrowser;
    QVariant loadResource(int type, const QUrl& name) override;
};
