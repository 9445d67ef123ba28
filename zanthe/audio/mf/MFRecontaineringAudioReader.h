// The sound of an MP4 file by way of a copy of its sound track alone.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <boost/shared_ptr.hpp>

#include "zanthe/audio/IAudioReader.h"

namespace Zanthe {

class IMediaFoundationBackends;
class IWindowsVersionProvider;
class RecontainerFile;

// The copy is of compressed samples, into a temporary file that goes with the reader, with a
// constructor that throws, and where the process was killed when the next reader is made in the
// same folder. Whatever else the file holds is out of the way.
//
// Thread-safety: none; one reader serves one thread at a time. Different readers are independent,
// also on one file.
class ZANTHE_API MFRecontaineringAudioReader : public IAudioReader {
public:
    // Over the file at `path` (UTF-8), copied into temporaryFolder (UTF-8), at sampleRate Hz; on a
    // system below 6.2 at 44100 Hz whatever was asked for. Takes as long as the copy does.
    //
    // Throws std::runtime_error: "Error re-containering audio!!" where there is no sound track or
    // it cannot be copied, "Error creating reader for re-containered audio!!" where the copy cannot
    // be read.
    MFRecontaineringAudioReader(const std::string& path, const std::string& temporaryFolder,
                                int sampleRate);

    // The same with other readers for the copy, for tests: their classes are not installed.
    MFRecontaineringAudioReader(const std::string& path, const std::string& temporaryFolder,
                                int sampleRate, const IMediaFoundationBackends& backends,
                                const IWindowsVersionProvider& versionProvider);

    ~MFRecontaineringAudioReader() override;

    // IAudioReader
    unsigned int FillAudioBuffer(std::int64_t startFrame, unsigned int frameCount,
                                 std::vector<float*>& channels) override;

private:
    // Before the reader, which ends first, so that nothing has the file open when it goes.
    std::unique_ptr<RecontainerFile> m_file;
    boost::shared_ptr<IAudioReader> m_reader;
};

} // namespace Zanthe
