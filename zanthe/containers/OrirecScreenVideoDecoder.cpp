#include "zanthe/containers/OrirecScreenVideoDecoder.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include "platform/win32/FaultGuard.h"
#include "platform/win32/Text.h"
#include "zanthe/core/TextException.h"

namespace {

using AVI20::Read::FourCc;
using AVI20::Read::MediaStreamReader;
using AVI20::Read::Reader;
using AVI20::Read::StreamInfo;
using Zanthe::TextException;

constexpr DWORD kScreenCodec = FourCc("bscc");
// A picture of 16K (15360 x 8640) is below it.
constexpr std::int64_t kMostPixels = std::int64_t{1} << 27;
constexpr std::uint32_t kUnchangedBelow = 2; // bytes
constexpr std::size_t kPixelBytes = 4;

std::shared_ptr<MediaStreamReader> FirstVideo(Reader& reader) {
    for (std::size_t i = 0; i < reader.GetStreamCount(); ++i) {
        if (reader.GetStreamInfo(i).header.fccType == FourCc("vids")) {
            return std::make_shared<MediaStreamReader>(reader.GetMediaStreamReader(i));
        }
    }
    return std::make_shared<MediaStreamReader>();
}

bool IsPictureSize(const BITMAPINFOHEADER& format) {
    return format.biWidth >= 0 && format.biHeight >= 0 && format.biWidth <= kMostPixels &&
           std::int64_t{format.biWidth} * format.biHeight <= kMostPixels;
}

// What a codec may write: rows are padded to 4 bytes, whether biSizeImage has room for that or not.
std::size_t WrittenBytes(const BITMAPINFOHEADER& format) {
    const auto width = static_cast<std::size_t>(format.biWidth);
    const std::size_t stride = (width * format.biBitCount / 8 + 3) / 4 * 4;
    return std::max<std::size_t>(stride * static_cast<std::size_t>(format.biHeight),
                                 format.biSizeImage);
}

DWORD_PTR Parameter(BITMAPINFOHEADER& format) {
    return reinterpret_cast<DWORD_PTR>(&format);
}

// Five bits of a 16-bit pixel as the upper ones of a byte.
unsigned char Channel(std::uint16_t pixel, int shift) {
    return static_cast<unsigned char>((pixel >> shift & 31) << 3);
}

void Expand24(const unsigned char* from, unsigned char* to, std::size_t pixels) {
    for (std::size_t i = 0; i < pixels; ++i, from += 3, to += kPixelBytes) {
        std::memcpy(to, from, 3);
        to[3] = 255;
    }
}

} // namespace

OrirecScreenVideoDecoder::AVI20Bundle::AVI20Bundle(::IStream* stream)
    : m_stream(stream)
    , m_reader(&m_stream)
    , m_video(FirstVideo(m_reader)) {}

void OrirecScreenVideoDecoder::CloseCodec::operator()(HIC codec) const {
    ICSendMessage(codec, ICM_DECOMPRESS_END, 0, 0);
    ICClose(codec);
}

std::unique_ptr<OrirecScreenVideoDecoder>
OrirecScreenVideoDecoder::create(const std::string& path) {
    return std::unique_ptr<OrirecScreenVideoDecoder>(new OrirecScreenVideoDecoder(path));
}

OrirecScreenVideoDecoder::OrirecScreenVideoDecoder(const std::string& path) {
    OpenScreenStream(win32::Utf8ToWide(path));
    m_bundle = std::make_unique<AVI20Bundle>(m_screenStream.Get());
    const StreamInfo info = m_bundle->Video().GetStreamInfo();
    OpenCodec(info);
    FillFormats(info);
    FitFormatsToScreenCodec(info);
    AskCodec();
    AllocateBuffers();
    ICSendMessage(m_codec.get(), ICM_DECOMPRESS_BEGIN, Parameter(m_inputFormat),
                  Parameter(m_outputFormat));
    m_width = info.videoFormat.biWidth;
    m_height = info.videoFormat.biHeight;
    TakeTimes(info);
}

OrirecScreenVideoDecoder::~OrirecScreenVideoDecoder() = default;

void OrirecScreenVideoDecoder::OpenScreenStream(const std::wstring& path) {
    if (FAILED(StgIsStorageFile(path.c_str()))) {
        throw TextException("OrirecScreenVideoDecoder - orirec is not a structured-storage file!");
    }
    if (FAILED(StgOpenStorage(path.c_str(), nullptr, STGM_SHARE_DENY_WRITE, nullptr, 0,
                              m_storage.Put()))) {
        throw TextException("OrirecScreenVideoDecoder - failed to open structured-storage file!");
    }
    if (FAILED(m_storage->OpenStream(L"Screen_Stream.avi", nullptr, STGM_SHARE_EXCLUSIVE, 0,
                                     m_screenStream.Put()))) {
        throw TextException("OrirecScreenVideoDecoder - failed to open screen stream!");
    }
}

