#include "zanthe/images/WICAnimatedGIFReader.h"

#include <algorithm>
#include <array>
#include <string_view>

#include <boost/make_shared.hpp>

#include "zanthe/images/GifDelay.h"

namespace Zanthe {

namespace {

constexpr std::uint32_t HundredthOfASecond = 10; // milliseconds

// Items that a frame may have or not: `absent` where it has not. One of another type is a failure.
template <typename Value>
HRESULT ReadOptional(const MetadataReader& metadata, const wchar_t* name, Value absent,
                     Value& value) {
    const HRESULT result = metadata.Read(name, value);
    if (result != WINCODEC_ERR_PROPERTYNOTFOUND) {
        return result;
    }
    value = absent;
    return S_OK;
}

bool IsLoopExtension(const std::vector<std::uint8_t>& application) {
    constexpr std::size_t nameBytes = 11;
    const std::string_view name(reinterpret_cast<const char*>(application.data()),
                                application.size());
    return name.size() == nameBytes && (name == "NETSCAPE2.0" || name == "ANIMEXTS1.0");
}

} // namespace

WICAnimatedGIFReader::WICAnimatedGIFReader(const CStringW& path)
    : WICImageReader(path) {}

WICAnimatedGIFReader::~WICAnimatedGIFReader() = default;

void WICAnimatedGIFReader::Reset() {
    WICImageReader::Reset();
    m_frameCount = 0;
    m_loopCount = 0;
    m_hasLoopCount = false;
    m_screenWidth = m_screenHeight = 0;
    m_displayWidth = m_displayHeight = 0;
    m_background = {};
    m_duration = 0;
    m_frameRate = 0;
    m_variableDelays = false;
    m_frames.clear();
}

int WICAnimatedGIFReader::frameAtTime(double seconds) const {
    std::uint64_t end = 0; // of the frame, in milliseconds
    for (std::size_t i = 0; i < m_frames.size(); ++i) {
        end += m_frames[i]->delay;
        if (static_cast<double>(end) / 1000.0 > seconds) {
            return static_cast<int>(i);
        }
    }
    return std::max(0, static_cast<int>(m_frames.size()) - 1);
}

HRESULT WICAnimatedGIFReader::ReadMetadata() {
    HRESULT result = Decoder()->GetFrameCount(&m_frameCount);
    com::ComPtr<IWICMetadataQueryReader> reader;
    if (SUCCEEDED(result)) {
        result = Decoder()->GetMetadataQueryReader(reader.Put());
    }
    if (FAILED(result)) {
        return result;
    }
    const MetadataReader metadata(std::move(reader));
    if (FAILED(ReadBackground(metadata))) {
        m_background = {};
    }
    result = ReadScreen(metadata);
    if (SUCCEEDED(result)) {
        result = ReadAspect(metadata);
    }
    return SUCCEEDED(result) ? ReadLoopCount(metadata) : result;
}

HRESULT WICAnimatedGIFReader::ReadBackground(const MetadataReader& metadata) {
    bool hasPalette = false;
    std::uint8_t index = 0;
    HRESULT result = metadata.Read(L"/logscrdesc/GlobalColorTableFlag", hasPalette);
    if (SUCCEEDED(result)) {
        result = hasPalette ? metadata.Read(L"/logscrdesc/BackgroundColorIndex", index) : E_FAIL;
    }
    com::ComPtr<IWICPalette> palette;
    if (SUCCEEDED(result)) {
        result = Factory()->CreatePalette(palette.Put());
    }
    if (SUCCEEDED(result)) {
        result = Decoder()->CopyPalette(palette.Get());
    }
    std::array<WICColor, 256> colours{};
    UINT count = 0;
    if (SUCCEEDED(result)) {
        result = palette->GetColors(static_cast<UINT>(colours.size()), colours.data(), &count);
    }
    if (FAILED(result)) {
        return result;
    }
    if (index >= count) {
        return E_FAIL;
    }
    const auto channel = [&](int shift) {
        return static_cast<float>(colours[index] >> shift & 0xFF) / 255.0F;
    };
    m_background = {channel(16), channel(8), channel(0), 0.0F};
    return S_OK;
}

HRESULT WICAnimatedGIFReader::ReadScreen(const MetadataReader& metadata) {
    int width = 0;
    int height = 0;
    GetSize(width, height);
    if (width != 0 && height != 0) {
        return S_OK;
    }
    std::uint16_t screenWidth = 0;
    std::uint16_t screenHeight = 0;
    HRESULT result = metadata.Read(L"/logscrdesc/Width", screenWidth);
    if (SUCCEEDED(result)) {
        m_screenWidth = screenWidth;
        result = metadata.Read(L"/logscrdesc/Height", screenHeight);
    }
    m_screenHeight = screenHeight;
    SetSize(screenWidth, screenHeight);
    return result;
}

HRESULT WICAnimatedGIFReader::ReadAspect(const MetadataReader& metadata) {
    std::uint8_t ratio = 0;
    const HRESULT result = metadata.Read(L"/logscrdesc/PixelAspectRatio", ratio);
    if (FAILED(result)) {
        return result;
    }
    m_displayWidth = m_screenWidth;
    m_displayHeight = m_screenHeight;
    if (ratio == 0) {
        return S_OK;
    }
    const float aspect = (static_cast<float>(ratio) + 15.0F) / 64.0F;
    if (aspect <= 1.0F) {
        m_displayWidth = static_cast<std::uint32_t>(static_cast<float>(m_screenWidth) * aspect);
    } else {
        m_displayHeight = static_cast<std::uint32_t>(static_cast<float>(m_screenHeight) / aspect);
    }
    return S_OK;
}

HRESULT WICAnimatedGIFReader::ReadLoopCount(const MetadataReader& metadata) {
    std::vector<std::uint8_t> application;
    HRESULT result = metadata.Read(L"/appext/application", application);
    if (FAILED(result) || !IsLoopExtension(application)) {
        return result == WINCODEC_ERR_PROPERTYNOTFOUND ? S_OK : result;
    }
    std::vector<std::uint8_t> data;
    result = metadata.Read(L"/appext/data", data);
    if (SUCCEEDED(result) && data.size() > 3 && data[0] != 0 && data[1] == 1) {
        m_loopCount = data[2] | static_cast<std::uint32_t>(data[3]) << 8;
        m_hasLoopCount = m_loopCount != 0;
    }
    return result;
}

HRESULT WICAnimatedGIFReader::ReadFrames() {
    HRESULT first = S_OK;
    for (UINT i = 0; i < m_frameCount; ++i) {
        m_frames.push_back(boost::make_shared<frameInfo>());
        const HRESULT result = ReadFrame(i, *m_frames.back());
        first = SUCCEEDED(first) ? result : first;
    }
    SumUp();
    return first;
}

HRESULT WICAnimatedGIFReader::ReadFrame(UINT index, frameInfo& info) const {
    com::ComPtr<IWICBitmapFrameDecode> frame;
    com::ComPtr<IWICMetadataQueryReader> reader;
    HRESULT result = Decoder()->GetFrame(index, frame.Put());
    if (SUCCEEDED(result)) {
        result = frame->GetMetadataQueryReader(reader.Put());
    }
    if (FAILED(result)) {
        return result;
    }
    const MetadataReader metadata(std::move(reader));
    std::uint16_t number = 0;
    const auto read = [&](const wchar_t* name, std::uint32_t& to, std::uint32_t base) {
        if (SUCCEEDED(result)) {
            result = metadata.Read(name, number);
            to = SUCCEEDED(result) ? base + number : to;
        }
    };
    read(L"/imgdesc/Left", info.left, 0);
    read(L"/imgdesc/Top", info.top, 0);
    read(L"/imgdesc/Width", info.right, info.left);
    read(L"/imgdesc/Height", info.bottom, info.top);
    if (SUCCEEDED(result)) {
        result = ReadOptional(metadata, L"/grctlext/Delay", std::uint16_t{0}, number);
    }
    if (SUCCEEDED(result)) {
        info.delay = ShownGifDelay(number * HundredthOfASecond);
        result = ReadBitsPerPixel(*frame, info.bitsPerPixel);
    }
    std::uint8_t disposal = 0;
    if (SUCCEEDED(result)) {
        result = ReadOptional(metadata, L"/grctlext/Disposal", std::uint8_t{0}, disposal);
    }
    info.disposal = disposal;
    return result;
}

// The floor once more: a record that could not be read has no delay yet.
void WICAnimatedGIFReader::SumUp() {
    std::uint64_t total = 0;
    for (const auto& frame : m_frames) {
        frame->delay = ShownGifDelay(frame->delay);
        total += frame->delay;
        m_variableDelays |= frame->delay != m_frames.front()->delay;
    }
    m_duration = static_cast<double>(total) / 1000.0;
    m_frameRate = m_duration != 0 ? static_cast<double>(m_frameCount) / m_duration : 0;
}

} // namespace Zanthe
