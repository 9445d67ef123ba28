#include "platform/com/ReadingStream.h"

#include <algorithm>
#include <cwchar>
#include <optional>

#include "platform/com/StorageResult.h"
#include "platform/com/TaskMemory.h"

namespace com {

namespace {

// base + distance, where that is a position.
std::optional<std::uint64_t> Moved(std::uint64_t base, std::int64_t distance) {
    std::int64_t target = 0;
    if (__builtin_add_overflow(static_cast<std::int64_t>(base), distance, &target) || target < 0) {
        return std::nullopt;
    }
    return static_cast<std::uint64_t>(target);
}

} // namespace

HRESULT ReadingStream::Read(void* buffer, ULONG byteCount, ULONG* bytesRead) {
    return Wall([&]() -> HRESULT {
        ULONG unwanted = 0;
        ULONG& done = bytesRead != nullptr ? *bytesRead : unwanted;
        done = 0;
        if (buffer == nullptr) {
            return STG_E_INVALIDPOINTER;
        }
        const std::uint64_t left = Size() > m_position ? Size() - m_position : 0;
        const auto count = static_cast<ULONG>(std::min<std::uint64_t>(byteCount, left));
        if (count > 0 && !ReadAt(m_position, buffer, count)) {
            return STG_E_READFAULT;
        }
        m_position += count;
        done = count;
        return count == byteCount ? S_OK : S_FALSE;
    });
}

HRESULT ReadingStream::Write(const void*, ULONG, ULONG* bytesWritten) {
    if (bytesWritten != nullptr) {
        *bytesWritten = 0;
    }
    return STG_E_ACCESSDENIED;
}

HRESULT ReadingStream::Seek(LARGE_INTEGER distance, DWORD origin, ULARGE_INTEGER* newPosition) {
    const std::uint64_t base = origin == STREAM_SEEK_CUR   ? m_position
                               : origin == STREAM_SEEK_END ? Size()
                                                           : 0;
    const auto target = Moved(base, distance.QuadPart);
    if (origin > STREAM_SEEK_END || !target.has_value()) {
        return STG_E_INVALIDFUNCTION;
    }
    m_position = *target;
    if (newPosition != nullptr) {
        newPosition->QuadPart = m_position;
    }
    return S_OK;
}

HRESULT ReadingStream::SetSize(ULARGE_INTEGER) {
    return STG_E_ACCESSDENIED;
}

HRESULT ReadingStream::CopyTo(IStream*, ULARGE_INTEGER, ULARGE_INTEGER*, ULARGE_INTEGER*) {
    return E_NOTIMPL;
}

HRESULT ReadingStream::Commit(DWORD) {
    return S_OK;
}

HRESULT ReadingStream::Revert() {
    return S_OK;
}

HRESULT ReadingStream::LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) {
    return E_NOTIMPL;
}

HRESULT ReadingStream::UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) {
    return E_NOTIMPL;
}

HRESULT ReadingStream::Stat(STATSTG* facts, DWORD flags) {
    return Wall([&]() -> HRESULT {
        if (facts == nullptr) {
            return STG_E_INVALIDPOINTER;
        }
        *facts = {};
        facts->type = STGTY_STREAM;
        facts->cbSize.QuadPart = Size();
        if (flags != STATFLAG_NONAME) {
            facts->pwcsName = CopyForCaller(Name());
            return facts->pwcsName == nullptr ? E_OUTOFMEMORY : S_OK;
        }
        return S_OK;
    });
}

void* ReadingStream::Find(REFIID iid) {
    if (iid == IID_ISequentialStream) {
        return static_cast<ISequentialStream*>(this);
    }
    return Among(iid, IID_IStream, static_cast<IStream*>(this));
}

LPWSTR CopyForCaller(const std::wstring& text) {
    const std::size_t length = text.size() + 1;
    auto* copy = static_cast<LPWSTR>(CoTaskMemAlloc(length * sizeof(wchar_t)));
    if (copy != nullptr) {
        std::wmemcpy(copy, text.c_str(), length);
    }
    return copy;
}

} // namespace com
