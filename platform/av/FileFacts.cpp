#include "platform/av/FileFacts.h"

#include "platform/av/OpenInput.h"
#include "platform/av/VideoFacts.h"

namespace av {

namespace {

FileStream DescribeSound(const AVStream& stream, int ordinal) {
    FileStream facts;
    facts.kind = TrackKind::Audio;
    facts.ordinal = ordinal;
    facts.codec = stream.codecpar->codec_id;
    facts.tag = stream.codecpar->codec_tag;
    facts.channels = stream.codecpar->ch_layout.nb_channels;
    const AVChannelLayout& layout = stream.codecpar->ch_layout;
    facts.layout = layout.order == AV_CHANNEL_ORDER_NATIVE ? layout.u.mask : 0;
    facts.sampleRate = stream.codecpar->sample_rate;
    facts.bitsPerSample = stream.codecpar->bits_per_coded_sample;
    return facts;
}

FileStream DescribeVideo(const AVFormatContext& format, const AVStream& stream, int ordinal) {
    FileStream facts;
    facts.kind = TrackKind::Video;
    facts.ordinal = ordinal;
    facts.video = ReadVideoFacts(format, stream);
    return facts;
}

} // namespace

FileFacts FactsOf(const AVFormatContext& format) {
    FileFacts facts;
    facts.container = format.iformat->name;
    int sounds = 0;
    int videos = 0;
    for (unsigned int i = 0; i < format.nb_streams; ++i) {
        const AVStream& stream = *format.streams[i];
        const TrackKind kind = KindOf(stream);
        if (kind == TrackKind::Audio) {
            facts.streams.push_back(DescribeSound(stream, sounds++));
        } else if (kind == TrackKind::Video && !IsCover(stream)) {
            facts.streams.push_back(DescribeVideo(format, stream, videos++));
        }
    }
    facts.duration = DurationOf(format);
    return facts;
}

const char* CodecName(AVCodecID codec) {
    return avcodec_get_name(codec);
}

bool HasDecoder(AVCodecID codec) {
    return avcodec_find_decoder(codec) != nullptr;
}

std::optional<FileFacts> ReadFileFacts(const std::string& path) {
    FormatContextPtr format(avformat_alloc_context());
    if (OpenInput(format, path) < 0 || avformat_find_stream_info(format.get(), nullptr) < 0) {
        return std::nullopt;
    }
    return FactsOf(*format);
}

} // namespace av
