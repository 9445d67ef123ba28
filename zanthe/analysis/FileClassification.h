// Every answer that the library has about a path, in one value of plain words and numbers: what the
// file is, and which backend each purpose sends it to. For an engineer with a file that misbehaves;
// the library itself asks each question where it needs it, and these are the same answers.
//
//     const Zanthe::FileClassification file = Zanthe::ClassifyFile("clip.mp4");
//     file.subtype                          // "MEDIASUBTYPE_None"
//     file.videoSamples.mediaFoundation62   // true
//     file.videoRoute                       // "Media Foundation"
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "zanthe/core/Export.h"

namespace Zanthe {

// A path taken apart, which may name one stream inside a recording.
struct ClassifiedPath {
    std::string container;       // path of the file to open
    std::string member;          // behind the "!", as "video2.mp4"; empty where none is recognised
    std::string kind;            // "no member", "numbered video", "screen video", ...
    std::int32_t stream = 0;     // number of the stream within its kind; 0 without one
    std::int32_t memberCode = 0; // by the member's first letter, 100 to 105; 0 for any other
    std::uint32_t ordinal = 0;   // of a ".brec" member: its place among the streams of its kind

    friend bool operator==(const ClassifiedPath&, const ClassifiedPath&) = default;
};

// Whether a file goes to Media Foundation for one purpose; false is DirectShow.
struct ClassifiedBackend {
    bool mediaFoundation62 = false;      // on a system of version 6.2 or later
    bool mediaFoundationBelow62 = false; // on an older one

    friend bool operator==(const ClassifiedBackend&, const ClassifiedBackend&) = default;
};

// One track of an MP4 or QuickTime file.
struct ClassifiedTrack {
    std::int32_t id = 0;
    std::string kind;                       // "video", "audio" or "other"
    std::string codec;                      // four bytes as the file has them; empty: none met
    std::optional<std::string> displayName; // of the subtype that carries those four characters
    std::int32_t width = 0;                 // as shown, in whole pixels; so is height
    std::int32_t height = 0;
    std::int32_t codedWidth = 0; // in pixels, told of "avc1" only; so are the next three
    std::int32_t codedHeight = 0;
    std::int32_t parWidth = 1; // shape of a pixel, width to height
    std::int32_t parHeight = 1;
    std::array<double, 4> matrix{1, 0, 0, 1}; // row-major 2 by 2 display transform
    std::int32_t volume = 0;                  // 1 at full volume, 0 at silence

    friend bool operator==(const ClassifiedTrack&, const ClassifiedTrack&) = default;
};

// Texts are UTF-8 where the file's own are, and never null pointers; all is the caller's own copy.
struct FileClassification {
    std::string path; // as it was asked
    ClassifiedPath parsed;

    std::string subtype;        // "MEDIASUBTYPE_Avi", ...; a subtype without a name as its GUID
    std::string subtypeSource;  // told by "signature", "extension" or "nothing"
    std::string sourceFilter;   // "file source", "none", ...; one without a name as its GUID
    std::string sourceFilterId; // that class as "{E436EBB5-524F-11CE-9F53-0020AF0BA770}"
    std::vector<std::string> preferredFilters; // libraries of the vendor filters offered to a graph

    ClassifiedBackend audio;        // sound
    ClassifiedBackend videoSamples; // pictures
    ClassifiedBackend detection;    // facts about the file

    bool system62 = false;  // whether this system counts as version 6.2 or later
    std::string audioRoute; // on this system: "FFmpeg", "recording", "Media Foundation" or
                            // "DirectShow"

    // On this system, for stream 0 and with Media Foundation allowed: "Media Foundation",
    // "DirectShow", "legacy recording decoder", "recording decoder", "PNG QuickTime decoder",
    // "GIF decoder", or "none: no decoder for it". Where already the choice fails, "fails: " and
    // the text of the failure.
    std::string videoRoute;

    bool pngMov = false;   // a ".mov" with PNG pictures
    bool aacInMp4 = false; // an MP4 whose first sound track is "mp4a"

    // Why the container is no MP4 or QuickTime file that can be walked; empty where it is one. Else
    // "the file cannot be opened, or its first box is not an ftyp" or "its boxes cannot be walked
    // to the end", in which case the tracks are those met before that place.
    std::string mp4Problem;
    std::vector<ClassifiedTrack> tracks; // in file order
    std::vector<std::string> streams;    // as the lister of streams has it: "video avc1", ...

    // How the last video track is to be shown. The identity without a size where the extension is
    // neither "mov" nor "mp4", or the file cannot be walked.
    std::array<double, 4> orientation{1, 0, 0, 1}; // row-major: the movie's times the track's
    std::int32_t orientationWidth = 0;             // as shown, in whole pixels; so is the height
    std::int32_t orientationHeight = 0;
    int rotation = 0; // clockwise turn that the picture needs, in degrees: 0, 90, 180 or 270
};

// Classifies the file at `path` (UTF-8), which may name a member of a recording. A file that is
// missing, damaged or of no known kind gets the answers that the library has for it: nothing but
// the lack of memory is thrown.
//
// Thread-safety: safe from any thread.
ZANTHE_API FileClassification ClassifyFile(const std::string& path);

// The file to open for `path` (both UTF-8): `path` without the member of a recording that it may
// name. It need not exist. Thread-safety: safe from any thread.
ZANTHE_API std::string ContainerPathOf(const std::string& path);

} // namespace Zanthe
