#include "model/Access.h"

#include "core/Global.h"
#include "model/CurrentConfig.h"

bool AccessOk(int level) {
    if (Global::Get().userLevel >= level)
        return true;
    const ConfigClass& configuration = Global::Configuration();
    for (int i = 1; i <= configuration.UserCount(); ++i) {
        if (configuration.UserLevel(i) == 1)
            return false;
    }
    return true;
}