void OrirecScreenVideoDecoder::OpenCodec(const StreamInfo& info) {
    if (IsPictureSize(info.videoFormat)) {
        m_codec.reset(ICOpen(ICTYPE_VIDEO, info.header.fccHandler, ICMODE_DECOMPRESS));
    }
    if (m_codec == nullptr) {
        throw TextException("OrirecScreenVideoDecoder - VFW codec initialization failed!");
    }
}

void OrirecScreenVideoDecoder::FillFormats(const StreamInfo& info) {
    m_inputFormat.biSize = sizeof(BITMAPINFOHEADER);
    m_inputFormat.biWidth = info.videoFormat.biWidth;
    m_inputFormat.biHeight = info.videoFormat.biHeight;
    m_inputFormat.biPlanes = 1;
    m_outputFormat = m_inputFormat;

    m_inputFormat.biBitCount = info.videoFormat.biBitCount;
    m_inputFormat.biCompression = info.videoFormat.biCompression;
    m_inputFormat.biSizeImage = info.header.dwSuggestedBufferSize;

    m_outputFormat.biBitCount = 32;
    m_outputFormat.biCompression = BI_RGB;
    // At most 2^29: the size is that of a picture.
    m_outputFormat.biSizeImage =
        static_cast<DWORD>(static_cast<std::size_t>(m_outputFormat.biWidth) *
                           static_cast<std::size_t>(m_outputFormat.biHeight) * kPixelBytes);
}

// The screen codec wants its pixels as they were taken, and rows of whole groups of four.
void OrirecScreenVideoDecoder::FitFormatsToScreenCodec(const StreamInfo& info) {
    if (info.isOldIndex || m_inputFormat.biCompression != kScreenCodec) {
        return;
    }
    if (m_inputFormat.biBitCount != 16) {
        m_inputFormat.biBitCount = 24;
    }
    m_outputFormat.biBitCount = m_inputFormat.biBitCount;
    m_inputFormat.biWidth = (m_inputFormat.biWidth + 3) / 4 * 4;
    m_outputFormat.biWidth = m_inputFormat.biWidth;
}

// A codec that does not give 32 bits gives 24: it is not asked again.
void OrirecScreenVideoDecoder::AskCodec() {
    const LRESULT answer = ICSendMessage(m_codec.get(), ICM_DECOMPRESS_QUERY,
                                         Parameter(m_inputFormat), Parameter(m_outputFormat));
    if (answer != ICERR_OK && m_outputFormat.biBitCount != 24) {
        m_outputFormat.biBitCount = 24;
        m_outputFormat.biSizeImage = static_cast<DWORD>(m_outputFormat.biHeight) *
                                     static_cast<DWORD>(m_outputFormat.biWidth) * 3;
    }
}

void OrirecScreenVideoDecoder::AllocateBuffers() {
    // No frame is longer than the stream that it lies in, whatever the header suggests.
    m_compressedCapacity = static_cast<std::uint32_t>(
        std::min<std::uint64_t>(m_inputFormat.biSizeImage, m_bundle->Size()));
    m_compressedBuffer = ZeroedBytes(m_compressedCapacity);
    m_decodedBuffer = ZeroedBytes(WrittenBytes(m_outputFormat));
}

void OrirecScreenVideoDecoder::TakeTimes(const StreamInfo& info) {
    if (info.header.fccType == FourCc("vids")) {
        // A scale of 0 gives a rate without end, and then a duration in which no time lies.
        m_frameRate = static_cast<double>(info.header.dwRate) / info.header.dwScale;
    }
    if (m_frameRate != 0.0) {
        m_durationSeconds = info.header.dwLength / m_frameRate;
    }
}

bool OrirecScreenVideoDecoder::readFrame(Zanthe::MediaTime time, unsigned char* buffer,
                                         double& actualTime) {
    const double seconds =
        static_cast<double>(time.numerator()) / static_cast<double>(time.denominator());
    if (seconds < 0.0 || !(seconds < m_durationSeconds)) {
        return false;
    }
    const double number = std::floor(seconds * m_frameRate);
    if (!(number < m_bundle->Video().GetFrameCount())) {
        return false;
    }
    if (!DecodeUpTo(static_cast<std::uint32_t>(number)) || !CopyUpright(buffer)) {
        return false;
    }
    actualTime = seconds;
    return true;
}

