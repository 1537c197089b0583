#include "platform/companion/shared_read_stream_win.h"

#include <atomic>
#include <new>
#include <utility>

#include "platform/win_handles.h"

namespace {

// What a decoder asks of a stream: reads, seeks and the size. Anything that writes is refused.
class SharedReadStream final : public IStream {
public:
    explicit SharedReadStream(UniqueHandle file) : handle(std::move(file)) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
        if (!object) return E_POINTER;
        if (IsEqualIID(id, IID_IUnknown) || IsEqualIID(id, IID_ISequentialStream) ||
            IsEqualIID(id, IID_IStream)) {
            *object = static_cast<IStream*>(this);
            AddRef();
            return S_OK;
        }
        *object = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = --references;
        if (left == 0) delete this;
        return left;
    }

    HRESULT STDMETHODCALLTYPE Read(void* buffer, ULONG size, ULONG* read) override {
        DWORD done = 0;
        const BOOL ok = ReadFile(handle.Get(), buffer, size, &done, nullptr);
        if (read) *read = done;
        if (!ok) return HRESULT_FROM_WIN32(GetLastError());
        return done == size ? S_OK : S_FALSE;
    }
    HRESULT STDMETHODCALLTYPE Write(const void*, ULONG, ULONG* written) override {
        if (written) *written = 0;
        return STG_E_ACCESSDENIED;
    }
    HRESULT STDMETHODCALLTYPE Seek(LARGE_INTEGER move, DWORD origin,
                                   ULARGE_INTEGER* position) override {
        static_assert(STREAM_SEEK_SET == FILE_BEGIN && STREAM_SEEK_CUR == FILE_CURRENT &&
                      STREAM_SEEK_END == FILE_END);
        LARGE_INTEGER now{};
        if (origin > STREAM_SEEK_END) return STG_E_INVALIDFUNCTION;
        if (!SetFilePointerEx(handle.Get(), move, &now, origin)) return STG_E_INVALIDPOINTER;
        if (position) position->QuadPart = static_cast<ULONGLONG>(now.QuadPart);
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Stat(STATSTG* stat, DWORD) override {
        if (!stat) return STG_E_INVALIDPOINTER;
        LARGE_INTEGER size{};
        if (!GetFileSizeEx(handle.Get(), &size)) return HRESULT_FROM_WIN32(GetLastError());
        *stat = {};
        stat->type = STGTY_STREAM;
        stat->cbSize.QuadPart = static_cast<ULONGLONG>(size.QuadPart);
        stat->grfMode = STGM_READ | STGM_SHARE_DENY_NONE;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE SetSize(ULARGE_INTEGER) override { return STG_E_ACCESSDENIED; }
    HRESULT STDMETHODCALLTYPE CopyTo(IStream*, ULARGE_INTEGER, ULARGE_INTEGER*,
                                     ULARGE_INTEGER*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Commit(DWORD) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE Revert() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override {
        return STG_E_INVALIDFUNCTION;
    }
    HRESULT STDMETHODCALLTYPE UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override {
        return STG_E_INVALIDFUNCTION;
    }
    HRESULT STDMETHODCALLTYPE Clone(IStream** copy) override {
        if (copy) *copy = nullptr;
        return E_NOTIMPL;
    }

private:
    ~SharedReadStream() = default;

    UniqueHandle handle;
    std::atomic<ULONG> references{1};
};

} // namespace

Microsoft::WRL::ComPtr<IStream> OpenSharedReadStream(const std::wstring& path) {
    UniqueHandle file(CreateFileW(path.c_str(), GENERIC_READ,
                                  FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                  OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
    Microsoft::WRL::ComPtr<IStream> stream;
    if (!file.Valid()) return stream;
    stream.Attach(new (std::nothrow) SharedReadStream(std::move(file)));
    return stream;
}
