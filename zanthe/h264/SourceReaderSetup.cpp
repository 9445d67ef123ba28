#include "zanthe/h264/SourceReaderSetup.h"

#include <algorithm>
#include <array>
#include <limits>
#include <vector>

#include <boost/rational.hpp>

#include "platform/mf/DXGIDeviceManager.h"
#include "platform/mf/MediaFormats.h"
#include "platform/win32/Text.h"
#include "zanthe/analysis/WindowsVersionProvider.h"
#include "zanthe/h264/HardwareDecoders.h"
#include "zanthe/h264/PropVariantHelper.h"
#include "zanthe/h264/SequenceHeaders.h"
#include "zanthe/h264/WinH264DurationUtil.h"

namespace Zanthe {

namespace {

constexpr DWORD FirstVideo = MF_SOURCE_READER_FIRST_VIDEO_STREAM;

bool DeviceIsToBeHad(const IMFDXGIDeviceManager* deviceManager) {
    return WindowsVersionProvider().IsWindows62OrLater() && deviceManager != nullptr &&
           ActiveHardwareDecoders() < HardwareDecodersLimit;
}

// Empty where there is no memory for it.
com::ComPtr<IMFAttributes> ReaderAttributes(DecoderOutputFormat format,
                                            IMFDXGIDeviceManager* deviceManager) {
    constexpr UINT32 expected = 3;
    com::ComPtr<IMFAttributes> attributes;
    if (FAILED(MFCreateAttributes(attributes.Put(), expected))) {
        return {};
    }
    // A setter fails for lack of memory alone, and the reader then lacks what it would have given.
    if (format != DecoderOutputFormat::MemoryNv12) {
        attributes->SetUINT32(MF_SOURCE_READER_ENABLE_ADVANCED_VIDEO_PROCESSING, 1);
    }
    if (format == DecoderOutputFormat::DeviceArgb32) {
        attributes->SetUINT32(MF_READWRITE_ENABLE_HARDWARE_TRANSFORMS, 1);
        attributes->SetUnknown(MF_SOURCE_READER_D3D_MANAGER, deviceManager);
    }
    return attributes;
}

using AspectRatio = boost::rational<std::int32_t>;

// Products wrap in 32 bits, as the ratio's terms are numbers of 32 bits.
AspectRatio RatioOfProducts(std::uint32_t a, std::uint32_t b, std::uint32_t c, std::uint32_t d) {
    const std::uint32_t numerator = a * b;
    const std::uint32_t denominator = c * d;
    constexpr auto most = static_cast<std::uint32_t>(std::numeric_limits<std::int32_t>::max());
    if (numerator > most || denominator > most) {
        throw boost::bad_rational();
    }
    return {static_cast<std::int32_t>(numerator), static_cast<std::int32_t>(denominator)};
}

// A picture of w by h with pixels of p by q is to fill W by H: h q W = w p H. Hostile numbers wrap.
bool FillsDisplaySize(const NativeMediaTypeInfo& info, std::uint64_t width, std::uint64_t height) {
    const std::uint64_t h = info.height;
    const std::uint64_t w = info.width;
    return h * info.pixelAspectRatioDenominator * width ==
           w * info.pixelAspectRatioNumerator * height;
}

void CorrectAspectRatio(NativeMediaTypeInfo& info, const TrackGeometry& geometry) {
    const auto width = static_cast<std::uint64_t>(std::int64_t{geometry.width});
    const auto height = static_cast<std::uint64_t>(std::int64_t{geometry.height});
    if (FillsDisplaySize(info, width, height)) {
        return;
    }
    const AspectRatio ratio =
        RatioOfProducts(info.height, static_cast<std::uint32_t>(geometry.width), info.width,
                        static_cast<std::uint32_t>(geometry.height));
    info.pixelAspectRatioNumerator = static_cast<std::uint32_t>(ratio.numerator());
    info.pixelAspectRatioDenominator = static_cast<std::uint32_t>(ratio.denominator());
}

// Empty where the type has none.
std::vector<unsigned char> SequenceHeaderOf(IMFMediaType* native) {
    UINT32 size = 0;
    if (FAILED(native->GetBlobSize(MF_MT_MPEG_SEQUENCE_HEADER, &size)) || size == 0) {
        return {};
    }
    std::vector<unsigned char> header(size);
    if (FAILED(native->GetBlob(MF_MT_MPEG_SEQUENCE_HEADER, header.data(), size, nullptr))) {
        return {};
    }
    return header;
}

const GUID& SubtypeOf(DecoderOutputFormat format) {
    return format == DecoderOutputFormat::MemoryNv12 ? MFVideoFormat_NV12 : MFVideoFormat_ARGB32;
}

// A failure counts as 0: the file may still be readable.
std::int64_t DurationByHeaders(const std::string& path) {
    try {
        return WinH264DurationUtil::GetRefTimeDuration(path);
    } catch (...) {
        return 0;
    }
}

} // namespace

DecoderOutputFormat ChooseOutputFormat(DecoderOutputFormat format,
                                       const IMFDXGIDeviceManager* deviceManager,
                                       const TrackGeometry& geometry) {
    if (RotationFromOrientation(geometry) != 0) {
        return DecoderOutputFormat::MemoryNv12;
    }
    const bool asked = format == DecoderOutputFormat::DeviceArgb32;
    return asked && !DeviceIsToBeHad(deviceManager) ? DecoderOutputFormat::MemoryArgb32 : format;
}

com::ComPtr<IMFSourceReader> OpenSourceReader(const std::string& path, DecoderOutputFormat format,
                                              IMFDXGIDeviceManager* deviceManager) {
    const auto attributes = ReaderAttributes(format, deviceManager);
    com::ComPtr<IMFSourceReader> reader;
    const HRESULT result = MFCreateSourceReaderFromURL(win32::Utf8ToWide(path).c_str(),
                                                       attributes.Get(), reader.Put());
    return SUCCEEDED(result) ? reader : com::ComPtr<IMFSourceReader>();
}

bool IsSupportedVideo(IMFMediaType* native, GUID* subtype) {
    constexpr std::array supported = {MFVideoFormat_M4S2,    MFVideoFormat_MP4V,
                                      MFVideoFormat_H264,    MFVideoFormat_H264_ES,
                                      MFVideoFormat_HEVC,    MFVideoFormat_HEVC_ES};
    GUID major{};
    return SUCCEEDED(native->GetMajorType(&major)) && major == MFMediaType_Video &&
           SUCCEEDED(native->GetGUID(MF_MT_SUBTYPE, subtype)) &&
           std::find(supported.begin(), supported.end(), *subtype) != supported.end();
}

NativeMediaTypeInfo DescribeNativeType(IMFMediaType* native, const GUID& subtype,
                                       const TrackGeometry& geometry) {
    NativeMediaTypeInfo info;
    info.subtype = subtype;
    // Each of them leaves the default where the type does not tell.
    static_cast<void>(MFGetAttributeSize(native, MF_MT_FRAME_SIZE, &info.width, &info.height));
    static_cast<void>(MFGetAttributeRatio(native, MF_MT_FRAME_RATE, &info.frameRateNumerator,
                                          &info.frameRateDenominator));
    static_cast<void>(MFGetAttributeRatio(native, MF_MT_PIXEL_ASPECT_RATIO,
                                          &info.pixelAspectRatioNumerator,
                                          &info.pixelAspectRatioDenominator));
    CorrectAspectRatio(info, geometry);
    info.rotation = RotationFromOrientation(geometry);
    return info;
}

ColorConversionInfo ColorOf(IMFMediaType* native, const TrackGeometry& geometry) {
    constexpr int standardDefinition = 720;
    ColorConversionInfo color;
    if (const auto header = SequenceHeaderOf(native); !header.empty()) {
        color = ParseColorInfoFromSequenceHeaders(header);
    }
    if (color == ColorConversionInfo()) {
        color.matrix = geometry.height <= standardDefinition ? MFVideoTransferMatrix_BT601
                                                             : MFVideoTransferMatrix_BT709;
    }
    return color;
}

HRESULT SetOutputType(IMFSourceReader* reader, DecoderOutputFormat format,
                      const NativeMediaTypeInfo& native) {
    com::ComPtr<IMFMediaType> type;
    if (const HRESULT result = MFCreateMediaType(type.Put()); FAILED(result)) {
        return result;
    }
    type->SetGUID(MF_MT_MAJOR_TYPE, MFMediaType_Video);
    type->SetGUID(MF_MT_SUBTYPE, SubtypeOf(format));
    type->SetUINT32(MF_MT_INTERLACE_MODE, MFVideoInterlace_Progressive);
    MFSetAttributeSize(type.Get(), MF_MT_FRAME_SIZE, native.width, native.height);
    MFSetAttributeRatio(type.Get(), MF_MT_FRAME_RATE, native.frameRateNumerator,
                        native.frameRateDenominator);
    MFSetAttributeRatio(type.Get(), MF_MT_PIXEL_ASPECT_RATIO, native.pixelAspectRatioNumerator,
                        native.pixelAspectRatioDenominator);
    type->SetUINT32(MF_MT_FIXED_SIZE_SAMPLES, 1);
    return reader->SetCurrentMediaType(FirstVideo, nullptr, type.Get());
}

HRESULT SelectFirstVideoStream(IMFSourceReader* reader) {
    const HRESULT result = reader->SetStreamSelection(MF_SOURCE_READER_ALL_STREAMS, FALSE);
    return FAILED(result) ? result : reader->SetStreamSelection(FirstVideo, TRUE);
}

// The first call that fails tells that there are no more streams.
int FindSelectedStream(IMFSourceReader* reader) {
    constexpr int mostStreams = 65536;
    for (int index = 0; index < mostStreams; ++index) {
        BOOL selected = FALSE;
        if (reader->GetStreamSelection(static_cast<DWORD>(index), &selected) != S_OK) {
            break;
        }
        if (selected != FALSE) {
            return index;
        }
    }
    return -1;
}

std::int64_t FindDuration(const std::string& path) {
    if (const std::int64_t duration = DurationByHeaders(path); duration != 0) {
        return duration;
    }
    com::ComPtr<IMFSourceReader> reader;
    if (FAILED(MFCreateSourceReaderFromURL(win32::Utf8ToWide(path).c_str(), nullptr,
                                           reader.Put()))) {
        return 0;
    }
    PropVariantHelper duration;
    const HRESULT result = reader->GetPresentationAttribute(MF_SOURCE_READER_MEDIASOURCE,
                                                            MF_PD_DURATION, duration);
    return SUCCEEDED(result) ? static_cast<std::int64_t>(duration) : 0;
}

} // namespace Zanthe
