#include "bench/FfmpegSoundReader.h"

#include <algorithm>
#include <stdexcept>

namespace {

// Packets to decode before the wanted frame: the transform overlaps the one before, and a stream
// begins with the encoder's delay.
constexpr int PreRollFrames = 2048;

void Check(int result, const char* what) {
    if (result < 0) {
        throw std::runtime_error(what);
    }
}

} // namespace

FfmpegSoundReader::FfmpegSoundReader(const std::string& path)
    : m_packet(av_packet_alloc())
    , m_frame(av_frame_alloc()) {
    AVFormatContext* context = nullptr;
    Check(avformat_open_input(&context, path.c_str(), nullptr, nullptr), "cannot open the file");
    m_format.reset(context);
    Check(avformat_find_stream_info(context, nullptr), "no stream info");
    m_stream = av_find_best_stream(context, AVMEDIA_TYPE_AUDIO, -1, -1, nullptr, 0);
    Check(m_stream, "no sound");
    for (unsigned int i = 0; i < context->nb_streams; ++i) {
        context->streams[i]->discard =
            static_cast<int>(i) == m_stream ? AVDISCARD_DEFAULT : AVDISCARD_ALL;
    }
    const AVStream& stream = *context->streams[m_stream];
    m_codec.reset(avcodec_alloc_context3(avcodec_find_decoder(stream.codecpar->codec_id)));
    Check(avcodec_parameters_to_context(m_codec.get(), stream.codecpar), "no parameters");
    m_codec->pkt_timebase = stream.time_base;
    // Frames are cut by their position, the same way from wherever a read came.
    m_codec->flags2 |= AV_CODEC_FLAG2_SKIP_MANUAL;
    Check(avcodec_open2(m_codec.get(), nullptr, nullptr), "cannot open the codec");
    if (m_codec->sample_fmt != AV_SAMPLE_FMT_FLTP || m_codec->ch_layout.nb_channels != 2) {
        throw std::runtime_error("not planar floats in stereo");
    }
}

std::int64_t FfmpegSoundReader::FrameOf(std::int64_t timestamp) const {
    return av_rescale_q(timestamp, m_format->streams[m_stream]->time_base,
                        {1, m_codec->sample_rate});
}

void FfmpegSoundReader::Seek(std::int64_t frame) {
    const std::int64_t target = av_rescale_q(frame - PreRollFrames, {1, m_codec->sample_rate},
                                             m_format->streams[m_stream]->time_base);
    Check(av_seek_frame(m_format.get(), m_stream, target, AVSEEK_FLAG_BACKWARD), "cannot seek");
    avcodec_flush_buffers(m_codec.get());
    m_next = frame;
    m_length = 0;
}

bool FfmpegSoundReader::DecodeNext() {
    while (true) {
        const int received = avcodec_receive_frame(m_codec.get(), m_frame.get());
        if (received >= 0) {
            m_start = FrameOf(m_frame->pts);
            m_length = m_frame->nb_samples;
            return true;
        }
        if (received == AVERROR_EOF) {
            return false;
        }
        int read = 0;
        while ((read = av_read_frame(m_format.get(), m_packet.get())) >= 0 &&
               m_packet->stream_index != m_stream) {
            av_packet_unref(m_packet.get());
        }
        avcodec_send_packet(m_codec.get(), read < 0 ? nullptr : m_packet.get());
        av_packet_unref(m_packet.get());
    }
}

unsigned int FfmpegSoundReader::Read(unsigned int count, float* left, float* right) {
    unsigned int done = 0;
    while (done < count) {
        const std::int64_t skipped = m_next - m_start;
        if (m_length == 0 || skipped >= m_length) {
            if (!DecodeNext()) {
                break;
            }
            continue;
        }
        if (skipped < 0) {
            throw std::runtime_error("landed behind the wanted frame");
        }
        const auto part =
            static_cast<unsigned int>(std::min<std::int64_t>(m_length - skipped, count - done));
        const auto* const* planes = reinterpret_cast<float* const*>(m_frame->extended_data);
        std::copy_n(planes[0] + skipped, part, left + done);
        std::copy_n(planes[1] + skipped, part, right + done);
        done += part;
        m_next += part;
    }
    return done;
}
