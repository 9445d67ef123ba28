// A decoded picture, as the decoder left it.
//
// A picture holds the decoder's own surface; its pixels are converted only when somebody asks for
// them (see PictureConversion.h), so a picture that is stepped over costs no conversion and no
// copy.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <utility>

#include "platform/av/Handles.h"

namespace av {

class Picture;
using PicturePtr = std::shared_ptr<const Picture>;

// Whoever can still decode a picture that was only announced.
//
// Thread-safety: safe from any thread.
class PictureSource {
public:
    PictureSource() = default;
    PictureSource(const PictureSource&) = delete;
    PictureSource& operator=(const PictureSource&) = delete;
    virtual ~PictureSource() = default;

    // The decoded picture that is shown at `time`; null where the file has none to give.
    virtual PicturePtr PictureAt(std::int64_t time) = 0;
};

// Times are in units of 100 ns on the file's own timeline, edit lists applied.
//
// Thread-safety: immutable behind its making, so safe from any thread.
class Picture {
public:
    // The picture is shown in [start, end). REQUIRES: frame; start < end.
    Picture(FramePtr frame, std::int64_t start, std::int64_t end);

    // A picture that is decoded when its frame is first asked for, and never if it is not. The
    // source lives as long as the picture. REQUIRES: source; start < end.
    Picture(std::shared_ptr<PictureSource> source, std::int64_t start, std::int64_t end);

    std::int64_t Start() const { return m_start; }

    std::int64_t End() const { return m_end; }

    // Visible size, cropping applied.
    int Width() const { return Frame().width; }

    int Height() const { return Frame().height; }

    // Whether its pixels lie on a graphics device rather than in memory.
    bool OnDevice() const { return Frame().hw_frames_ctx != nullptr; }

    // As it was decoded. Of a picture that turned out not to decode, an empty frame: 0 by 0, no
    // data.
    const AVFrame& Frame() const;

private:
    void Decode() const;

    FramePtr m_frame; // what was decoded, or an empty frame
    std::int64_t m_start;
    std::int64_t m_end;

    // Of one that is decoded late, both set and given up once.
    mutable std::once_flag m_once;
    mutable std::shared_ptr<PictureSource> m_source;
    mutable PicturePtr m_decoded;
};

} // namespace av
