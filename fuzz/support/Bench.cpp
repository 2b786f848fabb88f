#include "fuzz/support/Bench.h"

#include "core/Config.h"
#include "core/DateTimes.h"
#include "core/Global.h"
#include "core/Message.h"
#include "fuzz/support/MemoryFiles.h"
#include "platform/Folders.h"
#include "platform/Sound.h"

#include <cstdio>
#include <cstdlib>

namespace Fuzz {

namespace {

void SetUp() {
    const QString name = QStringLiteral("korvanelle");
    platform::OverrideApplication(QStringLiteral(KORVANELLE_BUILD_DIR), name);
    Messages::Install([](const QString&, int, bool) { return int(Messages::Ok); });
    DateTimes::ReadLocale(QLocale::c());
    Require(Config::OpenConfigBase(), "the configuration base opens");
    platform::OverrideApplication(QStringLiteral("/memory"), name);
    Global::ReadMarks();
    Global::Get().sound = std::make_unique<platform::SilentSound>();
}

} // namespace

platform::TestClock& Prepare() {
    static platform::TestClock clock;
    static const bool once = [] {
        SetUp();
        return true;
    }();
    static_cast<void>(once);
    clock.Set(2024, 3, 15, 12, 0, 0);
    Global::Get().currentPriority = 0;
    MemoryFiles::Clear();
    return clock;
}

void Require(bool holds, const char* what) {
    if (holds)
        return;
    std::fprintf(stderr, "This doesn't hold: %s\n", what);
    std::abort();
}

} // namespace Fuzz
