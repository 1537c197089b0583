#pragma once

#include <cstddef>
#include <cstdint>

// Turns a crash of the process into one report file in the "Crashes" folder of the data folder.
// The crashing thread only copies what it knows into static storage and wakes a reporter thread
// that has waited since start-up; that thread walks the crashed stack and writes the report.
// There is no shutdown: the hooks stay for the life of the process.
struct CrashReporter {
    // Arms the reporter; `appWord` is a static string. Called once, first thing in the process.
    // Its first act is the first use of DataPaths, before anything is armed.
    static void Start(const char* appWord);
    // Names the stage that reports carry; `word` must be a static string.
    static void SetStage(const char* word);
    // Walks the crashed stack and writes the report; runs on the reporter thread only.
    static void WriteReport();
};

// Codes that reports give for crashes that arrive through the runtime's hooks.
inline constexpr uint32_t kPureCallCode = 0xE0000001;
inline constexpr uint32_t kInvalidParameterCode = 0xE0000002;
inline constexpr uint32_t kTerminateCode = 0xE0000003;
inline constexpr uint32_t kAbortCode = 0xE0000004;
// The exit code of the process after a hook.
inline constexpr uint32_t kHookExitCode = 3;

// Sizes of the captured lists and of the detail text.
inline constexpr int kMaxFrames = 48;
inline constexpr int kMaxBacktrace = 64;
inline constexpr size_t kDetailSize = 160;

// The detail of an access violation or in-page error: "reading 0x", "writing 0x" or
// "executing 0x" for the operation, then the address as 16 hex digits.
void FormatAccessDetail(char (&detail)[kDetailSize], uint64_t operation, uint64_t address);

// When the walk found too few frames, the crashing thread's own backtrace may know more: from the
// first entry equal to `pc` on, at most kMaxFrames entries are copied over the start of `frames`.
// Gives the new frame count: the copied number if it is larger than `frameCount`.
int FallBackToBacktrace(const uint64_t* backtrace, int backtraceCount, uint64_t pc,
                        uint64_t* frames, int frameCount);
