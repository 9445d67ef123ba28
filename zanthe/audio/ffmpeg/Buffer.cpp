#include "zanthe/audio/ffmpeg/Buffer.h"

#include <algorithm>
#include <utility>

namespace FFMPEGDecoder {

namespace {

// The part of `plane` that holds the positions of `span`, when its first sample stands at `start`.
// Planes of one buffer should be of one length; each is clipped by its own all the same.
Channel ViewOf(const Channel& plane, std::int64_t start, const FrameRange& span) {
    const FrameRange own = Intersect(span, {start, plane.frames()});
    return own.length == 0 ? Channel(plane.data(), 0)
                           : Channel(plane.data() + (own.start - start), own.length);
}

} // namespace

// A negative count becomes one that no allocator can serve.
Channel::Channel(std::int64_t frames)
    : m_storage(std::make_unique<float[]>(static_cast<std::size_t>(frames)))
    , m_data(m_storage.get())
    , m_frames(frames) {}

Channel::Channel(float* data, std::int64_t frames)
    : m_data(data)
    , m_frames(frames) {}

Buffer::Buffer(int channels, std::int64_t frames) {
    m_channels.reserve(static_cast<std::size_t>(channels));
    for (int i = 0; i < channels; ++i) {
        m_channels.emplace_back(frames);
    }
}

Buffer::Buffer(const std::vector<float*>& planes, std::int64_t frames) {
    m_channels.reserve(planes.size());
    for (float* plane : planes) {
        m_channels.emplace_back(plane, frames);
    }
}

Buffer::Buffer(std::vector<Channel> channels)
    : m_channels(std::move(channels)) {}

std::int64_t Buffer::frames() const {
    return m_channels.empty() ? 0 : m_channels.front().frames();
}

Buffer Buffer::slice(std::int64_t from, std::int64_t length) const {
    const FrameRange span = Intersect({from, length}, range());
    std::vector<Channel> views;
    views.reserve(m_channels.size());
    for (const Channel& plane : m_channels) {
        views.push_back(ViewOf(plane, start, span));
    }
    Buffer result(std::move(views));
    result.start = span.start;
    return result;
}

void Buffer::copyFrom(const Buffer& source) {
    if (m_channels.size() != source.m_channels.size()) {
        return;
    }
    const FrameRange overlap = Intersect(range(), source.range());
    for (std::size_t i = 0; i < m_channels.size(); ++i) {
        const Channel to = ViewOf(m_channels[i], start, overlap);
        const Channel from = ViewOf(source.m_channels[i], source.start, overlap);
        std::copy_n(from.data(), std::min(to.frames(), from.frames()), to.data());
    }
}

void Buffer::zero(const FrameRange& span) {
    for (const Channel& plane : m_channels) {
        const Channel view = ViewOf(plane, start, Intersect(span, range()));
        std::fill_n(view.data(), view.frames(), 0.0F);
    }
}

} // namespace FFMPEGDecoder
