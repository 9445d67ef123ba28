// A track of sound.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "platform/av/ConvertedSound.h"
#include "platform/av/SoundStream.h"
#include "platform/brec/DescribedTrack.h"

namespace BREC {

class SoundTrack final : public DescribedTrack {
public:
    // `path` is one that exists; ordinal counts the recording's tracks of sound. The file is opened
    // when the first frame is asked for.
    SoundTrack(av::Track track, const AudioFormat& format, std::string path, int ordinal);
    ~SoundTrack() override;

    // MP4TrackReader
    unsigned int fillAudioBuffer(std::uint64_t startFrame, unsigned int frameCount,
                                 unsigned char* buffer) override;

private:
    bool Open();
    bool HasFrame(std::int64_t frame);
    unsigned int Sounding(std::int64_t frame, unsigned int frameCount, unsigned char* buffer);

    std::string m_path;
    int m_ordinal;
    bool m_opened = false; // that was tried
    std::unique_ptr<av::SoundStream> m_stream;
    std::unique_ptr<av::ConvertedSound> m_sound; // null: nothing decodes or converts it
    std::int64_t m_begin = 0;                    // frame of the track at which its sound begins
    av::SoundChunk m_chunk;                      // what was converted last
};

} // namespace BREC
