#include "zanthe/images/WICImageReader.h"

#include <utility>

#include "platform/com/ClassRegistry.h"
#include "platform/win32/File.h"
#include "zanthe/detection/DSMediaDetException.h"
#include "zanthe/images/WICOrientation.h"

namespace Zanthe {

WICImageReader::WICImageReader(CStringW path)
    : m_path(std::move(path)) {}

WICImageReader::~WICImageReader() = default;

void WICImageReader::Open() {
    if (IsOpen()) {
        return;
    }
    Reset();
    HRESULT result = CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER,
                                      IID_IWICImagingFactory, m_factory.PutVoid());
    if (SUCCEEDED(result)) {
        result = m_factory->CreateDecoderFromFilename(
            m_path.c_str(), nullptr, GENERIC_READ, WICDecodeMetadataCacheOnDemand, m_decoder.Put());
    }
    if (FAILED(result)) {
        Reset();
        throw DSMediaDetException("Unable to create decoder");
    }
    static_cast<void>(ReadMetadata());
    static_cast<void>(ReadFrames());
    m_isOpen = true;
}

bool WICImageReader::IsOpen() const {
    return m_isOpen;
}

void WICImageReader::Reset() {
    m_isOpen = false;
    m_decoder.Reset();
    m_factory.Reset();
    SetSize(0, 0);
    m_bitsPerPixel = 0;
}

int WICImageReader::frameAtTime(double) const {
    return 0;
}

void WICImageReader::GetSize(int& width, int& height) const {
    width = static_cast<int>(m_width);
    height = static_cast<int>(m_height);
}

unsigned int WICImageReader::GetBitsPerPixel() const {
    return m_bitsPerPixel;
}

HRESULT WICImageReader::ReadMetadata() {
    com::ComPtr<IWICBitmapFrameDecode> frame;
    const HRESULT result = m_decoder->GetFrame(0, frame.Put());
    if (FAILED(result)) {
        return result;
    }
    return OrientedSource(*m_factory, *frame, frame.Get())->GetSize(&m_width, &m_height);
}

HRESULT WICImageReader::ReadFrames() {
    com::ComPtr<IWICBitmapFrameDecode> frame;
    const HRESULT result = m_decoder->GetFrame(0, frame.Put());
    return SUCCEEDED(result) ? ReadBitsPerPixel(*frame, m_bitsPerPixel) : result;
}

HRESULT WICImageReader::ReadBitsPerPixel(IWICBitmapSource& source, UINT& bits) const {
    WICPixelFormatGUID format{};
    HRESULT result = source.GetPixelFormat(&format);
    com::ComPtr<IWICComponentInfo> component;
    if (SUCCEEDED(result)) {
        result = m_factory->CreateComponentInfo(format, component.Put());
    }
    if (FAILED(result)) {
        return result;
    }
    const auto info = component.As<IWICPixelFormatInfo>(IID_IWICPixelFormatInfo);
    return info ? info->GetBitsPerPixel(&bits) : E_NOINTERFACE;
}

void WICImageReader::SetSize(UINT width, UINT height) {
    m_width = width;
    m_height = height;
}

} // namespace Zanthe
