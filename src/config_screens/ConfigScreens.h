#pragma once

/// Makes the screens of the configuration known to the registry; after `RegisterScreens`.
void RegisterConfigScreens();
