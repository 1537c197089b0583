#pragma once

// Arms the crash capture of the process and names the stage that reports carry.
//
// Stand-in until the diagnostics issue lands: Start makes the first use of DataPaths (which is
// when the folders are worked out) and keeps the app word; SetStage keeps the stage word. No hook
// is armed yet. The diagnostics issue replaces the bodies.
struct CrashReporter {
    static void Start(const char* appWord);
    // `word` points at a static string; the call does nothing else.
    static void SetStage(const char* word);
    static const char* Stage();
    static const char* App();
};
