// Judges the designs as they stand in the files: what a screen's own code does later can't repair
// a control that lies outside, over another one, or that cuts its words in one of the languages.

#include "screens/touch/Theme.h"
#include "screens/touch/TouchImage.h"

#include <QDirIterator>
#include <QFile>
#include <QFontMetrics>
#include <QHash>
#include <QStringList>
#include <QXmlStreamReader>
#include <gtest/gtest.h>

namespace {

constexpr int SmallestTarget = 44;
/// Frame and padding of labels with a field, margin of buttons, pixels on both sides together.
constexpr int FieldPadding = 14;
constexpr int ButtonPadding = 12;

struct Control {
    QString kind;
    QString name;
    int parent = -1;
    QRect area;
    QFont font{QStringLiteral("DejaVu Sans"), 12};
    QHash<QString, QString> properties;

    bool Is(const char* property) const {
        return properties.value(QString::fromLatin1(property)) == QLatin1String("true");
    }
    QString Array() const { return name.section(u'_', 0, 0); }
    bool IsDecoration() const { return name.startsWith(QLatin1String("frmFrames")); }
};

struct Design {
    QString file;
    QList<Control> controls;
};

/// Arrays of which one control is shown at a time, and controls that stand in for another one.
bool ShareAPlace(const Control& a, const Control& b) {
    static const QStringList oneOf{QStringLiteral("imgStopRun"), QStringLiteral("imgIcons"),
                                   QStringLiteral("imgComm"), QStringLiteral("PicPort"),
                                   QStringLiteral("imgFind")};
    static const QList<QPair<QString, QString>> standIns{
        {QStringLiteral("grdAlarms"), QStringLiteral("txtNoAlarm")},
        {QStringLiteral("grdAlarms"), QStringLiteral("imgNoAlarm")},
        {QStringLiteral("lstDevices"), QStringLiteral("lblNone")}};
    return (a.Array() == b.Array() && oneOf.contains(a.Array())) ||
           standIns.contains(qMakePair(a.name, b.name)) ||
           standIns.contains(qMakePair(b.name, a.name));
}

class UiReader {
public:
    explicit UiReader(const QString& path) {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        design_.file = path.section(u'/', -1);
        xml_.setDevice(&file);
        if (xml_.readNextStartElement())
            ReadChildren(-1);
        EXPECT_FALSE(xml_.hasError()) << xml_.errorString().toStdString();
    }
    const Design& Result() const { return design_; }

private:
    void ReadChildren(int parent) {
        while (xml_.readNextStartElement()) {
            if (xml_.name() == QLatin1String("widget"))
                ReadWidget(parent);
            else if (xml_.name() == QLatin1String("property") && parent >= 0)
                ReadProperty(parent);
            else
                xml_.skipCurrentElement();
        }
    }
    void ReadWidget(int parent) {
        Control control;
        control.kind = xml_.attributes().value(QLatin1String("class")).toString();
        control.name = xml_.attributes().value(QLatin1String("name")).toString();
        control.parent = parent;
        design_.controls.append(control);
        ReadChildren(int(design_.controls.size()) - 1);
    }
    void ReadProperty(int owner) {
        const QString name = xml_.attributes().value(QLatin1String("name")).toString();
        while (xml_.readNextStartElement()) {
            if (xml_.name() == QLatin1String("rect"))
                ReadRect(design_.controls[owner].area);
            else if (xml_.name() == QLatin1String("font"))
                ReadFont(design_.controls[owner].font);
            else
                design_.controls[owner].properties.insert(name, xml_.readElementText());
        }
    }
    void ReadRect(QRect& area) {
        QHash<QString, int> numbers;
        while (xml_.readNextStartElement()) {
            const QString name = xml_.name().toString();
            numbers.insert(name, xml_.readElementText().toInt());
        }
        area =
            QRect(numbers.value(QStringLiteral("x")), numbers.value(QStringLiteral("y")),
                  numbers.value(QStringLiteral("width")), numbers.value(QStringLiteral("height")));
    }
    void ReadFont(QFont& font) {
        while (xml_.readNextStartElement()) {
            const QString name = xml_.name().toString();
            const QString value = xml_.readElementText();
            if (name == QLatin1String("pointsize"))
                font.setPointSize(value.toInt());
            else if (name == QLatin1String("bold"))
                font.setBold(value == QLatin1String("true"));
            else if (name == QLatin1String("family"))
                font.setFamily(value);
        }
    }

