#include "zanthe/containers/avi20/WindowsStream.h"

namespace AVI20::Read {

WindowsStream::WindowsStream(::IStream* stream)
    : m_stream(stream) {}

bool WindowsStream::IsNull() const {
    return m_stream == nullptr;
}

bool WindowsStream::Read(void* buffer, std::uint32_t byteCount) {
    if (IsNull()) {
        return false;
    }
    ULONG got = 0;
    const HRESULT result = m_stream->Read(buffer, byteCount, &got);
    m_position += got;
    return SUCCEEDED(result) && got == byteCount;
}

std::uint64_t WindowsStream::Position() const {
    return m_position;
}

bool WindowsStream::Seek(std::uint64_t position) {
    LARGE_INTEGER distance{};
    distance.QuadPart = static_cast<LONGLONG>(position);
    if (IsNull() || FAILED(m_stream->Seek(distance, STREAM_SEEK_SET, nullptr))) {
        return false;
    }
    m_position = position;
    return true;
}

bool WindowsStream::SeekToEnd() {
    return Seek(Size());
}

std::uint64_t WindowsStream::Size() {
    if (m_size < 0) {
        STATSTG facts{};
        const bool known = !IsNull() && SUCCEEDED(m_stream->Stat(&facts, STATFLAG_NONAME));
        const auto size = static_cast<std::int64_t>(facts.cbSize.QuadPart);
        m_size = known && size > 0 ? size : 0;
    }
    return static_cast<std::uint64_t>(m_size);
}

bool WindowsStream::IsOpen() const {
    return !IsNull();
}

bool WindowsStream::Rewind() {
    return Seek(0);
}

} // namespace AVI20::Read
