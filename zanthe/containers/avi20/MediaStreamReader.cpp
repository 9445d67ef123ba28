#include "zanthe/containers/avi20/MediaStreamReader.h"

#include "zanthe/containers/avi20/MediaStreamReaderImpl.h"

namespace AVI20::Read {

bool MediaStreamReader::IsValid() const {
    return m_impl != nullptr;
}

std::uint32_t MediaStreamReader::GetFrameCount() const {
    return IsValid() ? m_impl->Frames().GetFrameCount() : 0;
}

std::uint32_t MediaStreamReader::GetFrameSize(std::uint32_t frame) const {
    return IsValid() ? m_impl->Frames().GetFrameSize(frame) : 0;
}

std::uint64_t MediaStreamReader::GetFrameOffset(std::uint32_t frame) const {
    return IsValid() ? m_impl->Frames().GetFrameOffset(frame) : 0;
}

bool MediaStreamReader::ReadFrame(std::uint32_t frame, void* buffer) const {
    return IsValid() && m_impl->Frames().ReadFrame(frame, buffer);
}

std::uint32_t MediaStreamReader::ReadBytes(std::uint64_t byteOffset, std::uint32_t byteCount,
                                           void* buffer) const {
    return IsValid() ? m_impl->Frames().ReadBytes(byteOffset, byteCount, buffer) : 0;
}

std::uint64_t MediaStreamReader::GetTotalBytes() const {
    return IsValid() ? m_impl->Frames().GetTotalBytes() : 0;
}

std::unique_ptr<FrameBuffer> MediaStreamReader::ReadFrameToNewBuffer(std::uint32_t frame) const {
    // A size that reaches over the end of the file is not worth its memory.
    if (!IsValid() || !m_impl->Frames().HoldsFrame(frame)) {
        return nullptr;
    }
    auto buffer = std::make_unique<FrameBuffer>();
    buffer->size = GetFrameSize(frame);
    buffer->data = std::make_unique<unsigned char[]>(buffer->size);
    return ReadFrame(frame, buffer->data.get()) ? std::move(buffer) : nullptr;
}

StreamInfo MediaStreamReader::GetStreamInfo() const {
    return IsValid() ? m_impl->Info() : StreamInfo{};
}

bool MediaStreamReader::IsKeyFrame(std::uint32_t frame) const {
    return IsValid() && m_impl->Frames().IsKeyFrame(frame);
}

std::uint32_t MediaStreamReader::FindKeyFrame(std::uint32_t frame) const {
    return IsValid() ? m_impl->Frames().FindKeyFrame(frame) : 0;
}

double MediaStreamReader::GetDurationSeconds() const {
    return IsValid() ? m_impl->DurationSeconds() : 0.0;
}

} // namespace AVI20::Read
