#include "platform/win32/Version.h"

#include <array>
#include <mutex>

namespace {

std::mutex versionMutex;
win32::SystemVersion systemVersion; // guarded by versionMutex

win32::SystemVersion CurrentVersion() {
    const std::lock_guard lock(versionMutex);
    return systemVersion;
}

constexpr unsigned int ConditionBits = 3;

// Where a field's condition stands in the mask: three bits a field, by the field's own bit.
unsigned int ConditionShift(DWORD field) {
    unsigned int shift = 0;
    for (DWORD bit = 1; bit < field; bit <<= 1) {
        shift += ConditionBits;
    }
    return shift;
}

BYTE ConditionFor(DWORD field, DWORDLONG conditionMask) {
    return static_cast<BYTE>((conditionMask >> ConditionShift(field)) & 7);
}

struct Field {
    DWORD bit;
    DWORD actual;
    DWORD wanted;
};

// From the field that weighs most to the one that weighs least.
std::array<Field, 3> Fields(const win32::SystemVersion& actual, const OSVERSIONINFOEXW& wanted) {
    return {{{VER_MAJORVERSION, actual.major, wanted.dwMajorVersion},
             {VER_MINORVERSION, actual.minor, wanted.dwMinorVersion},
             {VER_SERVICEPACKMAJOR, actual.servicePack, wanted.wServicePackMajor}}};
}

constexpr DWORD KnownFields = VER_MAJORVERSION | VER_MINORVERSION | VER_SERVICEPACKMAJOR;

bool ConditionsKnown(DWORD typeMask, DWORDLONG conditionMask) {
    if (typeMask == 0 || (typeMask & ~KnownFields) != 0) {
        return false;
    }
    for (const DWORD field : {VER_MAJORVERSION, VER_MINORVERSION, VER_SERVICEPACKMAJOR}) {
        const bool named = (typeMask & field) != 0;
        if (named && ConditionFor(field, conditionMask) != VER_GREATER_EQUAL) {
            return false;
        }
    }
    return true;
}

} // namespace

ULONGLONG VerSetConditionMask(ULONGLONG mask, DWORD typeMask, BYTE condition) {
    for (const DWORD field : {VER_MAJORVERSION, VER_MINORVERSION, VER_SERVICEPACKMAJOR}) {
        if (typeMask == field) {
            return mask | (static_cast<ULONGLONG>(condition & 7) << ConditionShift(field));
        }
    }
    return mask;
}

BOOL VerifyVersionInfoW(const OSVERSIONINFOEXW* wanted, DWORD typeMask, DWORDLONG conditionMask) {
    if (wanted == nullptr || !ConditionsKnown(typeMask, conditionMask)) {
        return FALSE;
    }
    for (const Field& field : Fields(CurrentVersion(), *wanted)) {
        if ((typeMask & field.bit) != 0 && field.actual != field.wanted) {
            return field.actual > field.wanted ? TRUE : FALSE;
        }
    }
    return TRUE;
}

namespace win32 {

void SetSystemVersion(const SystemVersion& version) {
    const std::lock_guard lock(versionMutex);
    systemVersion = version;
}

} // namespace win32
