#include "config_screens/mirrors/MirrorRules.h"

#include "bus/Miroirs.h"
#include "core/Config.h"
#include "core/Message.h"
#include "model/MirrorClass.h"
#include "model/SiteFile.h"

namespace MirrorRules {

namespace {
constexpr int AlreadyThere = 20005;
constexpr int ClosesACircle = 20010;
} // namespace

bool IsAllowed(const MirrorClasses& rules, const MirrorClass& wanted, const QString& changed) {
    if (wanted.ID() != changed && rules.IsAlreadyPresent(wanted)) {
        Message(GetText(AlreadyThere), Messages::Critical);
        return false;
    }
    if (Miroirs::IsMirrorLoop(rules, wanted.FromModule(), wanted.FromChannel(), wanted.ToModule(),
                              wanted.ToChannel())) {
        Message(GetText(ClosesACircle), Messages::Critical);
        return false;
    }
    return true;
}

void Remove(MirrorClasses& rules, const QString& id) {
    for (int index = rules.Count(); index >= 1; --index) {
        if (rules.Item(index).ID() == id)
            rules.Remove(index);
    }
}

QByteArray BytesOf(const MirrorClasses& rules) {
    SiteFileWriter file;
    rules.SaveTo(file);
    return file.Bytes();
}

void Restore(MirrorClasses& rules, const QByteArray& bytes) {
    SiteFileReader file(bytes);
    rules.RemoveAll();
    rules.ReadFrom(file);
}

} // namespace MirrorRules
