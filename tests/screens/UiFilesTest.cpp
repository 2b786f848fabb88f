// Judges the designs as they stand in the files: what a screen's own code does later can't repair
// a control that lies outside, over another one, or that cuts its words in one of the languages.

#include "screens/touch/Theme.h"
#include "screens/touch/TouchImage.h"
#include "support/Bench.h"

#include <QDirIterator>
#include <QFile>
#include <QFontMetrics>
#include <QHash>
#include <QStringList>
#include <QXmlStreamReader>

namespace {

constexpr int SmallestTarget = 44;
/// Frame and padding of labels with a field, margin of buttons, pixels on both sides together.
constexpr int FieldPadding = 14;
constexpr int ButtonPadding = 12;

struct Control {
    QString kind, name, file;
    int parent = -1;
    /// Plain properties by name, parts of the rectangle and of the font by theirs.
    QHash<QString, QString> values;

    bool Is(const char* value) const { return values.value(value) == "true"; }
    bool IsDecoration() const { return name.startsWith("frmFrames"); }
    bool IsTouched() const { return kind == "TouchImage" || kind == "QPushButton"; }
    std::string Path() const { return (file + u'.' + name).toStdString(); }
    QRect Area() const {
        return {values.value("x").toInt(), values.value("y").toInt(), values.value("width").toInt(),
                values.value("height").toInt()};
    }
};

using Design = QList<Control>;

/// Arrays of which one control is shown at a time, controls that stand in for another one, and
/// labels that are the caption of their tile.
bool ShareAPlace(const Control& a, const Control& b) {
    static const QStringList oneOf{"imgStopRun", "imgIcons", "imgComm", "PicPort", "imgFind"};
    static const QList<QPair<QString, QString>> standIns{{"grdAlarms", "txtNoAlarm"},
                                                         {"grdAlarms", "imgNoAlarm"},
                                                         {"lstDevices", "lblNone"},
                                                         {"imgNavig_12", "lblVisuTcde"}};
    const QString array = a.name.section(u'_', 0, 0);
    return (b.name.section(u'_', 0, 0) == array && oneOf.contains(array)) ||
           standIns.contains({a.name, b.name}) || standIns.contains({b.name, a.name});
}

Design Read(const QString& path) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    QXmlStreamReader xml(&file);
    Design design;
    QList<int> open;
    QString property;
    while (!xml.atEnd()) {
        const bool begins = xml.readNext() == QXmlStreamReader::StartElement;
        const QString element = xml.name().toString();
        const auto attribute = [&](const char* name) {
            return xml.attributes().value(QLatin1String(name)).toString();
        };
        if (begins && element == "widget") {
            const int parent = open.isEmpty() ? -1 : open.last();
            open += int(design.size());
            design.append(
                {attribute("class"), attribute("name"), path.section(u'/', -1), parent, {}});
        } else if (begins && element == "property") {
            property = attribute("name");
        } else if (begins && !open.isEmpty() && element != "rect" && element != "font") {
            const bool isPart = property == "geometry" || property == "font";
            design[open.last()].values.insert(isPart ? element : property, xml.readElementText());
        } else if (xml.isEndElement() && element == "widget") {
            open.removeLast();
        }
    }
    EXPECT_FALSE(xml.hasError()) << path.toStdString() << xml.errorString().toStdString();
    return design;
}

QList<Design> Designs() {
    QList<Design> designs;
    QDirIterator files(QStringLiteral(KORVANELLE_SOURCE_DIR "/src"), {"*.ui"}, QDir::Files,
                       QDirIterator::Subdirectories);
    while (files.hasNext())
        designs.append(Read(files.next()));
    return designs;
}

/// True when a text lies wholly in its control, wrapped between words or not.
bool Fits(const Control& control, const QString& text) {
    QFont font(control.values.value("family", "DejaVu Sans"),
               control.values.value("pointsize", "12").toInt());
    font.setBold(control.Is("bold"));
    font = Theme::DesignFont(font);
    QSize room = control.Area().size();
    bool wrap = control.Is("wordWrap");
    if (control.kind == "TouchImage") {
        TouchImage image;
        image.resize(room);
        image.setFont(font);
        image.setPicture(control.values.value("picture"));
        image.setText(text);
        room = image.CaptionArea().size();
        wrap = true;
    } else if (control.kind != "QLabel" || control.Is("field")) {
        room.rwidth() -= control.kind == "QLabel" ? FieldPadding : ButtonPadding;
    }
    const QRect needed = QFontMetrics(font).boundingRect(QRect(QPoint(), room),
                                                         wrap ? int(Qt::TextWordWrap) : 0, text);
    return needed.width() <= room.width() && needed.height() <= room.height();
}

class UiFilesTest : public Bench {};

} // namespace

TEST_F(UiFilesTest, EveryControlLiesInsideItsFormAndBesideItsSiblings) {
    const QList<Design> designs = Designs();
    ASSERT_GE(designs.size(), 3);
    for (const Design& all : designs) {
        for (int i = 1; i < all.size(); ++i) {
            SCOPED_TRACE(all[i].Path());
            const QRect form(QPoint(), all[all[i].parent].Area().size());
            EXPECT_TRUE(all[i].Area().isValid());
            EXPECT_TRUE(form.contains(all[i].Area()));
            for (int j = 1; j < i; ++j) {
                const bool apart = all[j].parent != all[i].parent || all[i].IsDecoration() ||
                                   all[j].IsDecoration() || ShareAPlace(all[i], all[j]);
                EXPECT_TRUE(apart || !all[i].Area().intersects(all[j].Area()))
                    << "lies over " << all[j].name.toStdString();
            }
        }
    }
}

TEST_F(UiFilesTest, EveryTargetIsLargeEnoughAndEveryTextAndPictureExistsAndFits) {
    int checked = 0;
    for (const Design& design : Designs()) {
        for (const Control& control : design) {
            const QString tag = control.values.value("Tag");
            const QString picture = control.values.value("picture");
            SCOPED_TRACE(control.Path() + ' ' + tag.toStdString());
            const int side = qMin(control.Area().width(), control.Area().height());
            EXPECT_TRUE(!control.IsTouched() || side >= SmallestTarget) << side;
            EXPECT_TRUE(picture.isEmpty() || !Theme::Picture(picture, SmallestTarget).isNull());
            for (qint16 language = 0; !tag.isEmpty() && language < 4; ++language) {
                Global::Get().language = language;
                const QString text = GetText(tag).remove(u'\r');
                ++checked;
                EXPECT_FALSE(text.isEmpty() || text == u'#' + tag + u'#');
                EXPECT_TRUE(Fits(control, text)) << text.toStdString();
            }
        }
    }
    EXPECT_GT(checked, 400);
}
