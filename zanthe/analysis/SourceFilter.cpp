#include "zanthe/analysis/SourceFilter.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "platform/dshow/Uuids.h"
#include "platform/win32/Registry.h"
#include "zanthe/analysis/Extension.h"

namespace {

// The program's own filters go by one class or by another, as the program was installed.
struct OwnFilter {
    GUID standard;
    GUID alternate;
};

constexpr OwnFilter RecordingSource{
    {0xD59FB900, 0xED16, 0x41EB, {0xA3, 0x9C, 0xA2, 0xAF, 0x97, 0x98, 0xA7, 0xAC}},
    {0x8CF33D00, 0x58CA, 0x4D63, {0x98, 0xFB, 0x37, 0x21, 0x29, 0xDE, 0xAC, 0x90}}};
constexpr OwnFilter ImageSource{
    {0xD59FB903, 0xED16, 0x41EB, {0xA3, 0x9C, 0xA2, 0xAF, 0x97, 0x98, 0xA7, 0xAC}},
    {0x8CF33D04, 0x58CA, 0x4D63, {0x98, 0xFB, 0x37, 0x21, 0x29, 0xDE, 0xAC, 0x90}}};

constexpr std::array<std::wstring_view, 10> FileSourceExtensions{
    L"mp4", L"mov", L"mp3", L"wav", L"avi", L"mpg", L"mpeg", L"mts", L"m2ts", L"brec"};
constexpr std::array<std::wstring_view, 2> WindowsMediaExtensions{L"wmv", L"wma"};
constexpr std::array<std::wstring_view, 5> ImageExtensions{L"png", L"bmp", L"jpg", L"jpeg", L"gif"};

template <std::size_t N>
bool Contains(const std::array<std::wstring_view, N>& list, const std::wstring& extension) {
    return std::find(list.begin(), list.end(), extension) != list.end();
}

bool IsNumberOne(HKEY key, LPCWSTR name) {
    DWORD value = 0;
    DWORD type = 0;
    DWORD size = sizeof(value);
    const LSTATUS status =
        RegQueryValueExW(key, name, nullptr, &type, reinterpret_cast<LPBYTE>(&value), &size);
    return status == ERROR_SUCCESS && type == REG_DWORD && value == 1;
}

GUID ClassOf(const OwnFilter& filter, bool alternate) {
    return alternate ? filter.alternate : filter.standard;
}

bool IsFilter(const OwnFilter& filter, const GUID& id) {
    return id == filter.standard || id == filter.alternate;
}

} // namespace

bool IsAlternateInstallMode() {
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Brannock\\Oriel Studio\\tp", 0, KEY_READ,
                      &key) != ERROR_SUCCESS) {
        return false;
    }
    const bool alternate = IsNumberOne(key, L"InstallMode");
    RegCloseKey(key);
    return alternate;
}

GUID SelectSourceFilter(const std::wstring& path) {
    const bool alternate = IsAlternateInstallMode();
    if (LowerCase(path).find(L".orirec!") != std::wstring::npos) {
        return ClassOf(RecordingSource, alternate);
    }
    const std::wstring extension = LowerTextBehindLastDot(path);
    if (Contains(FileSourceExtensions, extension)) {
        return CLSID_AsyncReader;
    }
    if (Contains(WindowsMediaExtensions, extension)) {
        return CLSID_WMAsfReader;
    }
    return Contains(ImageExtensions, extension) ? ClassOf(ImageSource, alternate) : GUID_NULL;
}

const char* SourceFilterName(const GUID& sourceFilter) {
    if (IsFilter(RecordingSource, sourceFilter)) {
        return "recording source";
    }
    if (IsFilter(ImageSource, sourceFilter)) {
        return "image source";
    }
    if (sourceFilter == CLSID_AsyncReader) {
        return "file source";
    }
    if (sourceFilter == CLSID_WMAsfReader) {
        return "Windows Media source";
    }
    return sourceFilter == GUID_NULL ? "none" : nullptr;
}
