#include "zanthe/audio/BRECLibAudioMediaReader.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "platform/brec/Reader.h"

namespace Zanthe {

namespace {

constexpr int SampleRate = 44100; // Hz
constexpr int ChannelCount = 2;
constexpr std::size_t BytesPerFrame = 4;

constexpr float FullScale = 1.0F / 32768.0F;

float SampleAt(const unsigned char* bytes) {
    std::int16_t sample = 0;
    std::memcpy(&sample, bytes, sizeof(sample));
    return static_cast<float>(sample) * FullScale;
}

void Separate(const unsigned char* interleaved, unsigned int frameCount, float* left,
              float* right) {
    for (unsigned int frame = 0; frame < frameCount; ++frame) {
        const unsigned char* bytes = interleaved + frame * BytesPerFrame;
        left[frame] = SampleAt(bytes);
        right[frame] = SampleAt(bytes + sizeof(std::int16_t));
    }
}

} // namespace

BRECLibAudioMediaReader::BRECLibAudioMediaReader(const std::string& path, int trackIndex)
    : BRECLibAudioMediaReader(path, trackIndex, BREC::Reader::create) {}

BRECLibAudioMediaReader::BRECLibAudioMediaReader(const std::string& path, int trackIndex,
                                                 const Opener& open)
    : m_path(path)
    , m_trackIndex(trackIndex) {
    const auto format = BREC::AudioFormat::create16BitSignedInterleaved(SampleRate, ChannelCount);
    m_reader = open(path, format, nullptr);
    if (m_reader == nullptr) {
        return;
    }
    const auto tracks = m_reader->tracks();
    // A negative one becomes larger than any.
    const auto index = static_cast<std::size_t>(trackIndex);
    if (index < tracks.size()) {
        m_track = tracks[index];
    }
}

BRECLibAudioMediaReader::BRECLibAudioMediaReader(boost::shared_ptr<BREC::MP4TrackReader> track)
    : m_track(std::move(track)) {}

BRECLibAudioMediaReader::~BRECLibAudioMediaReader() = default;

unsigned int BRECLibAudioMediaReader::FillAudioBuffer(std::int64_t startFrame,
                                                      unsigned int frameCount,
                                                      std::vector<float*>& channels) {
    if (channels.size() != ChannelCount || m_track == nullptr) {
        return 0;
    }
    // A negative start becomes one behind every track's end.
    const auto start = static_cast<std::uint64_t>(startFrame);
    const std::uint64_t length = m_track->lengthInFrames();
    if (start >= length) {
        return 0;
    }
    const auto count =
        static_cast<unsigned int>(std::min<std::uint64_t>(frameCount, length - start));
    if (m_scratch.size() < count * BytesPerFrame) {
        m_scratch.resize(count * BytesPerFrame);
    }
    const unsigned int delivered = m_track->fillAudioBuffer(start, count, m_scratch.data());
    const unsigned int written = std::min(delivered, count);
    Separate(m_scratch.data(), written, channels[0], channels[1]);
    return written;
}

} // namespace Zanthe
