#include "platform/av/TrackList.h"

#include <algorithm>
#include <limits>

#include "platform/av/Fragments.h"
#include "platform/av/Handles.h"
#include "platform/av/OpenInput.h"

extern "C" {
#include <libavutil/mathematics.h>
}

namespace av {

namespace {

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

std::uint32_t Positive(int size) {
    return size > 0 ? static_cast<std::uint32_t>(size) : 0;
}

// The header counts the samples outside fragments, the index also those inside; but an edit list
// leaves some out of the index.
std::uint64_t CountSamples(const AVStream& stream) {
    const std::int64_t indexed = avformat_index_get_entries_count(&stream);
    return static_cast<std::uint64_t>(std::max({stream.nb_frames, indexed, std::int64_t{0}}));
}

// What an encoder needs to begin stands before time 0. Where an edit list cuts it off, the duration
// is without it; in fragments no list cuts, and the duration counts all.
std::int64_t BeginOf(const AVStream& stream) {
    // The function only looks, but does not say so.
    const AVIndexEntry* first = avformat_index_get_entry(const_cast<AVStream*>(&stream), 0);
    const std::int64_t time = first != nullptr ? first->timestamp : 0;
    return stream.nb_frames > 0 ? std::max(time, std::int64_t{0}) : time;
}

Track DescribeTrack(const AVStream& stream) {
    Track track;
    track.kind = KindOf(stream);
    track.codec = CodecOf(stream);
    track.width = Positive(stream.codecpar->width);
    track.height = Positive(stream.codecpar->height);
    track.samples = CountSamples(stream);
    track.begin = BeginOf(stream);
    // A track's time base is one over its time scale in this family of files.
    track.duration = std::max(stream.duration, std::int64_t{0});
    track.unitsPerSecond = std::max(stream.time_base.den, 1);
    return track;
}

} // namespace

std::uint64_t Track::FramesAt(int rate) const {
    std::int64_t end = 0;
    if (rate <= 0 || __builtin_add_overflow(begin, duration, &end) || end <= 0) {
        return 0;
    }
    const std::int64_t frames = av_rescale_rnd(end, rate, unitsPerSecond, AV_ROUND_UP);
    return frames > 0 ? static_cast<std::uint64_t>(frames) : 0; // negative: beyond 64 bits
}

std::optional<std::vector<Track>> ReadTrackList(const std::string& path) {
    const FormatContextPtr context = OpenMp4(path, EditLists::Applied);
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
