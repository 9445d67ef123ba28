#include "zanthe/containers/PNGMOVVideoDecoder.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <optional>
#include <stdexcept>
#include <utility>

#include "platform/com/ComPtr.h"
#include "platform/com/MemoryStream.h"
#include "platform/wic/GdiplusStreamBitmap.h"
#include "platform/win32/Path.h"

namespace {

using namespace Gdiplus::DllExports;
using Gdiplus::Ok;

constexpr std::size_t PixelBytes = 4;
constexpr std::uint32_t MostTracks = std::numeric_limits<std::uint16_t>::max() + 1U;

struct DisposeImage {
    void operator()(Gdiplus::GpBitmap* image) const { GdipDisposeImage(image); }
};

using BitmapPtr = std::unique_ptr<Gdiplus::GpBitmap, DisposeImage>;

// Keeps the pixels of `bitmap` locked for reading as long as it lives.
class LockedBitmap {
public:
    LockedBitmap(Gdiplus::GpBitmap* bitmap, int width, int height)
        : m_bitmap(bitmap) {
        const Gdiplus::GpRect rect{0, 0, width, height};
        if (GdipBitmapLockBits(m_bitmap, &rect, Gdiplus::ImageLockModeRead,
                               Gdiplus::PixelFormat32bppARGB, &m_data) != Ok) {
            throw std::runtime_error("PNGMOVVideoDecoder: bitmap lock faied");
        }
    }

    LockedBitmap(const LockedBitmap&) = delete;
    LockedBitmap& operator=(const LockedBitmap&) = delete;

    ~LockedBitmap() { GdipBitmapUnlockBits(m_bitmap, &m_data); }

    const Gdiplus::BitmapData& Data() const { return m_data; }

private:
    Gdiplus::GpBitmap* m_bitmap;
    Gdiplus::BitmapData m_data{};
};

BitmapPtr OpenBitmap(const unsigned char* bytes, std::uint32_t byteCount) {
    const auto stream = com::ComPtr<IStream>::Attach(SHCreateMemStream(bytes, byteCount));
    Gdiplus::GpBitmap* bitmap = nullptr;
    if (!stream || GdipCreateBitmapFromStream(stream.Get(), &bitmap) != Ok) {
        throw std::runtime_error("PNGMOVVideoDecoder: Error creating bitmap from encoded image");
    }
    return BitmapPtr(bitmap);
}

void RequireAlpha(Gdiplus::GpBitmap* bitmap) {
    Gdiplus::PixelFormat format = 0;
    if (GdipGetImagePixelFormat(bitmap, &format) != Ok || format != Gdiplus::PixelFormat32bppARGB) {
        throw std::runtime_error("PNGMOVVideoDecoder: Unexpected pixel format");
    }
}

void CopyRows(const Gdiplus::BitmapData& from, unsigned char* to, int width, int height) {
    const auto* row = static_cast<const unsigned char*>(from.Scan0);
    const std::size_t rowBytes = static_cast<std::size_t>(width) * PixelBytes;
    for (int y = 0; y < height; ++y, row += from.Stride, to += rowBytes) {
        std::memcpy(to, row, rowBytes);
    }
}

// Units of the track from its start, cut off; nothing before the start and for what 64 bits cannot
// count.
std::optional<std::uint64_t> UnitsAt(double seconds, std::uint32_t timeScale) {
    const double units = seconds * timeScale;
    if (!(units > -1.0 && units < 0x1p64)) {
        return std::nullopt;
    }
    return static_cast<std::uint64_t>(std::max(units, 0.0));
}

} // namespace

std::unique_ptr<PNGMOVVideoDecoder> PNGMOVVideoDecoder::create(const std::string& path,
                                                               std::int32_t streamIndex) {
    std::unique_ptr<PNGMOVVideoDecoder> decoder(new PNGMOVVideoDecoder(path, streamIndex));
    return decoder->Open() ? std::move(decoder) : nullptr;
}

PNGMOVVideoDecoder::PNGMOVVideoDecoder(std::string path, std::int32_t streamIndex)
    : m_path(std::move(path))
    , m_streamIndex(streamIndex) {}

PNGMOVVideoDecoder::~PNGMOVVideoDecoder() = default;

