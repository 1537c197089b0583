#pragma once

#include <string>

// CrashReporter::Start with the data folder given, rather than taken from DataPaths: Start calls
// it with DataPaths::Get().dataDir, and the crash tests' helper program with a folder of its own.
void ArmCrashReporter(const char* appWord, const std::wstring& dataDir);
