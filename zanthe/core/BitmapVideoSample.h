// A video sample over a bitmap.
#pragma once

#include <memory>

#include "zanthe/core/Bitmap.h"
#include "zanthe/core/Export.h"
#include "zanthe/core/VideoSample.h"

namespace Zanthe {

// Shares its bitmap and copies nothing: who else writes into the bitmap changes the sample.
//
// Thread-safety: as VideoSample.
class ZANTHE_API BitmapVideoSample : public VideoSample {
public:
    // REQUIRES: a bitmap.
    explicit BitmapVideoSample(std::shared_ptr<Bitmap> bitmap);
    ~BitmapVideoSample() override;

    // VideoSample
    void decrementRefCount() override;
    int width() const override;
    int height() const override;
    int bufferWidth() const override;
    int bufferHeight() const override;
    int bytesPerRow() const override;
    bool isFlipped() const override;
    VideoSampleFormat videoSampleFormat() override;
    void lockData() override;
    unsigned char* data() override; // needs no lock; null when the bitmap has no bits
    void unlockData() override;
    int dataSize() override; // 0 when an int cannot tell, which only a handed-in buffer can cause
    CGColorSpace* colorSpace() const override;

private:
    std::shared_ptr<Bitmap> m_bitmap;
};

} // namespace Zanthe
