#pragma once

// Hands the user over to the companion application's settings.
//
// Stand-in until the settings handoff lands: it does nothing, so /c ends at once with exit
// code 0 and no window. The settings handoff issue replaces the body.
void OpenSettings();