bool OrirecScreenVideoDecoder::DecodeUpTo(std::uint32_t frame) {
    if (m_lastFrame >= 0 && frame == static_cast<std::uint32_t>(m_lastFrame)) {
        return true;
    }
    for (std::uint32_t i = StartFor(frame); i <= frame; ++i) {
        const std::uint32_t size = m_bundle->Video().GetFrameSize(i);
        if (size < kUnchangedBelow) {
            m_lastFrame += m_lastFrame < std::numeric_limits<std::int32_t>::max() ? 1 : 0;
        } else if (!DecodeFrame(i, size)) {
            return false;
        }
    }
    return true;
}

// Where decoding starts: at the key frame, or behind the last frame where that is no further away.
std::uint32_t OrirecScreenVideoDecoder::StartFor(std::uint32_t frame) const {
    const std::uint32_t key = m_bundle->Video().FindKeyFrame(frame);
    const auto last = static_cast<std::uint32_t>(m_lastFrame);
    if (m_lastFrame < 0 || frame < last || frame - key < frame - last) {
        return key;
    }
    return last + 1;
}

bool OrirecScreenVideoDecoder::DecodeFrame(std::uint32_t frame, std::uint32_t size) {
    if (size > m_compressedCapacity) {
        if (size > m_bundle->Size()) {
            return false; // it could not be read
        }
        m_compressedBuffer = ZeroedBytes(size);
        m_compressedCapacity = size;
    }
    Remember(frame);
    if (!m_bundle->Video().ReadFrame(frame, m_compressedBuffer.Data())) {
        return false;
    }
    m_inputFormat.biSizeImage = size;
    if (!Decompress(frame)) {
        return false;
    }
    if (m_outputFormat.biBitCount == 16) {
        ExpandTo32Bits();
    }
    m_lastFrame = static_cast<std::int32_t>(frame);
    return true;
}

// Codecs are other people's: one that throws or faults has failed to decode a frame, and no more.
bool OrirecScreenVideoDecoder::Decompress(std::uint32_t frame) {
    const DWORD flags = m_bundle->Video().IsKeyFrame(frame) ? 0 : ICDECOMPRESS_NOTKEYFRAME;
    auto result = static_cast<DWORD>(ICERR_ERROR);
    const auto decompress = [&] {
        result = ICDecompress(m_codec.get(), flags, &m_inputFormat, m_compressedBuffer.Data(),
                              &m_outputFormat, m_decodedBuffer.Data());
    };
    try {
        return win32::SurvivesFaults(decompress) && result == ICERR_OK;
    } catch (...) {
        return false;
    }
}

void OrirecScreenVideoDecoder::Remember(std::uint32_t frame) {
    if (m_recentFrames.size() == m_recentFramesCapacity) {
        m_recentFrames.pop_front();
    }
    m_recentFrames.push_back(frame);
}

// Pixel behind pixel, whatever the rows of the codec are padded to: a picture whose width is no
// multiple of four comes out slanted, as it always has.
void OrirecScreenVideoDecoder::ExpandTo32Bits() {
    const std::size_t pixels =
        static_cast<std::size_t>(m_width) * static_cast<std::size_t>(m_height);
    if (m_expandedBuffer.IsNull()) {
        m_expandedBuffer = ZeroedBytes(pixels * kPixelBytes);
    }
    const unsigned char* from = m_decodedBuffer.Data();
    unsigned char* to = m_expandedBuffer.Data();
    for (std::size_t i = 0; i < pixels; ++i, from += 2, to += kPixelBytes) {
        std::uint16_t pixel = 0;
        std::memcpy(&pixel, from, sizeof pixel);
        to[0] = Channel(pixel, 0);
        to[1] = Channel(pixel, 5);
        to[2] = Channel(pixel, 10);
        to[3] = 255;
    }
}

// The bottom row comes first in what the codec gives. False where there is no picture yet.
bool OrirecScreenVideoDecoder::CopyUpright(unsigned char* buffer) const {
    const WORD bits = m_outputFormat.biBitCount;
    const ZeroedBytes& source = bits == 16 ? m_expandedBuffer : m_decodedBuffer;
    if (source.IsNull()) {
        return false;
    }
    const auto width = static_cast<std::size_t>(m_width);
    const auto height = static_cast<std::size_t>(m_height);
    const std::size_t pitch =
        bits == 24 ? static_cast<std::size_t>(m_outputFormat.biWidth) * 3 : width * kPixelBytes;
    for (std::size_t y = 0; y < height; ++y) {
        const unsigned char* from = source.Data() + y * pitch;
        unsigned char* to = buffer + (height - 1 - y) * width * kPixelBytes;
        if (bits == 24) {
            Expand24(from, to, width);
        } else {
            std::memcpy(to, from, width * kPixelBytes);
        }
    }
    return true;
}
