#include "platform/av/Picture.h"

#include <new>
#include <utility>

namespace av {

namespace {

FramePtr EmptyFrame() {
    FramePtr frame(av_frame_alloc());
    if (frame == nullptr) {
        throw std::bad_alloc();
    }
    return frame;
}

} // namespace

Picture::Picture(FramePtr frame, std::int64_t start, std::int64_t end)
    : m_frame(std::move(frame))
    , m_start(start)
    , m_end(end) {}

Picture::Picture(std::shared_ptr<PictureSource> source, std::int64_t start, std::int64_t end)
    : m_frame(EmptyFrame())
    , m_start(start)
    , m_end(end)
    , m_source(std::move(source)) {}

const AVFrame& Picture::Frame() const {
    std::call_once(m_once, [this] { Decode(); });
    return m_decoded != nullptr ? m_decoded->Frame() : *m_frame;
}

void Picture::Decode() const {
    if (m_source != nullptr) {
        m_decoded = m_source->PictureAt(m_start);
        m_source.reset();
    }
}

} // namespace av
