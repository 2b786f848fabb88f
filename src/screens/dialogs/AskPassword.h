#pragma once

class ScreenForm;

/// A form that shows who is connected. It is told when a prompt of its own is through: any code may
/// have changed that, one that isn't enough as well.
class ShowsLogin {
public:
    virtual ~ShowsLogin() = default;
    virtual void ShowLogin() = 0;
};

/// Asks the operator for a code and connects its user; an empty code disconnects. A code that
/// nobody has is told in the prompt, which stays until another one is confirmed or it is given up.
/// `caller` is the screen that asks: the prompt doesn't outlive it. `level` is told in the prompt
/// when it is above 0. False when the prompt was given up: cancelled, unattended or taken away.
bool AskPassword(ScreenForm* caller = nullptr, int level = 0);

/// Asks for a code until the level is reached. Asks nobody on an open site. False when the operator
/// gives up or `caller` is unloaded meanwhile: the caller does nothing then.
bool InsistOnLevel(ScreenForm& caller, int level);

/// The same with one code: true when its user has the level.
bool TryLevel(ScreenForm& caller, int level);

/// True on a site with a user of level 1: levels count there.
bool IsGuarded();
