#include "zanthe/core/routes/DecoderRoutes.h"
#include "zanthe/h264/WinH264SampleReader.h"

namespace Zanthe {

std::unique_ptr<VideoSampleReader>
DecoderRoutes::CreateMediaFoundation(const std::string& path, int streamIndex,
                                     DecoderOutputFormat format,
                                     IMFDXGIDeviceManager* deviceManager) const {
    return std::unique_ptr<VideoSampleReader>(
        WinH264SampleReader::create(path, streamIndex, format, deviceManager));
}

} // namespace Zanthe
