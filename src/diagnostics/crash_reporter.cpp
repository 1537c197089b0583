#include "diagnostics/crash_reporter.h"

#include <atomic>

#include "library/data_paths.h"

namespace {
std::atomic<const char*> stageWord{"start"};
std::atomic<const char*> appWordSeen{""};
} // namespace

void CrashReporter::Start(const char* appWord) {
    DataPaths::Get();
    appWordSeen.store(appWord);
}

void CrashReporter::SetStage(const char* word) { stageWord.store(word); }

const char* CrashReporter::Stage() { return stageWord.load(); }

const char* CrashReporter::App() { return appWordSeen.load(); }
