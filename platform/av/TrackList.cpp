#include "platform/av/TrackList.h"

#include <algorithm>
#include <filesystem>
#include <limits>

#include "platform/av/Handles.h"

extern "C" {
#include <libavutil/mathematics.h>
#include <libavutil/opt.h>
}

namespace av {

namespace {

// A path is never a name of another protocol, and the file cannot lead to one.
FormatContextPtr OpenMp4(const std::string& path) {
    FormatContextPtr context(avformat_alloc_context());
    if (context == nullptr || av_opt_set(context.get(), "protocol_whitelist", "file", 0) < 0) {
        return nullptr;
    }
    const std::string url = "file:" + path;
    const AVInputFormat* format = av_find_input_format("mp4");
    AVFormatContext* raw = context.release(); // freed and nulled by a failed open
    const int opened = avformat_open_input(&raw, url.c_str(), format, nullptr);
    context.reset(raw);
    return opened < 0 ? nullptr : std::move(context);
}

// MPEG-4 part 2 and H.263 come without a size: the header's is not trusted for them, so a picture
// has to be looked at. Where none can be decoded the size stays unknown, which is what it is.
void CompleteSizes(AVFormatContext& context) {
    const auto lacksSize = [](const AVStream* stream) {
        return stream->codecpar->codec_type == AVMEDIA_TYPE_VIDEO && stream->codecpar->width <= 0;
    };
    if (std::any_of(context.streams, context.streams + context.nb_streams, lacksSize) &&
        avformat_find_stream_info(&context, nullptr) < 0) {
        av_log(&context, AV_LOG_VERBOSE, "no picture tells its size\n");
    }
}

// Fragments are found one behind the other. With every track discarded a read finds no sample to
// hand out, so it goes through all of them and leaves their samples in the index.
void VisitFragments(AVFormatContext& context) {
    for (unsigned int i = 0; i < context.nb_streams; ++i) {
        context.streams[i]->discard = AVDISCARD_ALL;
    }
    const PacketPtr packet(av_packet_alloc());
    while (packet != nullptr && av_read_frame(&context, packet.get()) >= 0) {
        av_packet_unref(packet.get());
    }
}

bool IsCover(const AVStream& stream) {
    // A track of chapter pictures is flagged as a cover too, but it is a track.
    const int marks =
        stream.disposition & (AV_DISPOSITION_ATTACHED_PIC | AV_DISPOSITION_TIMED_THUMBNAILS);
    return marks == AV_DISPOSITION_ATTACHED_PIC;
}

TrackKind KindOf(AVMediaType type) {
    if (type == AVMEDIA_TYPE_VIDEO) {
        return TrackKind::Video;
    }
    return type == AVMEDIA_TYPE_AUDIO ? TrackKind::Audio : TrackKind::Other;
}

std::string CodecText(std::uint32_t tag) {
    if (tag == 0) {
        return {};
    }
    std::string text;
    for (int shift = 0; shift < 32; shift += 8) {
        text += static_cast<char>(tag >> shift & 0xFF);
    }
    return text;
}

std::uint32_t Positive(int size) {
    return size > 0 ? static_cast<std::uint32_t>(size) : 0;
}

// The header counts the samples outside fragments, the index also those inside; but an edit list
// leaves some out of the index.
std::uint64_t CountSamples(const AVStream& stream) {
    const std::int64_t indexed = avformat_index_get_entries_count(&stream);
    return static_cast<std::uint64_t>(std::max({stream.nb_frames, indexed, std::int64_t{0}}));
}

Track DescribeTrack(const AVStream& stream) {
    Track track;
    track.kind = KindOf(stream.codecpar->codec_type);
    track.codec = CodecText(stream.codecpar->codec_tag);
    track.width = Positive(stream.codecpar->width);
    track.height = Positive(stream.codecpar->height);
    track.samples = CountSamples(stream);
    // A track's time base is one over its time scale in this family of files.
    track.duration = std::max(stream.duration, std::int64_t{0});
    track.unitsPerSecond = std::max(stream.time_base.den, 1);
    return track;
}

bool IsRegularFile(const std::string& path) {
    std::error_code unknown;
    return std::filesystem::is_regular_file(path, unknown);
}

} // namespace

std::uint64_t Track::FramesAt(int rate) const {
    if (rate <= 0) {
        return 0;
    }
    const std::int64_t frames = av_rescale_rnd(duration, rate, unitsPerSecond, AV_ROUND_UP);
    return frames > 0 ? static_cast<std::uint64_t>(frames) : 0; // negative: beyond 64 bits
}

std::optional<std::vector<Track>> ReadTrackList(const std::string& path) {
    const FormatContextPtr context = IsRegularFile(path) ? OpenMp4(path) : nullptr;
    if (context == nullptr) {
        return std::nullopt;
    }
    CompleteSizes(*context);
    VisitFragments(*context);
    std::vector<Track> tracks;
    for (unsigned int i = 0; i < context->nb_streams; ++i) {
        if (!IsCover(*context->streams[i])) {
            tracks.push_back(DescribeTrack(*context->streams[i]));
        }
    }
    return tracks;
}

} // namespace av