    QXmlStreamReader xml_;
    Design design_;
};

QList<Design> Designs() {
    QList<Design> designs;
    QDirIterator files(QStringLiteral(KORVANELLE_SOURCE_DIR "/src"), {QStringLiteral("*.ui")},
                       QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext())
        designs.append(UiReader(files.next()).Result());
    return designs;
}

/// The words of the plain table by text number, one for each language.
QHash<QString, QStringList> TextTable() {
    QHash<QString, QStringList> words;
    QFile file(QStringLiteral(KORVANELLE_SOURCE_DIR "/data/texts.tsv"));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    const QString all = QString::fromUtf8(file.readAll()).remove(u'\r');
    for (const QString& line : all.split(u'\n')) {
        QStringList fields = line.split(u'\t');
        if (fields.size() > 3)
            words.insert(fields[0],
                         fields.mid(3).replaceInStrings(QStringLiteral("|"), QStringLiteral("\n")));
    }
    return words;
}

/// True when a text lies wholly in an area, wrapped between words or not.
bool Fits(const QString& text, const QFont& font, const QSize& room, bool wrap) {
    const QFontMetrics metrics(font);
    const int flags = wrap ? int(Qt::TextWordWrap) : 0;
    const QRect needed = metrics.boundingRect(QRect(QPoint(), room), flags, text);
    return needed.width() <= room.width() && needed.height() <= room.height();
}

bool Fits(const Control& control, const QString& text) {
    const QFont font = Theme::DesignFont(control.font);
    if (control.kind == QLatin1String("QLabel")) {
        const int padding = control.Is("field") ? FieldPadding : 0;
        return Fits(text, font, control.area.size() - QSize(padding, 0), control.Is("wordWrap"));
    }
    if (control.kind == QLatin1String("TouchImage")) {
        TouchImage image;
        image.resize(control.area.size());
        image.setFont(font);
        image.setPicture(control.properties.value(QStringLiteral("picture")));
        image.setText(text);
        return Fits(text, font, image.CaptionArea().size(), true);
    }
    return Fits(text, font, control.area.size() - QSize(ButtonPadding, 0), false);
}

bool IsTouched(const Control& control) {
    return control.kind == QLatin1String("TouchImage") ||
           control.kind == QLatin1String("QPushButton");
}

} // namespace

TEST(UiFilesTest, EveryControlLiesInsideItsFormAndBesideItsSiblings) {
    const QList<Design> designs = Designs();
    ASSERT_GE(designs.size(), 3);
    for (const Design& design : designs) {
        const QList<Control>& all = design.controls;
        for (int i = 1; i < all.size(); ++i) {
            SCOPED_TRACE((design.file + u'.' + all[i].name).toStdString());
            const QRect form(QPoint(), all[all[i].parent].area.size());
            EXPECT_TRUE(all[i].area.isValid());
            EXPECT_TRUE(form.contains(all[i].area));
            for (int j = 1; j < i; ++j) {
                const bool apart = all[j].parent != all[i].parent || all[i].IsDecoration() ||
                                   all[j].IsDecoration() || ShareAPlace(all[i], all[j]);
                EXPECT_TRUE(apart || !all[i].area.intersects(all[j].area))
                    << "lies over " << all[j].name.toStdString();
            }
        }
    }
}

TEST(UiFilesTest, EveryTargetIsLargeEnoughForAFinger) {
    for (const Design& design : Designs()) {
        for (const Control& control : design.controls) {
            if (!IsTouched(control))
                continue;
            SCOPED_TRACE((design.file + u'.' + control.name).toStdString());
            EXPECT_GE(control.area.width(), SmallestTarget);
            EXPECT_GE(control.area.height(), SmallestTarget);
        }
    }
}

TEST(UiFilesTest, EveryTextExistsAndFitsItsControlInAllLanguages) {
    const QHash<QString, QStringList> words = TextTable();
    int checked = 0;
    for (const Design& design : Designs()) {
        for (const Control& control : design.controls) {
            const QString tag = control.properties.value(QStringLiteral("Tag"));
            if (tag.isEmpty())
                continue;
            SCOPED_TRACE((design.file + u'.' + control.name + u' ' + tag).toStdString());
            EXPECT_TRUE(words.contains(tag));
            for (const QString& word : words.value(tag)) {
                ++checked;
                EXPECT_FALSE(word.isEmpty());
                EXPECT_TRUE(Fits(control, word)) << word.toStdString();
            }
        }
    }
    EXPECT_GT(checked, 100);
}

TEST(UiFilesTest, EveryPictureIsInTheResources) {
    for (const Design& design : Designs()) {
        for (const Control& control : design.controls) {
            const QString picture = control.properties.value(QStringLiteral("picture"));
            if (picture.isEmpty())
                continue;
            EXPECT_FALSE(Theme::Picture(picture, SmallestTarget).isNull())
                << design.file.toStdString() << " " << picture.toStdString();
        }
    }
}
