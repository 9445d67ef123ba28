#include "platform/av/Mp4Writer.h"

#include <algorithm>
#include <utility>

#include "platform/av/OpenInput.h"
#include "platform/av/Quiet.h"
#include "platform/av/StreamChoice.h"

extern "C" {
#include <libavutil/opt.h>
}

namespace av {

std::unique_ptr<Mp4Writer> Mp4Writer::Create(const std::string& path) {
    QuietUnlessChosen();
    AVIOContext* file = nullptr;
    if (avio_open(&file, ("file:" + path).c_str(), AVIO_FLAG_WRITE) < 0) {
        return nullptr;
    }
    return std::unique_ptr<Mp4Writer>(new Mp4Writer(IoContextPtr(file)));
}

bool Mp4Writer::Begin(const AVStream& source) {
    AVFormatContext* context = nullptr;
    if (avformat_alloc_output_context2(&context, nullptr, "mp4", nullptr) < 0) {
        return false;
    }
    m_context.reset(context);
    context->pb = m_file.get();
    context->flags |= AVFMT_FLAG_BITEXACT;
    AVStream* copy = avformat_new_stream(context, nullptr);
    if (copy == nullptr || avcodec_parameters_copy(copy->codecpar, source.codecpar) < 0) {
        return false;
    }
    copy->codecpar->codec_tag = 0; // the one that MP4 has for the codec
    copy->time_base = source.time_base;
    av_opt_set_int(context, "movie_timescale", m_unitsPerSecond, AV_OPT_SEARCH_CHILDREN);
    return avformat_write_header(context, nullptr) >= 0;
}

namespace {

// Ends the last packet where the stream ends.
void ShortenLast(AVPacket& last, std::int64_t begin, std::int64_t duration) {
    constexpr std::int64_t kMost = std::int64_t{1} << 60; // sums of two fit
    if (last.pts < -kMost || last.pts > kMost || begin > kMost || duration > kMost ||
        duration <= 0) {
        return;
    }
    const std::int64_t left = begin + duration - last.pts;
    if (left > 0 && left < last.duration) {
        last.duration = left;
    }
}

} // namespace

bool Mp4Writer::Write(AVPacket& packet, AVRational timeBase) {
    packet.stream_index = 0;
    packet.pos = -1;
    // What an edit list leaves out is needed to decode what follows.
    packet.flags &= ~AV_PKT_FLAG_DISCARD;
    av_packet_rescale_ts(&packet, timeBase, m_context->streams[0]->time_base);
    return av_interleaved_write_frame(m_context.get(), &packet) >= 0;
}

// One behind, for the last packet may be longer than its sound.
bool Mp4Writer::CopyPackets(AVFormatContext& source, unsigned int stream) {
    const PacketPtr packet(av_packet_alloc());
    const PacketPtr last(av_packet_alloc());
    if (packet == nullptr || last == nullptr) {
        return false;
    }
    const AVStream& from = *source.streams[stream];
    std::int64_t begin = AV_NOPTS_VALUE;
    while (av_read_frame(&source, packet.get()) >= 0) {
        if (packet->stream_index == static_cast<int>(stream)) {
            if (begin == AV_NOPTS_VALUE) {
                begin = std::max<std::int64_t>(packet->pts, 0);
            }
            if (last->data != nullptr && !Write(*last, from.time_base)) {
                return false;
            }
            av_packet_unref(last.get());
            av_packet_move_ref(last.get(), packet.get());
        }
        av_packet_unref(packet.get());
    }
    if (last->data == nullptr) {
        return false;
    }
    ShortenLast(*last, begin, from.duration);
    return Write(*last, from.time_base);
}

bool Mp4Writer::CopyTrack(const std::string& source, unsigned int stream) {
    const FormatContextPtr input = OpenMp4(source, EditLists::Applied);
    if (m_context != nullptr || input == nullptr || stream >= input->nb_streams) {
        return false;
    }
    // The codec's parameters may stand in the samples alone.
    if (avformat_find_stream_info(input.get(), nullptr) < 0) {
        return false;
    }
    DiscardOthers(*input, static_cast<int>(stream));
    if (!Begin(*input->streams[stream])) {
        return false;
    }
    const bool copied = CopyPackets(*input, stream);
    const bool completed = av_write_trailer(m_context.get()) >= 0;
    avio_flush(m_file.get());
    return copied && completed && m_file->error >= 0;
}

} // namespace av
