#include "platform/av/SoundFacts.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <numeric>
#include <string_view>
#include <vector>

extern "C" {
#include <libavutil/intreadwrite.h>
#include <libavutil/mathematics.h>
}

namespace av {

namespace {

constexpr int kMostChannels = 64;
constexpr int kHighestRate = 768000;

constexpr std::size_t kPackets = 48;
constexpr std::int64_t kMostBytes = std::int64_t{8} << 20;

struct Probed {
    std::int64_t stamp = AV_NOPTS_VALUE;
    std::int64_t frames = 0; // that came out
    bool isCut = false;
};

std::int64_t StampOf(const AVPacket& packet) {
    return packet.pts != AV_NOPTS_VALUE ? packet.pts : packet.dts;
}

// An encoder's delay: what the file or the decoder says that the stream begins with and is no
// sound.
std::int64_t SkipOf(const AVFrame& frame) {
    const AVFrameSideData* data = av_frame_get_side_data(&frame, AV_FRAME_DATA_SKIP_SAMPLES);
    return data != nullptr && data->size >= 4 ? std::int64_t{AV_RL32(data->data)} : 0;
}

bool IsServed(const SoundFormat& format) {
    return format.rate > 0 && format.rate <= kHighestRate && format.channels > 0 &&
           format.channels <= kMostChannels && format.sample != AV_SAMPLE_FMT_NONE;
}

// The frames of the packet that was just sent.
std::int64_t CountFrames(SoundDecoder& decoder, AVFrame& frame, SoundFormat& format,
                         std::int64_t& skip) {
    std::int64_t frames = 0;
    while (decoder.Receive(frame) == SoundDecoder::Result::Frame) {
        if (format.rate == 0) {
            format = FormatOf(frame);
            skip = SkipOf(frame);
        }
        frames += frame.nb_samples;
    }
    return frames;
}

// What a transform of Windows Media Audio has; packets hold varying numbers of them.
int UnitOfWma(const AVCodecParameters& stream) {
    if (stream.sample_rate <= 16000) {
        return 512;
    }
    const bool first = stream.codec_id == AV_CODEC_ID_WMAV1;
    return stream.sample_rate <= 22050 || (stream.sample_rate <= 32000 && first) ? 1024 : 2048;
}

bool HasUnits(AVCodecID codec) {
    switch (codec) {
    case AV_CODEC_ID_VORBIS:
    case AV_CODEC_ID_FLAC:
    case AV_CODEC_ID_WAVPACK:
    case AV_CODEC_ID_TTA:
    case AV_CODEC_ID_APE:
        return false;
    default:
        return codec >= AV_CODEC_ID_ADPCM_IMA_QT;
    }
}

int UnitOf(const AVCodecParameters& stream, const std::vector<Probed>& packets) {
    if (stream.codec_id == AV_CODEC_ID_WMAV1 || stream.codec_id == AV_CODEC_ID_WMAV2) {
        return UnitOfWma(stream);
    }
    if (!HasUnits(stream.codec_id)) {
        return 1;
    }
    std::int64_t common = 0;
    // The first may be short, as its overlap is missing, and the last as the sound ends there.
    const std::size_t end = packets.size() < kPackets ? packets.size() - 1 : packets.size();
    for (std::size_t i = 1; i < end; ++i) {
        common = std::gcd(common, packets[i].frames);
    }
    constexpr std::int64_t kSmallest = 64;
    constexpr std::int64_t kLargest = 1 << 16;
    return common < kSmallest || common > kLargest ? 1 : static_cast<int>(common);
}

// Whether the index of the file tells of packets that follow each other without a gap, as a rule:
// then its times mean what they say to the frame.
bool Tiles(const AVStream& stream, int rate, int unit) {
    const double framesPerTick = av_q2d(stream.time_base) * rate;
    const int count = avformat_index_get_entries_count(&stream);
    if (count < 3 || framesPerTick > 1) {
        return false;
    }
    auto& indexed = const_cast<AVStream&>(stream); // only looked at
    int odd = 0;
    std::int64_t before = avformat_index_get_entry(&indexed, 0)->timestamp;
    for (int i = 1; i < count; ++i) {
        const std::int64_t stamp = avformat_index_get_entry(&indexed, i)->timestamp;
        odd += static_cast<double>(stamp - before) * framesPerTick == unit ? 0 : 1;
        before = stamp;
    }
    return odd <= 1 + count / 50;
}

bool IsMov(const AVFormatContext& format) {
    return std::strstr(format.iformat->name, "mp4") != nullptr;
}

// libavformat finds its way in these by the bit rate, and is wrong about where it is for codecs
// whose blocks have a header.
bool SeeksByBitRate(const AVFormatContext& format, AVCodecID codec) {
    constexpr std::array<std::string_view, 3> kContainers = {"wav", "w64", "aiff"};
    const bool adaptive = codec >= AV_CODEC_ID_ADPCM_IMA_QT && codec < AV_CODEC_ID_AMR_NB;
    return adaptive && std::find(kContainers.begin(), kContainers.end(), format.iformat->name) !=
                           kContainers.end();
}

// In the MP4 family edit lists put the start at time 0.
std::int64_t BeginOf(const Demuxer& demuxer, const SoundClock& clock,
                     const std::vector<Probed>& packets, std::int64_t skip, std::int64_t origin) {
    if (IsMov(demuxer.Format()) && origin < 0) {
        return clock.FramesAt(0);
    }
    const auto positionOf = [&](const auto& isIt) {
        const auto found = std::find_if(packets.begin(), packets.end(), isIt);
        const bool later =
            found != packets.begin() && found != packets.end() && found->stamp != AV_NOPTS_VALUE;
        return later ? clock.PositionOf(found->stamp) : 0;
    };
    const std::int64_t uncut = positionOf([](const Probed& packet) { return !packet.isCut; });
    const std::int64_t sounding =
        positionOf([](const Probed& packet) { return packet.frames > 0; });
    return std::max(sounding + skip, uncut);
}

// The median of what is missing from the clock's count: codecs that spread their frames over
// packets stamp a packet with the time of its first byte. Exact clocks mean what they say.
std::int64_t PhaseOf(const SoundClock& clock, const std::vector<Probed>& packets) {
    std::vector<std::int64_t> missing;
    std::int64_t counted = packets.front().frames;
    for (std::size_t i = 1; i < packets.size(); ++i) {
        if (packets[i].stamp != AV_NOPTS_VALUE) {
            missing.push_back(counted - clock.FramesAt(packets[i].stamp));
        }
        counted += packets[i].frames;
    }
    if (missing.empty()) {
        return 0;
    }
    const auto middle = missing.begin() + static_cast<std::ptrdiff_t>(missing.size() / 2);
    std::nth_element(missing.begin(), middle, missing.end());
    return *middle;
}

// Whether positions by the clock are those that come out by counting.
bool Agrees(const SoundClock& clock, const std::vector<Probed>& packets) {
    std::size_t wrong = 0;
    std::int64_t counted = packets.front().frames;
    std::int64_t before = 0;
    for (std::size_t i = 1; i < packets.size(); ++i) {
        if (packets[i].stamp != AV_NOPTS_VALUE) {
            const std::int64_t position = clock.PositionOf(packets[i].stamp);
            wrong += position - before == counted ? 0 : 1;
            before = position;
            counted = 0;
        }
        counted += packets[i].frames;
    }
    return wrong <= 1 + packets.size() / 8;
}

} // namespace

SoundClock ClockOf(const AVStream& stream, const SoundProbe& probe) {
    return {stream.time_base, probe.origin, probe.format.rate, probe.unit, probe.phase};
}

SoundFormat FormatOf(const AVFrame& frame) {
    SoundFormat format;
    format.sample = static_cast<AVSampleFormat>(frame.format);
    format.rate = frame.sample_rate;
    format.channels = frame.ch_layout.nb_channels;
    format.layout = frame.ch_layout.order == AV_CHANNEL_ORDER_NATIVE ? frame.ch_layout.u.mask : 0;
    return format;
}

std::optional<SoundProbe> ProbeSound(Demuxer& demuxer, SoundDecoder& decoder) {
    const PacketPtr packet(av_packet_alloc());
    const FramePtr frame(av_frame_alloc());
    if (packet == nullptr || frame == nullptr) {
        return std::nullopt;
    }
    SoundProbe probe;
    std::vector<Probed> packets;
    std::int64_t bytes = 0;
    std::int64_t skip = 0;
    while (packets.size() < kPackets && bytes < kMostBytes && demuxer.Read(*packet)) {
        Probed& probed = packets.emplace_back();
        probed.stamp = StampOf(*packet);
        probed.isCut = (packet->flags & AV_PKT_FLAG_DISCARD) != 0;
        bytes += packet->size;
        packet->flags &= ~AV_PKT_FLAG_DISCARD;
        if (decoder.Send(packet.get())) {
            probed.frames = CountFrames(decoder, *frame, probe.format, skip);
        }
        av_packet_unref(packet.get());
    }
    if (!IsServed(probe.format)) {
        return std::nullopt;
    }
    for (const Probed& probed : packets) {
        probe.usualFrames = std::max(probe.usualFrames, probed.frames);
    }
    const AVStream& stream = demuxer.Stream();
    const bool timed = packets.front().stamp != AV_NOPTS_VALUE && demuxer.HasTimes();
    probe.origin = timed ? packets.front().stamp : 0;
    probe.unit = UnitOf(*stream.codecpar, packets);
    if (Tiles(stream, probe.format.rate, probe.unit)) {
        probe.unit = 1;
    }
    if (probe.unit > 1 && timed) {
        probe.phase = PhaseOf(ClockOf(stream, probe), packets);
    }
    const SoundClock clock = ClockOf(stream, probe);
    probe.isCounted = !timed || SeeksByBitRate(demuxer.Format(), stream.codecpar->codec_id) ||
                      !clock.IsFineEnough() || !Agrees(clock, packets);
    probe.begin = BeginOf(demuxer, clock, packets, skip, probe.origin);
    return probe;
}

} // namespace av
