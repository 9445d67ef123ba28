#include "zanthe/analysis/BrecStreamOrdinal.h"

#include <cstddef>
#include <vector>

#include <boost/shared_ptr.hpp>

#include "platform/brec/AudioFormat.h"
#include "platform/brec/MP4TrackReader.h"
#include "platform/brec/Reader.h"
#include "platform/win32/Text.h"
#include "zanthe/analysis/Extension.h"
#include "zanthe/analysis/RecordingPath.h"

namespace {

using Tracks = std::vector<boost::shared_ptr<BREC::MP4TrackReader>>;

struct Ordinals {
    std::uint32_t video = 0;
    std::uint32_t audio = 0;
};

Ordinals CountBefore(const Tracks& tracks, std::size_t index) {
    Ordinals counts;
    for (std::size_t i = 0; i < index; ++i) {
        if (tracks[i]->type() == BREC::VideoTrack && tracks[i]->codec() != "bsc2") {
            ++counts.video;
        } else if (tracks[i]->type() == BREC::AudioTrack) {
            ++counts.audio;
        }
    }
    return counts;
}

Tracks TracksOf(const std::wstring& container) {
    const auto format = BREC::AudioFormat::create16BitSignedInterleaved(44100, 2);
    const auto reader = BREC::Reader::create(win32::WideToUtf8(container), format, nullptr);
    return reader != nullptr ? reader->tracks() : Tracks();
}

} // namespace

std::uint32_t BrecStreamOrdinal(const std::wstring& path) {
    const RecordingPath recording(path);
    if (!EqualIgnoringCase(recording.GetExtension(), L"brec")) {
        return 0;
    }
    const Tracks tracks = TracksOf(recording.GetContainerPath());
    // A negative number, from a member's name without a digit, becomes one beyond every count.
    const auto index = static_cast<std::size_t>(recording.index);
    if (index >= tracks.size()) {
        return 0;
    }
    const Ordinals counts = CountBefore(tracks, index);
    switch (recording.kind) {
    case NumberedVideo:
    case NumberedScreenTrack:
        return counts.video;
    case NumberedAudio:
        return counts.audio;
    default:
        return 0;
    }
}
