#pragma once

/// Says how the screens are made and who shows the messages. Called once, ahead of everything
/// that may show something.
void RegisterScreens();
