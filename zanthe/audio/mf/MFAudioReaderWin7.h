// A file's sound on systems whose source reader does not convert it: decoded as it is, and then
// through the system's resampler.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "zanthe/audio/IAudioReader.h"
#include "zanthe/audio/mf/MFAudioReaderBase.h"

struct IMFTransform;

namespace Zanthe {

class StereoPlanes;

// Always 44100 Hz, stereo. A read that goes on where the last one stopped takes the resampler's
// state along; any other one starts it afresh. Positions become the source's with
// ConvertFrameCount, which knows seven rates: the sound of any other one is read from its start.
//
// Thread-safety: none; one reader serves one thread at a time.
class ZANTHE_API MFAudioReaderWin7 : public MFAudioReaderBase, public IAudioReader {
public:
    // Over the file at `path` (UTF-8), or over a source, of which it keeps a reference.
    explicit MFAudioReaderWin7(const std::string& path);
    explicit MFAudioReaderWin7(IMFMediaSource* source);
    ~MFAudioReaderWin7() override;

    // MFAudioReaderBase
    //
    // sampleRate plays no part. True also where there is no resampler: reads then answer 0.
    bool Initialize(int sampleRate) override;

    // IAudioReader
    //
    // 0 also for a negative startFrame, and where the frame cannot be reached.
    unsigned int FillAudioBuffer(std::int64_t startFrame, unsigned int frameCount,
                                 std::vector<float*>& channels) override;

    // The finder's, which see.
    std::int64_t GetPresentationLength() const;
    std::int64_t SeekCount() const;

private:
    // What feeding the resampler came to.
    struct Feed {
        HRESULT result;
        std::int64_t consumed; // frames of the source
    };

    // What one pull of its output came to.
    struct Pull {
        HRESULT result;
        unsigned int frames;
    };

    void SetUpResampler();
    Pull PullInto(StereoPlanes& planes);
    void Drain(StereoPlanes& planes);
    void Resample(std::int64_t frame, StereoPlanes& planes);
    Feed FeedResampler(std::int64_t frame);
    Feed FeedCurrentSample(std::int64_t frame);

    com::ComPtr<IMFTransform> m_resampler;  // empty: nothing can be read
    std::int64_t m_nextCanonicalFrame = -1; // where the last read stopped; -1 before the first
};

} // namespace Zanthe
