#include "zanthe/core/routes/DecoderRoutes.h"

namespace Zanthe {

namespace {

// What a recording opens as when it has no track to show. It has no pixels, so nobody is ever
// handed memory that no picture was written to.
class RecordingWithoutTrack final : public VideoDecoder {
public:
    // VideoDecoder
    int outputWidth() const override { return 0; }

    int outputHeight() const override { return 0; }

    // A recording's decoder shows a failure in actualTime alone, not in its answer.
    bool readFrame(MediaTime, unsigned char*, double& actualTime) override {
        actualTime = -1.0;
        return true;
    }
};

} // namespace

// The tracks of a recording give no pictures in this build; see BREC::Reader.
std::unique_ptr<VideoDecoder> DecoderRoutes::CreateRecording(const std::string&, int) const {
    return std::make_unique<RecordingWithoutTrack>();
}

} // namespace Zanthe
