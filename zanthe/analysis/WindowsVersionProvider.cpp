#include "zanthe/analysis/WindowsVersionProvider.h"

#include "platform/win32/Version.h"

namespace Zanthe {

bool WindowsVersionProvider::IsWindows62OrLater() const {
    OSVERSIONINFOEXW wanted{};
    wanted.dwOSVersionInfoSize = sizeof(wanted);
    wanted.dwMajorVersion = 6;
    wanted.dwMinorVersion = 2;
    wanted.wServicePackMajor = 0;
    DWORDLONG condition = 0;
    condition = VerSetConditionMask(condition, VER_MAJORVERSION, VER_GREATER_EQUAL);
    condition = VerSetConditionMask(condition, VER_MINORVERSION, VER_GREATER_EQUAL);
    condition = VerSetConditionMask(condition, VER_SERVICEPACKMAJOR, VER_GREATER_EQUAL);
    const DWORD fields = VER_MAJORVERSION | VER_MINORVERSION | VER_SERVICEPACKMAJOR;
    return VerifyVersionInfoW(&wanted, fields, condition) != FALSE;
}

} // namespace Zanthe
