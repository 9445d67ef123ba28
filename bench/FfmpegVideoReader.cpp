#include "bench/FfmpegVideoReader.h"

#include <algorithm>
#include <stdexcept>

#include <libyuv.h>

namespace {

[[noreturn]] void Fail(const std::string& what) {
    throw std::runtime_error("the floor: " + what);
}

} // namespace

FfmpegVideoReader::FfmpegVideoReader(const std::string& path, OnTheWay onTheWay)
    : m_packet(av_packet_alloc())
    , m_frame(av_frame_alloc())
    , m_onTheWay(onTheWay) {
    AVFormatContext* format = nullptr;
    if (avformat_open_input(&format, path.c_str(), nullptr, nullptr) < 0) {
        Fail("cannot open " + path);
    }
    m_format.reset(format);
    const AVCodec* codec = nullptr;
    m_stream = av_find_best_stream(format, AVMEDIA_TYPE_VIDEO, -1, -1, &codec, 0);
    if (m_stream < 0 || codec == nullptr) {
        Fail("no film in " + path);
    }
    OpenCodec(*codec);
    ReadIndex();
}

void FfmpegVideoReader::OpenCodec(const AVCodec& codec) {
    m_codec.reset(avcodec_alloc_context3(&codec));
    avcodec_parameters_to_context(m_codec.get(), m_format->streams[m_stream]->codecpar);
    m_codec->thread_count = 0;
    if (avcodec_open2(m_codec.get(), &codec, nullptr) < 0) {
        Fail("cannot decode");
    }
}

// An MP4 file's index has times of decoding. With closed groups and one delay for all pictures, as
// the benches' files have them, a key picture is shown that delay later. That is also the time by
// which the demuxer seeks: a time of decoding would lead to the group before.
void FfmpegVideoReader::ReadIndex() {
    AVStream* stream = m_format->streams[m_stream];
    m_firstTime = stream->start_time == AV_NOPTS_VALUE ? 0 : stream->start_time;
    const AVIndexEntry* first = avformat_index_get_entry(stream, 0);
    if (first == nullptr) {
        Fail("no index");
    }
    const std::int64_t delay = m_firstTime - first->timestamp;
    for (int i = 0; i < avformat_index_get_entries_count(stream); ++i) {
        const AVIndexEntry* entry = avformat_index_get_entry(stream, i);
        if ((entry->flags & AVINDEX_KEYFRAME) != 0) {
            m_keys.push_back(entry->timestamp + delay);
        }
    }
}

std::int64_t FfmpegVideoReader::TimeOf(int number) const {
    const AVStream& stream = *m_format->streams[m_stream];
    return m_firstTime + av_rescale_q(number, av_inv_q(stream.avg_frame_rate), stream.time_base);
}

std::size_t FfmpegVideoReader::GroupOf(std::int64_t time) const {
    const auto behind = std::upper_bound(m_keys.begin(), m_keys.end(), time);
    return behind == m_keys.begin() ? 0 : static_cast<std::size_t>(behind - m_keys.begin() - 1);
}

// Decoding on costs less than a seek where the wanted picture's group is the current one or begins
// right behind the current picture: the decoder has packets from there already.
bool FfmpegVideoReader::IsAhead(std::int64_t time) const {
    if (m_shown == INT64_MIN || time <= m_shown) {
        return false;
    }
    const std::size_t group = GroupOf(time);
    return group == GroupOf(m_shown) || m_keys[group] <= m_shown + TimeOf(4) - TimeOf(0);
}

void FfmpegVideoReader::MoveTo(std::int64_t time) {
    if (IsAhead(time)) {
        return;
    }
    if (av_seek_frame(m_format.get(), m_stream, m_keys[GroupOf(time)], AVSEEK_FLAG_BACKWARD) < 0) {
        Fail("cannot seek");
    }
    avcodec_flush_buffers(m_codec.get());
    m_draining = false;
}

// False at the end of the file.
bool FfmpegVideoReader::SendPacket(std::int64_t time) {
    if (m_draining) {
        return false;
    }
    while (av_read_frame(m_format.get(), m_packet.get()) >= 0) {
        const bool ours = m_packet->stream_index == m_stream;
        if (ours) {
            const bool skip = m_onTheWay == OnTheWay::SkipUnreferenced && m_packet->pts < time;
            m_codec->skip_frame = skip ? AVDISCARD_NONREF : AVDISCARD_DEFAULT;
            avcodec_send_packet(m_codec.get(), m_packet.get());
        }
        av_packet_unref(m_packet.get());
        if (ours) {
            return true;
        }
    }
    m_draining = true;
    avcodec_send_packet(m_codec.get(), nullptr);
    return true;
}

bool FfmpegVideoReader::DecodeUpTo(std::int64_t time) {
    while (true) {
        const int result = avcodec_receive_frame(m_codec.get(), m_frame.get());
        if (result == 0) {
            if (m_frame->pts >= time) {
                return true;
            }
        } else if (result != AVERROR(EAGAIN) || !SendPacket(time)) {
            return false;
        }
    }
}

void FfmpegVideoReader::Convert() {
    const AVFrame& f = *m_frame;
    if (f.format != AV_PIX_FMT_YUV420P) {
        Fail("another pixel format than expected");
    }
    m_pixels.resize(static_cast<std::size_t>(f.width) * f.height * 4);
    libyuv::I420ToARGBMatrix(f.data[0], f.linesize[0], f.data[1], f.linesize[1], f.data[2],
                             f.linesize[2], m_pixels.data(), f.width * 4,
                             f.height > 720 ? &libyuv::kYuvH709Constants
                                            : &libyuv::kYuvI601Constants,
                             f.width, f.height);
}

ShownPicture FfmpegVideoReader::Show(int number) {
    const std::int64_t time = TimeOf(number);
    if (time != m_shown) {
        MoveTo(time);
        m_shown = INT64_MIN;
        if (!DecodeUpTo(time)) {
            Fail("no picture " + std::to_string(number));
        }
        Convert();
        m_shown = time;
    }
    return {m_pixels.data(), m_frame->width * 4, m_frame->width, m_frame->height, 4};
}
