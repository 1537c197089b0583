/* A DLL that stands for one planted beside the saver: loaded into a process, it leaves
   "<its own path>.loaded" behind and refuses to load, so that the process goes on without it. */
#include <windows.h>

BOOL WINAPI DllMain(HINSTANCE self, DWORD reason, LPVOID reserved) {
    wchar_t path[MAX_PATH + 8] = {0};
    if (reason == DLL_PROCESS_ATTACH && GetModuleFileNameW(self, path, MAX_PATH) < MAX_PATH)
        CloseHandle(CreateFileW(lstrcatW(path, L".loaded"), GENERIC_WRITE, 0, NULL, CREATE_ALWAYS,
                                0, NULL));
    return reason != DLL_PROCESS_ATTACH;
}
