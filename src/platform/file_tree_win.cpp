// The folder logic's view of the machine: known folders through the shell, files through the
// file calls.
#include "platform/file_tree_win.h"

#include <share.h>
#include <shlobj.h>
#include <windows.h>

#include <cstdio>
#include <vector>

#include "library/file_tree.h"
#include "platform/win_handles.h"

namespace {

// Every path that the system fills in here fits a zeroed buffer of 260 characters.
constexpr DWORD kPathCapacity = 260;
// CSIDL_LOCAL_APPDATA with CSIDL_FLAG_CREATE, CSIDL_APPDATA, CSIDL_PERSONAL.
constexpr int kLocalAppData = 0x801C;
constexpr int kRoamingAppData = 26;
constexpr int kDocuments = 5;
// GENERIC_WRITE; CREATE_ALWAYS; FILE_FLAG_DELETE_ON_CLOSE | FILE_ATTRIBUTE_TEMPORARY.
constexpr DWORD kWriteTestAccess = 0x40000000;
constexpr DWORD kWriteTestDisposition = 2;
constexpr DWORD kWriteTestFlags = 0x04000100;
constexpr wchar_t kWriteTestName[] = L"\\.lumivane-write-test";

// A search handle, closed with FindClose.
class FindHandle {
public:
    explicit FindHandle(HANDLE value) : handle(value) {}
    ~FindHandle() {
        if (Valid()) FindClose(handle);
    }
    FindHandle(const FindHandle&) = delete;
    FindHandle& operator=(const FindHandle&) = delete;
    bool Valid() const { return handle != INVALID_HANDLE_VALUE; }
    HANDLE Get() const { return handle; }

private:
    HANDLE handle;
};

// The folder `id` as the shell gives it; nothing when the call fails.
bool KnownFolder(int id, std::wstring& path) {
    wchar_t buffer[kPathCapacity] = {};
    if (FAILED(SHGetFolderPathW(nullptr, id, nullptr, 0, buffer))) return false;
    path = buffer;
    return true;
}

std::wstring KnownFolderOrEmpty(int id) {
    std::wstring path;
    return KnownFolder(id, path) ? path : std::wstring();
}

// Makes `path` with a protected access list of two entries that everything made inside inherits:
// full access for the user of this process and for the system. Nothing of the parent's list
// reaches it, whatever the parent grants to others.
bool CreateOwnFolder(const std::wstring& path) {
    HANDLE token = nullptr;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token)) return false;
    const UniqueHandle heldToken(token);
    alignas(TOKEN_USER) BYTE tokenUser[sizeof(TOKEN_USER) + SECURITY_MAX_SID_SIZE];
    DWORD size = 0;
    if (!GetTokenInformation(token, TokenUser, tokenUser, sizeof tokenUser, &size)) return false;
    PSID user = reinterpret_cast<TOKEN_USER*>(tokenUser)->User.Sid;
    alignas(DWORD) BYTE system[SECURITY_MAX_SID_SIZE];
    DWORD systemSize = sizeof system;
    if (!CreateWellKnownSid(WinLocalSystemSid, nullptr, system, &systemSize)) return false;

    const DWORD aclSize =
        sizeof(ACL) + 2 * sizeof(ACCESS_ALLOWED_ACE) + GetLengthSid(user) + GetLengthSid(system);
    std::vector<DWORD> aclBuffer((aclSize + sizeof(DWORD) - 1) / sizeof(DWORD));
    auto* acl = reinterpret_cast<ACL*>(aclBuffer.data());
    constexpr DWORD kInherited = OBJECT_INHERIT_ACE | CONTAINER_INHERIT_ACE;
    SECURITY_DESCRIPTOR descriptor;
    if (!InitializeAcl(acl, aclSize, ACL_REVISION) ||
        !AddAccessAllowedAceEx(acl, ACL_REVISION, kInherited, FILE_ALL_ACCESS, user) ||
        !AddAccessAllowedAceEx(acl, ACL_REVISION, kInherited, FILE_ALL_ACCESS, system) ||
        !InitializeSecurityDescriptor(&descriptor, SECURITY_DESCRIPTOR_REVISION) ||
        !SetSecurityDescriptorDacl(&descriptor, TRUE, acl, FALSE) ||
        !SetSecurityDescriptorControl(&descriptor, SE_DACL_PROTECTED, SE_DACL_PROTECTED))
        return false;
    SECURITY_ATTRIBUTES attributes{sizeof attributes, &descriptor, FALSE};
    return CreateDirectoryW(path.c_str(), &attributes) != 0;
}

