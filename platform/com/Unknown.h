// What every interface of the platform begins with. Stands for unknwn.h.
//
// A pointer in is borrowed for the call; a pointer out carries one reference for the caller, who
// gives it back by Release. Objects end themselves with their last reference; nobody deletes one.
#pragma once

#include "platform/com/Guid.h"
#include "platform/com/Result.h"
#include "platform/win32/Types.h"

// A GUID that names an interface.
using IID = GUID;
using REFIID = const IID&;

inline constexpr IID IID_IUnknown = {0x00000000, 0x0000, 0x0000, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

struct IUnknown {
    // *object: this object as the interface `iid`, with a reference for the caller; null on
    // failure.
    virtual HRESULT QueryInterface(REFIID iid, void** object) = 0;

    // Both answer how many references there are now; a number for diagnosis, not for decisions.
    virtual ULONG AddRef() = 0;
    virtual ULONG Release() = 0;

protected:
    // Of no slot in the table, as callers expect it.
    ~IUnknown() = default;
};
