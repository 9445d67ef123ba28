// Recordings on the MP4 family of files. Stands for the calls that are used of the closed recording
// library.
//
//     const auto format = BREC::AudioFormat::create16BitSignedInterleaved(44100, 2);
//     if (const auto reader = BREC::Reader::create(path, format, nullptr))
//         for (const auto& track : reader->tracks()) ...
//
// A track in a codec that nothing decodes describes itself; its reads give nothing and say so by
// their result.
#pragma once

#include <string>
#include <vector>

#include <boost/shared_ptr.hpp>

#include "platform/brec/AudioFormat.h"
#include "platform/brec/MP4TrackReader.h"

namespace BREC {

// A host's own AAC decoders; none is ever handed in.
class AACDecoderFactory;

// Thread-safety: a reader never changes; tracks() is safe from any thread.
class Reader {
public:
    // A reader over the recording at `path` (UTF-8), whose sound comes in `format`. Empty when the
    // file cannot be read or is no recording of this family. aacDecoders is null.
    static boost::shared_ptr<Reader> create(const std::string& path, const AudioFormat& format,
                                            AACDecoderFactory* aacDecoders);

    // Over tracks that are open already.
    explicit Reader(std::vector<boost::shared_ptr<MP4TrackReader>> tracks);

    // The tracks, in the order of the file; the same objects at every call.
    std::vector<boost::shared_ptr<MP4TrackReader>> tracks() const { return m_tracks; }

private:
    std::vector<boost::shared_ptr<MP4TrackReader>> m_tracks;
};

} // namespace BREC