FolderEntry EntryOf(const WIN32_FIND_DATAW& data) {
    const FILETIME& time = data.ftLastWriteTime;
    return {data.cFileName, data.dwFileAttributes,
            uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime};
}

class WindowsFileTree : public FileTree {
public:
    std::wstring ModulePath() override {
        wchar_t buffer[kPathCapacity] = {};
        GetModuleFileNameW(nullptr, buffer, kPathCapacity);
        return buffer;
    }
    std::optional<std::wstring> LocalAppData() override {
        std::wstring path;
        if (!KnownFolder(kLocalAppData, path)) return std::nullopt;
        return path;
    }
    std::wstring TempPath() override {
        wchar_t buffer[kPathCapacity] = {};
        GetTempPathW(kPathCapacity, buffer);
        return buffer;
    }
    std::wstring RoamingAppData() override { return KnownFolderOrEmpty(kRoamingAppData); }
    std::wstring Documents() override { return KnownFolderOrEmpty(kDocuments); }

    uint32_t Attributes(const std::wstring& path) override {
        return GetFileAttributesW(path.c_str());
    }
    bool Move(const std::wstring& from, const std::wstring& to) override {
        // Flags 0: nothing that exists is replaced, and nothing is copied across volumes.
        return MoveFileExW(from.c_str(), to.c_str(), 0) != 0;
    }
    uint32_t LastError() override { return GetLastError(); }
    bool CreateFolder(const std::wstring& path) override {
        return CreateDirectoryW(path.c_str(), nullptr) != 0;
    }
    bool CreateOwnFolder(const std::wstring& path) override { return ::CreateOwnFolder(path); }
    void CreateFolderTree(const std::wstring& path) override {
        SHCreateDirectoryExW(nullptr, path.c_str(), nullptr);
    }
    bool RemoveFolder(const std::wstring& path) override {
        return RemoveDirectoryW(path.c_str()) != 0;
    }
    bool List(const std::wstring& pattern, std::vector<FolderEntry>& entries) override {
        WIN32_FIND_DATAW data{};
        FindHandle search(FindFirstFileW(pattern.c_str(), &data));
        if (!search.Valid()) return false;
        do {
            entries.push_back(EntryOf(data));
        } while (FindNextFileW(search.Get(), &data));
        return true;
    }
    bool CanWriteTo(const std::wstring& folder) override { return ::CanWriteTo(folder); }
    std::optional<std::string> ReadFile(const std::wstring& path) override {
        FILE* file = _wfsopen(path.c_str(), L"rb", _SH_DENYNO);
        if (!file) return std::nullopt;
        std::string bytes;
        char buffer[4096];
        size_t read = 0;
        while ((read = std::fread(buffer, 1, sizeof buffer, file)) > 0) bytes.append(buffer, read);
        std::fclose(file);
        return bytes;
    }
};

} // namespace

bool CanWriteTo(const std::wstring& folder) {
    SHCreateDirectoryExW(nullptr, folder.c_str(), nullptr);
    const std::wstring testFile = folder + kWriteTestName;
    UniqueHandle file(CreateFileW(testFile.c_str(), kWriteTestAccess, 0, nullptr,
                                  kWriteTestDisposition, kWriteTestFlags, nullptr));
    // Closing the handle deletes the file.
    return file.Valid();
}

FileTree& SystemFileTree() {
    static WindowsFileTree tree;
    return tree;
}
