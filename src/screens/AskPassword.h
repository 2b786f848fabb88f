#pragma once

/// Asks the operator for a code. True when the dialog was confirmed, whatever was typed.
bool AskPassword();
