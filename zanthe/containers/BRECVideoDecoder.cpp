#include "zanthe/containers/BRECVideoDecoder.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "platform/brec/Reader.h"

namespace {

// What is asked of the sound, which is not used here.
constexpr int SampleRate = 44100; // Hz
constexpr int ChannelCount = 2;

constexpr std::uint64_t PixelBytes = 4;

bool IsPictureSize(const BREC::MP4TrackReader& track) {
    return std::uint64_t{track.width()} * track.height() <=
           std::numeric_limits<int>::max() / PixelBytes;
}

} // namespace

BRECVideoDecoder::BRECVideoDecoder(std::string path, std::int32_t trackIndex)
    : m_path(std::move(path))
    , m_trackIndex(trackIndex) {}

BRECVideoDecoder::~BRECVideoDecoder() = default;

void BRECVideoDecoder::initialize() {
    initialize(BREC::Reader::create);
}

void BRECVideoDecoder::initialize(const Opener& open) {
    const auto format = BREC::AudioFormat::create16BitSignedInterleaved(SampleRate, ChannelCount);
    m_reader = open(m_path, format, nullptr);
    m_track.reset();
    if (m_reader == nullptr) {
        return;
    }
    const auto tracks = m_reader->tracks();
    const auto index = static_cast<std::size_t>(m_trackIndex); // of a negative one, beyond all
    if (index < tracks.size() && IsPictureSize(*tracks[index])) {
        m_track = tracks[index];
    }
}

int BRECVideoDecoder::outputWidth() const {
    return m_track != nullptr ? static_cast<int>(m_track->width()) : 0;
}

int BRECVideoDecoder::outputHeight() const {
    return m_track != nullptr ? static_cast<int>(m_track->height()) : 0;
}

bool BRECVideoDecoder::readFrame(Zanthe::MediaTime time, unsigned char* buffer,
                                 double& actualTime) {
    double outTime = -1.0;
    if (m_track != nullptr) {
        const double seconds =
            static_cast<double>(time.numerator()) / static_cast<double>(time.denominator());
        const auto byteCount =
            static_cast<unsigned int>(PixelBytes * m_track->height() * m_track->width());
        // The answer tells nothing that the time does not.
        static_cast<void>(
            m_track->decodeFrameAtTime(seconds, buffer, byteCount, &outTime, actualTime, 0.0, 0.0));
    }
    actualTime = outTime;
    return true;
}
