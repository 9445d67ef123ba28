// The one question for a file's sound.
//
//     Zanthe::AudioMediaReaderFactory factory("clip.mp4", 0, 48000);
//     boost::shared_ptr<Zanthe::IAudioReader> reader = factory.Create_AudioMediaReader(false);
#pragma once

#include <string>

#include <boost/shared_ptr.hpp>

#include "zanthe/audio/IAudioReader.h"
#include "zanthe/core/Export.h"

namespace Zanthe {

class IAudioBackends;

// A factory serves one file and can be used many times.
//
// Hosts call through the order of these operations: it is settled, and new ones go to the end.
//
// Thread-safety: none; one factory serves one thread at a time. The readers are independent of it
// and of each other.
class ZANTHE_API AudioMediaReaderFactory {
public:
    // The file at `path` (UTF-8); trackIndex counts the tracks of a ".brec" recording from 0, and
    // plays no part for other files. sampleRate is in Hz.
    AudioMediaReaderFactory(const std::string& path, int trackIndex, int sampleRate);

    // The same over other backends, for tests: their class is not installed. REQUIRES: backends.
    AudioMediaReaderFactory(const std::string& path, int trackIndex, int sampleRate,
                            boost::shared_ptr<const IAudioBackends> backends);

    AudioMediaReaderFactory(const AudioMediaReaderFactory&) = delete;
    AudioMediaReaderFactory& operator=(const AudioMediaReaderFactory&) = delete;
    virtual ~AudioMediaReaderFactory();

    // A reader over the file's sound, never empty. The first that fits decides; extensions are
    // those of the file name, with no regard to case:
    //
    //     .mp3                       FFMPEGAudioReader, and the factory's track is -1 from then on
    //     .brec                      BRECLibAudioMediaReader, at 44100 Hz whatever was asked for
    //     ShouldUseMediaFoundation   MediaFoundationAudioMediaReader
    //     anything else              DirectShowAudioMediaReader, at 44100 Hz
    //
    // recontainerAacInMp4: read AAC out of an MP4 by way of a copy of its track alone.
    //
    // Once chosen, no other backend is tried: what its constructor (or FFMPEGAudioReader::Create)
    // throws leaves this operation.
    virtual boost::shared_ptr<IAudioReader> Create_AudioMediaReader(bool recontainerAacInMp4);

    // Whether the file at `path` (UTF-8) is named ".mp4" or ".mov", has a sound track, and the
    // first of them is kept in an "mp4a" sample description. That is AAC as a rule; other codings
    // under that name count as well. False for a file whose bytes 16 to 19 are "qt  ", the first
    // brand that a QuickTime file names as compatible, and for one that cannot be read.
    //
    // Thread-safety: safe from any thread.
    static bool IsMP4WithAACAudio(const std::string& path);

private:
    std::string m_path;
    int m_trackIndex;
    int m_sampleRate; // Hz
    boost::shared_ptr<const IAudioBackends> m_backends;
};

} // namespace Zanthe
