#include "screens/AskPassword.h"

// Does nothing yet: nobody can be connected.
bool AskPassword() {
    return false;
}
