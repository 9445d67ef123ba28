// A frame of the H.264 reader, in memory or on the graphics device.
#pragma once

#include "platform/com/ComPtr.h"
#include "zanthe/core/Export.h"
#include "zanthe/core/VideoSample.h"

struct IMFMediaBuffer;
struct IMFSample;

namespace Zanthe {

// Thread-safety: none; it may outlive its reader and be used on another thread.
class ZANTHE_API MFVideoSample : public VideoSample {
public:
    // A frame over the first buffer of `sample`, of which it keeps a reference of its own. `width`
    // and `height`: the picture as it is stored, in pixels. Throws std::runtime_error with
    // "MFVideoSample: Couldn't get MediaBuffer from MFSample" where there is no such buffer.
    MFVideoSample(IMFSample* sample, int width, int height);
    ~MFVideoSample() override;

    // The sample and its buffer, this object's and as long-lived.
    IMFSample* imfSample() const;
    IMFMediaBuffer* imfMediaBuffer() const;

    // VideoSample
    void decrementRefCount() override;
    int width() const override;
    int height() const override;

    // The sample's MF_MT_FRAME_SIZE, which the decoder may have padded; 0 without one.
    int bufferWidth() const override;
    int bufferHeight() const override;

    // The sample's MF_MT_DEFAULT_STRIDE; without one 4 * bufferWidth().
    int bytesPerRow() const override;
    bool isFlipped() const override; // false

    // GraphicsDevice where the buffer answers IMFDXGIBuffer, unless the sample's MF_MT_SUBTYPE is
    // MFVideoFormat_RGB32, in which case the buffer is not asked.
    VideoSampleFormat videoSampleFormat() override;

    // Throws std::runtime_error with "MFVideoSample::lockData() - couldn't lock media buffer" where
    // the memory cannot be had; no unlockData() is due then. Does nothing for a frame on the
    // device.
    void lockData() override;

    // Null before the first lockData().
    unsigned char* data() override;
    void unlockData() override;
    int dataSize() override;
    CGColorSpace* colorSpace() const override; // null

private:
    com::ComPtr<IMFSample> m_sample;
    int m_width;
    int m_height;
    com::ComPtr<IMFMediaBuffer> m_mediaBuffer;
    unsigned char* m_data = nullptr;
    unsigned int m_currentLength = 0; // bytes
};

} // namespace Zanthe
