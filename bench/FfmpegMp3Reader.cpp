#include "bench/FfmpegMp3Reader.h"

#include <algorithm>
#include <numeric>
#include <stdexcept>

extern "C" {
#include <libavutil/channel_layout.h>
}

namespace {

void Check(int result, const char* what) {
    if (result < 0) {
        throw std::runtime_error(what);
    }
}

av::FormatContextPtr Open(const std::string& path) {
    AVFormatContext* context = nullptr;
    Check(avformat_open_input(&context, path.c_str(), nullptr, nullptr), "cannot open the file");
    av::FormatContextPtr format(context);
    Check(avformat_find_stream_info(context, nullptr), "no stream info");
    return format;
}

av::CodecContextPtr OpenCodec(const AVStream& stream) {
    av::CodecContextPtr codec(
        avcodec_alloc_context3(avcodec_find_decoder(stream.codecpar->codec_id)));
    Check(avcodec_parameters_to_context(codec.get(), stream.codecpar), "no parameters");
    codec->pkt_timebase = stream.time_base; // so that pts move with the samples it drops
    Check(avcodec_open2(codec.get(), nullptr, nullptr), "cannot open the codec");
    return codec;
}

av::SwrContextPtr MakeResampler(int inRate, int outRate) {
    AVChannelLayout stereo = AV_CHANNEL_LAYOUT_STEREO;
    SwrContext* context = nullptr;
    Check(swr_alloc_set_opts2(&context, &stereo, AV_SAMPLE_FMT_FLTP, outRate, &stereo,
                              AV_SAMPLE_FMT_FLTP, inRate, 0, nullptr),
          "no resampler");
    av::SwrContextPtr resampler(context);
    return resampler;
}

// How far ahead of the wanted frame the decoder must begin, in input frames.
std::int64_t PreRoll(const AVFormatContext& format, int channels) {
    return format.bit_rate / channels < 60000 ? 11520 : 4608;
}

} // namespace

FfmpegMp3Reader::FfmpegMp3Reader(const std::string& path, int rate)
    : m_format(Open(path))
    , m_packet(av_packet_alloc())
    , m_frame(av_frame_alloc())
    , m_rate(rate) {
    m_stream = av_find_best_stream(m_format.get(), AVMEDIA_TYPE_AUDIO, -1, -1, nullptr, 0);
    Check(m_stream, "no sound");
    m_codec = OpenCodec(*m_format->streams[m_stream]);
    if (m_codec->sample_fmt != AV_SAMPLE_FMT_FLTP || m_codec->ch_layout.nb_channels != 2) {
        throw std::runtime_error("not planar stereo");
    }
    if (m_codec->sample_rate != m_rate) {
        m_resampler = MakeResampler(m_codec->sample_rate, m_rate);
        m_step = m_codec->sample_rate / std::gcd(m_codec->sample_rate, m_rate);
    }
}

void FfmpegMp3Reader::Seek(std::int64_t frame) {
    const std::int64_t wanted = frame * m_codec->sample_rate / m_rate;
    const std::int64_t from = std::max<std::int64_t>(0, wanted - PreRoll(*m_format, 2));
    const AVRational frames{1, m_codec->sample_rate};
    const std::int64_t pts = av_rescale_q(from, frames, m_format->streams[m_stream]->time_base);
    avcodec_flush_buffers(m_codec.get());
    Check(av_seek_frame(m_format.get(), m_stream, pts, AVSEEK_FLAG_BACKWARD), "cannot seek");
    m_next = frame;
    m_start = frame;
    m_length = 0;
    m_started = false;
}

unsigned int FfmpegMp3Reader::Read(unsigned int count, std::array<float*, 2> planes) {
    unsigned int written = 0;
    while (written < count) {
        if (m_start + m_length <= m_next && !ConvertNext()) {
            break;
        }
        const unsigned int copied = CopyOut(count - written, planes);
        planes = {planes[0] + copied, planes[1] + copied};
        written += copied;
    }
    return written;
}

// Copies what the frame at hand has of the wanted span. Ahead of it there is only the encoder's
// delay, which reads as silence.
unsigned int FfmpegMp3Reader::CopyOut(unsigned int count, const std::array<float*, 2>& planes) {
    const std::int64_t gap = m_start - m_next;
    const std::int64_t available = gap > 0 ? gap : m_start + m_length - m_next;
    const auto taken = std::clamp<std::int64_t>(available, 0, count);
    for (std::size_t i = 0; i < planes.size(); ++i) {
        if (gap > 0) {
            std::fill_n(planes[i], taken, 0.0F);
        } else {
            std::copy_n(m_planes[i] - gap, taken, planes[i]);
        }
    }
    m_next += taken;
    return static_cast<unsigned int>(taken);
}

bool FfmpegMp3Reader::DecodeNext() {
    while (avcodec_receive_frame(m_codec.get(), m_frame.get()) < 0) {
        const int result = av_read_frame(m_format.get(), m_packet.get());
        if (result < 0) {
            return false;
        }
        if (m_packet->stream_index == m_stream) {
            Check(avcodec_send_packet(m_codec.get(), m_packet.get()), "damaged sound");
        }
        av_packet_unref(m_packet.get());
    }
    return true;
}

// The next frame of the output; what the resampler still holds comes after the last one.
bool FfmpegMp3Reader::ConvertNext() {
    if (!DecodeNext()) {
        m_start += m_length;
        m_length = 0;
        if (m_resampler && m_started) {
            m_started = false;
            Convert(nullptr, 0);
        }
        return m_length > 0;
    }
    const AVRational frames{1, m_codec->sample_rate};
    const std::int64_t inputFrame =
        av_rescale_q(m_frame->pts, m_format->streams[m_stream]->time_base, frames);
    if (m_started) {
        m_start += m_length;
    } else {
        StartConversion(inputFrame);
    }
    const auto** planes = const_cast<const std::uint8_t**>(m_frame->extended_data);
    Convert(planes, m_frame->nb_samples);
    return true;
}

// Begins on the first frame at which input and output line up; the pre-roll hides what is dropped
// until there. At the start of the file nothing hides it, so there silence is put in front instead.
void FfmpegMp3Reader::StartConversion(std::int64_t inputFrame) {
    m_started = true;
    if (!m_resampler) {
        m_start = inputFrame;
        return;
    }
    Check(swr_init(m_resampler.get()), "cannot convert");
    const auto above = static_cast<int>(inputFrame % m_step);
    const std::int64_t lower = inputFrame - above;
    Check(swr_inject_silence(m_resampler.get(), above), "cannot convert");
    m_start = lower * m_rate / m_codec->sample_rate;
}

// Makes these samples the frame at hand; without any, the resampler gives what it still holds.
void FfmpegMp3Reader::Convert(const std::uint8_t** planes, int samples) {
    if (!m_resampler) {
        m_planes = {reinterpret_cast<const float*>(planes[0]),
                    reinterpret_cast<const float*>(planes[1])};
        m_length = samples;
        return;
    }
    const int capacity = swr_get_out_samples(m_resampler.get(), samples);
    std::array<std::uint8_t*, 2> out{};
    for (std::size_t i = 0; i < out.size(); ++i) {
        m_converted[i].resize(std::max<std::size_t>(m_converted[i].size(), capacity));
        m_planes[i] = m_converted[i].data();
        out[i] = reinterpret_cast<std::uint8_t*>(m_converted[i].data());
    }
    m_length = swr_convert(m_resampler.get(), out.data(), capacity, planes, samples);
    Check(m_length, "cannot convert");
}
