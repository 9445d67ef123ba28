// A decoded picture, as the decoder left it.
//
// A picture holds the decoder's own surface; its pixels are converted only when somebody asks for
// them (see PictureConversion.h), so a picture that is stepped over costs no conversion and no
// copy.
#pragma once

#include <cstdint>
#include <memory>
#include <utility>

#include "platform/av/Handles.h"

namespace av {

// Times are in units of 100 ns on the file's own timeline, edit lists applied.
//
// Thread-safety: immutable behind its making, so safe from any thread.
class Picture {
public:
    // The picture is shown in [start, end). REQUIRES: frame; start < end.
    Picture(FramePtr frame, std::int64_t start, std::int64_t end)
        : m_frame(std::move(frame))
        , m_start(start)
        , m_end(end) {}

    std::int64_t Start() const { return m_start; }

    std::int64_t End() const { return m_end; }

    // Visible size, cropping applied.
    int Width() const { return m_frame->width; }

    int Height() const { return m_frame->height; }

    // Whether its pixels lie on a graphics device rather than in memory.
    bool OnDevice() const { return m_frame->hw_frames_ctx != nullptr; }

    const AVFrame& Frame() const { return *m_frame; }

private:
    FramePtr m_frame;
    std::int64_t m_start;
    std::int64_t m_end;
};

using PicturePtr = std::shared_ptr<const Picture>;

} // namespace av
