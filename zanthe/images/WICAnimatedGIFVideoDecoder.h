// An animated GIF as a video.
#pragma once

#include <memory>
#include <string>

#include "zanthe/core/VideoDecoder.h"

namespace Zanthe {

class WICAnimatedGIFLoader;

// Thread-safety: as VideoDecoder.
class WICAnimatedGIFVideoDecoder final : public VideoDecoder {
public:
    // `path` is UTF-8 and kept for the record. REQUIRES: a loader.
    WICAnimatedGIFVideoDecoder(std::string path, std::unique_ptr<WICAnimatedGIFLoader> loader);
    ~WICAnimatedGIFVideoDecoder() override;

    // VideoDecoder
    int outputWidth() const override;
    int outputHeight() const override;

    // Always true: before the start the first frame is shown, past the end the last. actualTime is
    // left alone. Throws std::runtime_error "WICAnimatedGIFLoader failed to initialize" where the
    // loader did, and what GetFrameAtTimeIntoBuffer throws.
    bool readFrame(MediaTime time, unsigned char* buffer, double& actualTime) override;

private:
    std::string m_path;
    std::unique_ptr<WICAnimatedGIFLoader> m_loader;
};

} // namespace Zanthe
