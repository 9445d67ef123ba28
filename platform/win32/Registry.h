// Registry values, out of an INI file of the user's. Stands for winreg.h, for reading only.
//
//     HKEY key = nullptr;
//     if (RegOpenKeyExW(HKEY_CURRENT_USER, L"Software\\Vendor", 0, KEY_READ, &key) ==
//     ERROR_SUCCESS)
//         ... RegQueryValueExW(key, L"Flag", nullptr, &type, bytes, &size) ... RegCloseKey(key);
//
// The file is $ZANTHE_REGISTRY, else zanthe/registry.ini in the user's configuration folder
// ($XDG_CONFIG_HOME, else ~/.config). A section is a key, written from its root; a value is a
// 32-bit number in hexadecimal behind "dword:", or else text:
//
//     [HKEY_LOCAL_MACHINE\SOFTWARE\Vendor]
//     InstallMode = dword:00000001
//     Edition = Studio
//
// Without the file every key is absent. It is read anew each time a key of a root is opened.
// Keys and value names are compared without regard to the case of ASCII letters.
//
// Thread-safety: safe from any thread; one handle serves one thread at a time.
#pragma once

#include <string>

#include "platform/win32/Types.h"

namespace win32 {
struct RegistryKey;
}

using HKEY = win32::RegistryKey*;
using REGSAM = DWORD;
using LSTATUS = LONG;

// Roots are numbers in the place of a pointer, sign-extended, as they are in winreg.h.
// NOLINTBEGIN(performance-no-int-to-ptr)
inline const HKEY HKEY_CURRENT_USER =
    reinterpret_cast<HKEY>(static_cast<std::intptr_t>(static_cast<LONG>(0x80000001)));
inline const HKEY HKEY_LOCAL_MACHINE =
    reinterpret_cast<HKEY>(static_cast<std::intptr_t>(static_cast<LONG>(0x80000002)));
// NOLINTEND(performance-no-int-to-ptr)

inline constexpr REGSAM KEY_READ = 0x20019;

inline constexpr DWORD REG_SZ = 1;    // wide text with its terminating zero
inline constexpr DWORD REG_DWORD = 4; // a 32-bit number

inline constexpr LSTATUS ERROR_SUCCESS = 0;
inline constexpr LSTATUS ERROR_FILE_NOT_FOUND = 2;
inline constexpr LSTATUS ERROR_INVALID_HANDLE = 6;
inline constexpr LSTATUS ERROR_INVALID_PARAMETER = 87;
inline constexpr LSTATUS ERROR_MORE_DATA = 234;

// ERROR_SUCCESS and a key in *result, the caller's to give to RegCloseKey. Otherwise *result is
// null: ERROR_FILE_NOT_FOUND where the file has no value in such a key, ERROR_INVALID_HANDLE where
// `root` is not a root above, ERROR_INVALID_PARAMETER where a pointer is null. `options` and
// `access` play no part: every key can be read and none written.
LSTATUS RegOpenKeyExW(HKEY root, LPCWSTR subKey, DWORD options, REGSAM access, HKEY* result);

// The value `name` of an open key. *type and *size (in bytes) are set where the value is there, and
// `data` is filled where it holds that much. type may be null; so may data, to ask for the size,
// and then size too; `reserved` is null.
//
// ERROR_FILE_NOT_FOUND: no such value, nothing is touched. ERROR_MORE_DATA: *size was too small and
// now says what is needed; data is untouched. ERROR_INVALID_HANDLE for null and for a root, which
// has no values of its own; ERROR_INVALID_PARAMETER for data without size.
LSTATUS RegQueryValueExW(HKEY key, LPCWSTR name, LPDWORD reserved, LPDWORD type, LPBYTE data,
                         LPDWORD size);

// Ends an open key. A root stays open and is ERROR_SUCCESS all the same; null is
// ERROR_INVALID_HANDLE.
LSTATUS RegCloseKey(HKEY key);

namespace win32 {

// Reads the registry from the file at `path` (UTF-8) from now on, whatever the environment says;
// an empty path goes back to the environment. For tests.
void SetRegistryFile(const std::string& path);

} // namespace win32
