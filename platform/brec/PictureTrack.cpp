#include "platform/brec/PictureTrack.h"

#include <cmath>
#include <optional>
#include <utility>
#include <vector>

#include "platform/av/PictureConversion.h"
#include "platform/av/PictureScaling.h"

namespace BREC {

namespace {

constexpr double UnitsPerSecond = 1e7; // of 100 ns
constexpr std::size_t PixelBytes = 4;

// The whole units in `seconds`; nothing before the start and where 64 bits cannot count them. A
// double tells a unit's edge only nearly: what is this close below it is meant to be on it.
std::optional<std::int64_t> UnitsAt(double seconds) {
    constexpr double near = 0.01;
    const double units = std::floor(seconds * UnitsPerSecond + near);
    if (!(units >= 0.0 && units < 0x1p62)) {
        return std::nullopt;
    }
    return static_cast<std::int64_t>(units);
}

} // namespace

PictureTrack::PictureTrack(av::Track track, const AudioFormat& format, std::string path,
                           int ordinal)
    : DescribedTrack(std::move(track), format)
    , m_path(std::move(path))
    , m_ordinal(ordinal) {}

PictureTrack::~PictureTrack() = default;

// The buffer is written also where it holds the picture already: whose it was since then, nobody
// knows here.
bool PictureTrack::decodeFrameAtTime(double seconds, unsigned char* buffer, unsigned int byteCount,
                                     double* outTime, double /*previousTime*/, double, double) {
    const auto time = UnitsAt(seconds);
    const std::uint64_t needed = std::uint64_t{width()} * height() * PixelBytes;
    if (!time || needed == 0 || byteCount < needed) {
        return false;
    }
    const av::PicturePtr picture = PictureAt(*time);
    if (picture == nullptr || !Write(*picture, buffer)) {
        return false;
    }
    *outTime = static_cast<double>(picture->Start()) / UnitsPerSecond;
    return true;
}

av::VideoStream* PictureTrack::Stream() {
    if (!m_opened) {
        m_opened = true;
        m_stream = av::VideoStream::Open(m_path, {.ordinal = m_ordinal});
    }
    return m_stream.get();
}

av::PicturePtr PictureTrack::PictureAt(std::int64_t time) {
    av::VideoStream* stream = Stream();
    av::PicturePtr picture;
    if (stream == nullptr || !stream->Seek(time) ||
        stream->Read(picture) != av::ReadResult::Picture) {
        return nullptr;
    }
    return picture;
}

bool PictureTrack::Write(const av::Picture& picture, unsigned char* buffer) const {
    const auto stride = static_cast<std::ptrdiff_t>(width() * PixelBytes);
    const auto isOfTrackSize = [this](const av::Picture& each) {
        return static_cast<std::uint32_t>(each.Width()) == width() &&
               static_cast<std::uint32_t>(each.Height()) == height();
    };
    if (isOfTrackSize(picture)) {
        return av::ConvertToBgra(picture, buffer, stride);
    }
    const auto scaled =
        av::ScalePicture(picture, static_cast<int>(width()), static_cast<int>(height()));
    return scaled != nullptr && isOfTrackSize(*scaled) &&
           av::ConvertToBgra(*scaled, buffer, stride);
}

} // namespace BREC
