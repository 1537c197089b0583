#include "session/settings_handoff.h"

void OpenSettings() {}
