// A file's sound through Media Foundation.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <boost/shared_ptr.hpp>

#include "zanthe/audio/IAudioReader.h"
#include "zanthe/core/Export.h"

namespace Zanthe {

// Thread-safety: none; one reader serves one thread at a time.
class ZANTHE_API MediaFoundationAudioMediaReader : public IAudioReader {
public:
    // Over the file at `path` (UTF-8), at sampleRate Hz; on a system below 6.2 at 44100 Hz whatever
    // was asked for. recontainerAacInMp4: a file for which
    // AudioMediaReaderFactory::IsMP4WithAACAudio is true is read by way of a copy of its sound
    // track in the system's temporary folder.
    //
    // Throws TextException "Failed to create MediaFoundation resource", and by way of a copy
    // std::runtime_error "Error re-containering audio!!" or
    // "Error creating reader for re-containered audio!!".
    MediaFoundationAudioMediaReader(const std::string& path, bool recontainerAacInMp4,
                                    int sampleRate);

    // Over another reader. REQUIRES: a reader.
    explicit MediaFoundationAudioMediaReader(boost::shared_ptr<IAudioReader> reader);

    ~MediaFoundationAudioMediaReader() override;

    // IAudioReader
    unsigned int FillAudioBuffer(std::int64_t startFrame, unsigned int frameCount,
                                 std::vector<float*>& channels) override;

private:
    boost::shared_ptr<IAudioReader> m_reader;
};

} // namespace Zanthe
