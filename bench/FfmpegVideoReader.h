// The floor of the video benches: what an engineer writes by hand on FFmpeg for a well-formed MP4
// file with closed groups: the index tells the key pictures, a step forward within a group decodes
// on, anything else seeks to the key picture and decodes up to the one wanted. Only that one is
// converted.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "bench/VideoContender.h"
#include "platform/av/Handles.h"

// Thread-safety: none.
class FfmpegVideoReader : public VideoContender {
public:
    enum class OnTheWay { DecodeAll, SkipUnreferenced };

    // Throws std::runtime_error.
    FfmpegVideoReader(const std::string& path, OnTheWay onTheWay);

    // VideoContender
    ShownPicture Show(int number) override;

private:
    void OpenCodec(const AVCodec& codec);
    void ReadIndex();
    std::int64_t TimeOf(int number) const;
    std::size_t GroupOf(std::int64_t time) const;
    bool IsAhead(std::int64_t time) const;
    void MoveTo(std::int64_t time);
    bool DecodeUpTo(std::int64_t time);
    bool SendPacket(std::int64_t time);
    void Convert();

    av::FormatContextPtr m_format;
    av::CodecContextPtr m_codec;
    av::PacketPtr m_packet;
    av::FramePtr m_frame;
    OnTheWay m_onTheWay;
    int m_stream = 0;
    std::vector<std::int64_t> m_keys; // when the key pictures are shown
    std::int64_t m_firstTime = 0;     // of picture 0
    std::int64_t m_shown = INT64_MIN; // the time of what m_frame and m_pixels hold
    bool m_draining = false;
    std::vector<std::uint8_t> m_pixels;
};
