#include "tests/support/AviFile.h"

#include <algorithm>

namespace Avi {

namespace {

using namespace Riff;

constexpr std::size_t FramesOfAnIndex = 10;

std::string Junk(std::size_t size) {
    return Chunk("JUNK", std::string(size, 'J'));
}

// One stream of a file: how its chunks are called, its header without an index, its frames.
struct Track {
    std::string code;
    std::string header;
    std::vector<Frame> frames;
};

// Media data under construction: chunks, and where each frame's chunk begins within them.
struct MediaData {
    std::string bytes;
    std::vector<std::size_t> places;

    void Append(const std::string& code, const Frame& frame) {
        places.push_back(bytes.size());
        bytes += Chunk(code, frame.bytes);
    }
};

Track VideoTrack(const std::string& code, const VideoStream& stream,
                 const std::vector<Frame>& frames) {
    return {code,
            StreamHeader("vids", stream.handler, static_cast<std::uint32_t>(frames.size()),
                         stream.rate, stream.scale) +
                Junk(3) + VideoFormat(stream.width, stream.height, stream.bits, stream.compression),
            frames};
}

std::string StreamList(const Track& track, const std::string& index) {
    return List("strl", track.header + Chunk("strn", "name") + index);
}

std::string HeaderList(std::size_t streamCount, const std::string& streams) {
    return List("hdrl",
                Junk(5) + MainHeader(static_cast<std::uint32_t>(streamCount)) + streams + Junk(1));
}

std::string File(const std::string& header, const std::string& media, const std::string& behind) {
    return List("RIFF", "AVI ", header + Junk(7) + List("movi", media) + behind);
}

std::string WithOldIndex(const Track& track) {
    MediaData media;
    std::string entries;
    for (const Frame& frame : track.frames) {
        media.bytes += Junk(2);
        media.Append(track.code, frame);
        entries += track.code + Number32(frame.keyFrame ? 0x10 : 0) +
                   Number32(media.places.back() + 4) + Number32(frame.bytes.size());
    }
    return File(HeaderList(1, StreamList(track, "")), media.bytes,
                Junk(9) + Chunk("idx1", entries));
}

// Frames [first, last) of a track.
struct Range {
    std::size_t first;
    std::size_t last;
};

// The half of the track's frames that stands in the first (0) or the second list (1).
Range HalfOf(const Track& track, int list) {
    const std::size_t half = track.frames.size() / 2;
    return list == 0 ? Range{0, half} : Range{half, track.frames.size()};
}

std::size_t IndexesOf(const Track& track, int list) {
    const Range half = HalfOf(track, list);
    return (half.last - half.first + FramesOfAnIndex - 1) / FramesOfAnIndex;
}

// The frames that one standard index tells of, and its entries so far.
struct Group {
    Range frames;
    std::string entries;
};

std::vector<Group> GroupsOf(const std::vector<Track>& tracks, int list, std::size_t number) {
    std::vector<Group> groups;
    for (const Track& track : tracks) {
        const Range half = HalfOf(track, list);
        const std::size_t first = std::min(half.first + number * FramesOfAnIndex, half.last);
        groups.push_back({{first, std::min(first + FramesOfAnIndex, half.last)}, ""});
    }
    return groups;
}

// The next frame of each track in turn, until the groups are at their ends.
void AppendFrames(const std::vector<Track>& tracks, std::vector<Group>& groups, MediaData& media) {
    const std::size_t base = media.bytes.size();
    for (std::size_t step = 0; step < FramesOfAnIndex; ++step) {
        for (std::size_t t = 0; t < tracks.size(); ++t) {
            const std::size_t i = groups[t].frames.first + step;
            if (i >= groups[t].frames.last) {
                continue;
            }
            const Frame& frame = tracks[t].frames[i];
            media.Append(tracks[t].code, frame);
            groups[t].entries += Number32(media.places.back() + 8 - base) +
                                 Number32(frame.bytes.size() | (frame.keyFrame ? 0 : 0x80000000U));
        }
    }
}

// One list's half of the frames as media data, each standard index behind its frames. `base` is
// where the data will lie in the file; what the super index of each track says of its standard
// indexes goes to `supers`.
std::string MediaWithIndexes(const std::vector<Track>& tracks, int list, std::uint64_t base,
                             std::vector<std::string>& supers) {
    MediaData media;
    std::size_t most = 0;
    for (const Track& track : tracks) {
        most = std::max(most, IndexesOf(track, list));
    }
    for (std::size_t number = 0; number < most; ++number) {
        std::vector<Group> groups = GroupsOf(tracks, list, number);
        const std::uint64_t groupBase = base + media.bytes.size();
        AppendFrames(tracks, groups, media);
        for (std::size_t t = 0; t < tracks.size(); ++t) {
            const std::size_t count = groups[t].entries.size() / 8;
            if (count == 0) {
                continue;
            }
            const std::string index = Number16(2) + std::string("\0\1", 2) + Number32(count) +
                                      tracks[t].code + Number64(groupBase) + Number32(0) +
                                      groups[t].entries;
            supers[t] +=
                Number64(base + media.bytes.size()) + Number32(index.size() + 8) + Number32(count);
            media.bytes += Chunk("ix" + tracks[t].code.substr(0, 2), index) + Junk(4);
        }
    }
    return media.bytes;
}

std::string SuperIndex(const std::string& code, const std::string& entries) {
    return Chunk("indx", Number16(4) + std::string(2, '\0') + Number32(entries.size() / 16) + code +
                             std::string(12, '\0') + entries);
}

std::string WithOpenDmlIndexes(const std::vector<Track>& tracks) {
    // Places do not change the length of the headers, so a first round finds it.
    std::vector<std::string> supers;
    supers.reserve(tracks.size());
    for (const Track& track : tracks) {
        supers.emplace_back((IndexesOf(track, 0) + IndexesOf(track, 1)) * 16, '\0');
    }
    std::string first;
    std::string second;
    for (int round = 0; round < 2; ++round) {
        std::string streams;
        for (std::size_t t = 0; t < tracks.size(); ++t) {
            streams += StreamList(tracks[t], SuperIndex(tracks[t].code, supers[t]));
            supers[t].clear();
        }
        const std::string header = HeaderList(tracks.size(), streams);
        const std::uint64_t base = 12 + header.size() + Junk(7).size() + 12;
        first = File(header, MediaWithIndexes(tracks, 0, base, supers), Junk(11));
        second = List("RIFF", "AVIX",
                      List("movi", MediaWithIndexes(tracks, 1, first.size() + 24, supers)));
    }
    return first + second;
}

} // namespace

std::string MainHeader(std::uint32_t streams) {
    AVI20::Read::MainAVIHeader header{};
    header.dwMicroSecPerFrame = 100'000;
    header.dwStreams = streams;
    return Chunk("avih", BytesOf(header));
}

std::string StreamHeader(std::string_view type, std::uint32_t handler, std::uint32_t length,
                         std::uint32_t rate, std::uint32_t scale) {
    AVI20::Read::AVIStreamHeader header{};
    std::copy(type.begin(), type.end(), reinterpret_cast<char*>(&header.fccType));
    header.fccHandler = handler;
    header.dwScale = scale;
    header.dwRate = rate;
    header.dwLength = length;
    return Chunk("strh", BytesOf(header));
}

std::string VideoFormat(int width, int height, int bits, std::uint32_t compression) {
    BITMAPINFOHEADER format{};
    format.biSize = sizeof format;
    format.biWidth = width;
    format.biHeight = height;
    format.biPlanes = 1;
    format.biBitCount = static_cast<WORD>(bits);
    format.biCompression = compression;
    return Chunk("strf", BytesOf(format));
}

std::string AudioFormat(const WAVEFORMATEX& format, const std::string& extra) {
    return Chunk("strf", BytesOf(format) + extra);
}

std::string OneVideo(const VideoStream& stream, const std::vector<Frame>& frames, IndexKind kind) {
    const Track track = VideoTrack("00dc", stream, frames);
    return kind == IndexKind::Old ? WithOldIndex(track) : WithOpenDmlIndexes({track});
}

std::string SoundAndVideo(const std::vector<Frame>& sound, const VideoStream& stream,
                          const std::vector<Frame>& frames) {
    const WAVEFORMATEX format{WAVE_FORMAT_PCM, 1, 8000, 16'000, 2, 16, 0};
    const auto length = static_cast<std::uint32_t>(sound.size());
    return WithOpenDmlIndexes(
        {{"00wb", StreamHeader("auds", 0, length) + AudioFormat(format), sound},
         VideoTrack("01dc", stream, frames)});
}

} // namespace Avi