bool PNGMOVVideoDecoder::Open() {
    m_file = Zanthe::OpenMp4File(win32::ExistingPath(m_path));
    if (m_file == nullptr) {
        return false;
    }
    const std::uint32_t trackCount = MP4GetNumberOfTracks(m_file.get(), nullptr, 0);
    const auto index = static_cast<std::uint32_t>(m_streamIndex); // of a negative one, beyond all
    return index >= trackCount ? TakeAnyTrack(trackCount) : TakeTrack(index);
}

bool PNGMOVVideoDecoder::TakeAnyTrack(std::uint32_t trackCount) {
    for (std::uint32_t index = 0; index < std::min(trackCount, MostTracks); ++index) {
        if (TakeTrack(index)) {
            return true;
        }
    }
    return false;
}

bool PNGMOVVideoDecoder::TakeTrack(std::uint32_t index) {
    if (index >= MostTracks) { // no track has such a number
        return false;
    }
    const MP4TrackId track =
        MP4FindTrackId(m_file.get(), static_cast<std::uint16_t>(index), nullptr, 0);
    if (track == MP4_INVALID_TRACK_ID) {
        return false;
    }
    const char* coding = MP4GetTrackMediaDataName(m_file.get(), track);
    if (coding == nullptr || std::strcmp(coding, "png ") != 0) {
        return false;
    }
    m_trackId = track;
    m_timeScale = MP4GetTrackTimeScale(m_file.get(), track);
    m_durationSeconds = static_cast<double>(MP4GetTrackDuration(m_file.get(), track)) / m_timeScale;
    return true;
}

void PNGMOVVideoDecoder::RequireTrack() const {
    if (m_file == nullptr || m_trackId == MP4_INVALID_TRACK_ID) {
        throw std::runtime_error("PNGMOVVideoDecoder: Can't get width()");
    }
}

int PNGMOVVideoDecoder::outputWidth() const {
    RequireTrack();
    return MP4GetTrackVideoWidth(m_file.get(), m_trackId);
}

int PNGMOVVideoDecoder::outputHeight() const {
    RequireTrack(); // with the text of the width, as it always has been
    return MP4GetTrackVideoHeight(m_file.get(), m_trackId);
}

bool PNGMOVVideoDecoder::readFrame(Zanthe::MediaTime time, unsigned char* buffer, double&) {
    const double seconds =
        static_cast<double>(time.numerator()) / static_cast<double>(time.denominator());
    if (!ReadSample(seconds)) {
        return false;
    }
    DecodeSample(buffer);
    return true;
}

bool PNGMOVVideoDecoder::ReadSample(double seconds) {
    const auto when = UnitsAt(seconds, m_timeScale);
    const MP4SampleId sample =
        when ? MP4GetSampleIdFromTime(m_file.get(), m_trackId, *when, false) : 0;
    if (sample == MP4_INVALID_SAMPLE_ID) {
        return false;
    }
    std::uint32_t size = MP4GetSampleSize(m_file.get(), m_trackId, sample);
    if (size == 0) {
        return false;
    }
    if (size > m_sampleCapacity) {
        m_sampleCapacity = 0; // should there be no memory
        m_sampleBuffer = ZeroedBytes(size);
        m_sampleCapacity = size;
    }
    unsigned char* bytes = m_sampleBuffer.Data();
    if (!MP4ReadSample(m_file.get(), m_trackId, sample, &bytes, &size)) {
        return false;
    }
    // The picture is decoded from the whole buffer. An image that is cut off must not go on in what
    // an earlier one has left there.
    std::memset(m_sampleBuffer.Data() + size, 0, m_sampleCapacity - size);
    return true;
}

void PNGMOVVideoDecoder::DecodeSample(unsigned char* buffer) const {
    const int width = outputWidth();
    const int height = outputHeight();
    const BitmapPtr bitmap = OpenBitmap(m_sampleBuffer.Data(), m_sampleCapacity);
    RequireAlpha(bitmap.get());
    const LockedBitmap locked(bitmap.get(), width, height);
    if (locked.Data().Height != static_cast<unsigned int>(height)) {
        throw std::runtime_error("PNGMOVVideoDecoder: unexpected bitmap height");
    }
    CopyRows(locked.Data(), buffer, width, height);
}
