// No button leads nowhere.

#include "TechnicianFixture.h"
#include "config_screens/ConfigScreens.h"

#include <QFile>
#include <QRegularExpression>

namespace {
class EveryForm : public TechnicianTest {};
} // namespace

TEST_F(EveryForm, ThatHasANameIsThere) {
    RegisterConfigScreens();
    QFile names(QStringLiteral(KORVANELLE_SOURCE_DIR "/src/core/FormNames.h"));
    ASSERT_TRUE(names.open(QIODevice::ReadOnly));
    static const QRegularExpression Name("QStringLiteral\\(\"(\\w+)\"\\)");
    auto found = Name.globalMatch(QString::fromUtf8(names.readAll()));
    // Those that only their callers make.
    const QStringList made{FormNames::dlgMessage, FormNames::dlgPortDevice};
    int count = 0;
    while (found.hasNext()) {
        const QString name = found.next().captured(1);
        EXPECT_TRUE(made.contains(name) || Forms::Names().contains(name)) << name.toStdString();
        ++count;
    }
    EXPECT_GT(count, 30);
}
