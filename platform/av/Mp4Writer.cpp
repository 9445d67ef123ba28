#include "platform/av/Mp4Writer.h"

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

bool Mp4Writer::CopyPackets(AVFormatContext& source, unsigned int stream) {
    const PacketPtr packet(av_packet_alloc());
    if (packet == nullptr) {
        return false;
    }
    while (av_read_frame(&source, packet.get()) >= 0) {
        if (packet->stream_index == static_cast<int>(stream)) {
            packet->stream_index = 0;
            packet->pos = -1;
            // What an edit list leaves out is needed to decode what follows.
            packet->flags &= ~AV_PKT_FLAG_DISCARD;
            av_packet_rescale_ts(packet.get(), source.streams[stream]->time_base,
                                 m_context->streams[0]->time_base);
            if (av_interleaved_write_frame(m_context.get(), packet.get()) < 0) {
                return false;
            }
        }
        av_packet_unref(packet.get());
    }
    return true;
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
