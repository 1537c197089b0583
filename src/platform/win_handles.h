#pragma once

#include <windows.h>

#include <objbase.h>
#include <propidl.h>

#include <utility>

// Owners of the Windows resources that the platform layer takes. Each frees what it holds and
// nothing else; none can be copied.

// A kernel handle: both null and INVALID_HANDLE_VALUE count as "none".
class UniqueHandle {
public:
    UniqueHandle() = default;
    explicit UniqueHandle(HANDLE value) : handle(value) {}
    UniqueHandle(UniqueHandle&& other) noexcept : handle(std::exchange(other.handle, nullptr)) {}
    UniqueHandle& operator=(UniqueHandle&& other) noexcept {
        if (this != &other) Reset(std::exchange(other.handle, nullptr));
        return *this;
    }
    ~UniqueHandle() { Reset(); }
    UniqueHandle(const UniqueHandle&) = delete;
    UniqueHandle& operator=(const UniqueHandle&) = delete;

    bool Valid() const { return handle != nullptr && handle != INVALID_HANDLE_VALUE; }
    HANDLE Get() const { return handle; }
    void Reset(HANDLE value = nullptr) {
        if (Valid()) CloseHandle(handle);
        handle = value;
    }

private:
    HANDLE handle = nullptr;
};

// A window's DC from GetDC, given back with ReleaseDC.
class WindowDc {
public:
    explicit WindowDc(HWND window) : hwnd(window), dc(GetDC(window)) {}
    ~WindowDc() {
        if (dc) ReleaseDC(hwnd, dc);
    }
    WindowDc(const WindowDc&) = delete;
    WindowDc& operator=(const WindowDc&) = delete;
    HDC Get() const { return dc; }

private:
    HWND hwnd;
    HDC dc;
};

// A GDI resource of our own, freed with `Free` at the end of its scope.
template <class Value, BOOL(WINAPI* Free)(Value)> class GdiOwned {
public:
    explicit GdiOwned(Value held) : value(held) {}
    ~GdiOwned() {
        if (value) Free(value);
    }
    GdiOwned(const GdiOwned&) = delete;
    GdiOwned& operator=(const GdiOwned&) = delete;
    Value Get() const { return value; }

private:
    Value value;
};

// A memory DC from CreateCompatibleDC.
using MemoryDc = GdiOwned<HDC, DeleteDC>;
// A GDI object (font, bitmap, brush). Declare it before the SelectedObject that puts it into a
// DC, so that it is deselected before it is deleted.
using GdiObject = GdiOwned<HGDIOBJ, DeleteObject>;

// An object selected into a DC for a scope; the DC's earlier object is selected back at its end.
class SelectedObject {
public:
    SelectedObject(HDC target, HGDIOBJ object)
        : dc(target), previous(object ? SelectObject(target, object) : nullptr) {}
    ~SelectedObject() {
        if (previous && previous != HGDI_ERROR) SelectObject(dc, previous);
    }
    SelectedObject(const SelectedObject&) = delete;
    SelectedObject& operator=(const SelectedObject&) = delete;
    // False when nothing was selected (no object, or the DC refused it).
    bool Selected() const { return previous && previous != HGDI_ERROR; }

private:
    HDC dc;
    HGDIOBJ previous;
};

// A COM apartment of this thread, left again only if entering it succeeded (S_FALSE included).
class ComApartment {
public:
    ComApartment() : result(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)) {}
    ~ComApartment() { Leave(); }
    ComApartment(const ComApartment&) = delete;
    ComApartment& operator=(const ComApartment&) = delete;
    // Leaves the apartment now rather than at the end of the scope.
    void Leave() {
        if (SUCCEEDED(result)) CoUninitialize();
        result = E_FAIL;
    }

private:
    HRESULT result;
};

// A PROPVARIANT for a call to fill, cleared at the end of its scope.
class PropVariantValue {
public:
    PropVariantValue() { PropVariantInit(&value); }
    ~PropVariantValue() { PropVariantClear(&value); }
    PropVariantValue(const PropVariantValue&) = delete;
    PropVariantValue& operator=(const PropVariantValue&) = delete;
    PROPVARIANT* Get() { return &value; }
    const PROPVARIANT& operator*() const { return value; }

private:
    PROPVARIANT value;
};

// Frees a GDI object handed to the logic as an opaque PlatformObject.
inline void DeleteGdiObject(void* object) { DeleteObject(static_cast<HGDIOBJ>(object)); }
