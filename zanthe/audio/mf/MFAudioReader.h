// A file's sound through a source reader that converts it to the rate that is wanted.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "zanthe/audio/IAudioReader.h"
#include "zanthe/audio/mf/MFAudioReaderBase.h"

namespace Zanthe {

class StereoPlanes;

// Stereo at the rate of Initialize; frame 0 is the first frame that the source delivers. Nothing is
// thrown but for lack of memory.
//
// Thread-safety: none; one reader serves one thread at a time.
class ZANTHE_API MFAudioReader : public MFAudioReaderBase, public IAudioReader {
public:
    // Over the file at `path` (UTF-8), or over a source, of which it keeps a reference.
    explicit MFAudioReader(const std::string& path);
    explicit MFAudioReader(IMFMediaSource* source);
    ~MFAudioReader() override;

    // IAudioReader
    //
    // 0 also for a negative startFrame, and where the frame cannot be reached. A frame that is less
    // than 5 seconds ahead of the last one read is stepped to, any other is sought.
    unsigned int FillAudioBuffer(std::int64_t startFrame, unsigned int frameCount,
                                 std::vector<float*>& channels) override;

    // The finder's, which see.
    void SetForcedSeekInterval(std::int64_t frames);
    std::int64_t ForcedSeekInterval() const;
    std::int64_t GetPresentationLength() const;
    std::int64_t SeekCount() const;

private:
    void CopyFrames(std::int64_t frame, StereoPlanes& planes);
    unsigned int CopyFromCurrentSample(std::int64_t frame, StereoPlanes& planes);
    bool MoveOnTo(std::int64_t frame);
};

} // namespace Zanthe
