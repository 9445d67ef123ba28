#include "zanthe/h264/MFVideoSample.h"

#include <stdexcept>

#include "platform/mf/DXGIBuffer.h"
#include "platform/mf/MediaFormats.h"
#include "platform/mf/Sample.h"

namespace Zanthe {

namespace {

struct Size {
    UINT32 width = 0;
    UINT32 height = 0;
};

Size FrameSizeOf(IMFSample* sample) {
    Size size;
    // On failure the sample has no size, and it stays 0.
    static_cast<void>(MFGetAttributeSize(sample, MF_MT_FRAME_SIZE, &size.width, &size.height));
    return size;
}

} // namespace

MFVideoSample::MFVideoSample(IMFSample* sample, int width, int height)
    : m_sample(sample)
    , m_width(width)
    , m_height(height) {
    if (!m_sample || FAILED(m_sample->GetBufferByIndex(0, m_mediaBuffer.Put())) || !m_mediaBuffer) {
        throw std::runtime_error("MFVideoSample: Couldn't get MediaBuffer from MFSample");
    }
}

MFVideoSample::~MFVideoSample() = default;

IMFSample* MFVideoSample::imfSample() const {
    return m_sample.Get();
}

IMFMediaBuffer* MFVideoSample::imfMediaBuffer() const {
    return m_mediaBuffer.Get();
}

void MFVideoSample::decrementRefCount() {
    m_sample->Release();
}

int MFVideoSample::width() const {
    return m_width;
}

int MFVideoSample::height() const {
    return m_height;
}

int MFVideoSample::bufferWidth() const {
    return static_cast<int>(FrameSizeOf(m_sample.Get()).width);
}

int MFVideoSample::bufferHeight() const {
    return static_cast<int>(FrameSizeOf(m_sample.Get()).height);
}

int MFVideoSample::bytesPerRow() const {
    const UINT32 packed = 4 * FrameSizeOf(m_sample.Get()).width;
    return static_cast<int>(MFGetAttributeUINT32(m_sample.Get(), MF_MT_DEFAULT_STRIDE, packed));
}

bool MFVideoSample::isFlipped() const {
    return false;
}

VideoSampleFormat MFVideoSample::videoSampleFormat() {
    GUID subtype{};
    if (SUCCEEDED(m_sample->GetGUID(MF_MT_SUBTYPE, &subtype)) && subtype == MFVideoFormat_RGB32) {
        return VideoSampleFormat::SystemMemory;
    }
    return m_mediaBuffer.As<IMFDXGIBuffer>(IID_IMFDXGIBuffer) ? VideoSampleFormat::GraphicsDevice
                                                              : VideoSampleFormat::SystemMemory;
}

void MFVideoSample::lockData() {
    if (videoSampleFormat() >= VideoSampleFormat::GraphicsDevice) {
        return;
    }
    if (m_mediaBuffer->Lock(&m_data, nullptr, &m_currentLength) != S_OK) {
        throw std::runtime_error("MFVideoSample::lockData() - couldn't lock media buffer");
    }
}

unsigned char* MFVideoSample::data() {
    return m_data;
}

void MFVideoSample::unlockData() {
    m_mediaBuffer->Unlock();
}

int MFVideoSample::dataSize() {
    return static_cast<int>(m_currentLength);
}

CGColorSpace* MFVideoSample::colorSpace() const {
    return nullptr;
}

} // namespace Zanthe
