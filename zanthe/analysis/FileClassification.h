// Every answer that the library has about a path, in one value of plain words and numbers: what the
// file is, and which backend each purpose sends it to. For whoever has a file that misbehaves; the
// library itself asks each question where it needs it, and these are the same answers.
//
//     const Zanthe::FileClassification file = Zanthe::ClassifyFile("clip.mp4");
//     file.subtype                          // "MEDIASUBTYPE_None"
//     file.videoSamples.mediaFoundation62   // true
//     file.videoRoute.backend               // "Media Foundation"
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "zanthe/core/Export.h"

namespace Zanthe {

// A path taken apart, which may name one stream inside a recording behind a "!".
struct ClassifiedPath {
    std::string container;       // path of the file to open
    std::string member;          // behind the "!", as "video2.mp4"; empty where none is recognised
    std::string kind;            // "no member", "numbered video", "screen video", ...
    std::int32_t stream = 0;     // the digit in the member's name; 0 without one
    std::int32_t memberCode = 0; // by the member's first letter, 100 to 105; 0 for any other

    // Of a numbered member of a ".brec": how many streams of its kind stand before its own.
    std::uint32_t ordinal = 0;

    friend bool operator==(const ClassifiedPath&, const ClassifiedPath&) = default;
};

// Whether a file goes to Media Foundation for one purpose; false is DirectShow.
struct ClassifiedBackend {
    bool mediaFoundation62 = false;      // on a system of version 6.2 or later
    bool mediaFoundationBelow62 = false; // on an older one

    friend bool operator==(const ClassifiedBackend&, const ClassifiedBackend&) = default;
};

// The backend that reads a file on this system.
struct ClassifiedRoute {
    std::string backend;    // as FileClassification says
    bool isBuilt = false;   // whether this build of the library has it; else the file fails to open
    std::string obstacle{}; // why it will not serve the file, though it is built; empty: nothing
                            // that the headers tell

    friend bool operator==(const ClassifiedRoute&, const ClassifiedRoute&) = default;
};

// One stream of sound or pictures as decoders see it, whatever the container.
struct ClassifiedContent {
    std::string kind;     // "video" or "audio"
    std::string codec;    // FFmpeg's name of it, as "h264"; "none": not known
    int width = 0;        // of video as coded, in pixels; so is height
    int height = 0;       //
    double frameRate = 0; // of video, pictures a second; 0: unknown
    int sampleRate = 0;   // of sound, Hz
    int channels = 0;     // of sound

    friend bool operator==(const ClassifiedContent&, const ClassifiedContent&) = default;
};

// One track of an MP4 or QuickTime file, as media detection has it.
struct ClassifiedTrack {
    std::int32_t id = 0;
    std::string kind;                       // "video", "audio" or "other"
    std::string codec;                      // four bytes as the file has them; empty: none met
    bool codecDoubtful = false;             // these bytes stand behind several sample descriptions
    std::optional<std::string> displayName; // of the subtype that carries those four characters
    std::int32_t width = 0;                 // before turning, in whole pixels; so is height
    std::int32_t height = 0;
    std::int32_t codedWidth = 0; // in pixels, told of "avc1" only; so is codedHeight
    std::int32_t codedHeight = 0;

    // Shape of a pixel, width to height. Nothing for codecs other than "avc1", of which it is not
    // told; 1 to 1 for an "avc1" that says nothing.
    std::optional<std::array<std::int32_t, 2>> pixelAspect;

    std::array<double, 4> matrix{1, 0, 0, 1}; // row-major 2 by 2 display transform
    std::int32_t volume = 0;                  // 1 at full volume, 0 at silence

    friend bool operator==(const ClassifiedTrack&, const ClassifiedTrack&) = default;
};

// One track as the lister of streams has it, which may see another kind or codec.
struct ClassifiedStream {
    std::string kind;  // "video", "audio" or "other"
    std::string codec; // four bytes as the file has them; empty: none met

    friend bool operator==(const ClassifiedStream&, const ClassifiedStream&) = default;
};

// How the last video track is to be shown.
struct ClassifiedOrientation {
    std::array<double, 4> matrix{1, 0, 0, 1}; // row-major: the movie's times the track's
    std::int32_t width = 0;                   // before turning, in whole pixels; so is height
    std::int32_t height = 0;
    int rotation = 0; // clockwise turn that the picture needs, in degrees: 0, 90, 180 or 270

    // Whether that turn, with or without a scale, is all. False where the matrix mirrors, skews or
    // turns by something between; rotation is 0 for most of these.
    bool isPlainTurn = true;

    friend bool operator==(const ClassifiedOrientation&, const ClassifiedOrientation&) = default;
};

// All of it is the caller's own copy. Texts are UTF-8 where the file's name and codecs are.
struct FileClassification {
    std::string path; // as it was asked
    ClassifiedPath parsed;

    // What the first bytes are, whatever the name says: the name of a container or picture format,
    // as "MP4 or QuickTime", "mp3" or "png picture". Empty where nothing is recognised.
    std::string contents;

    std::string subtype;        // "MEDIASUBTYPE_Avi", ...
    std::string subtypeSource;  // told by "signature", "extension" or "nothing"
    std::string sourceFilter;   // "file source", "none", ...
    std::string sourceFilterId; // that class as "{E436EBB5-524F-11CE-9F53-0020AF0BA770}"
    std::vector<std::string> preferredFilters; // libraries of the vendor filters offered to a graph

    ClassifiedBackend audio;        // sound
    ClassifiedBackend videoSamples; // pictures
    ClassifiedBackend detection;    // facts about the file

    bool system62 = false; // whether this system counts as version 6.2 or later

    // "FFmpeg", "recording", "Media Foundation" or "DirectShow".
    ClassifiedRoute audioRoute;

    // For the stream asked for and with Media Foundation allowed: "Media Foundation", "DirectShow",
    // "legacy recording decoder", "recording decoder", "PNG QuickTime decoder", "GIF decoder", or
    // "none: no decoder for it", which counts as built and fails to open all the same.
    ClassifiedRoute videoRoute;

    // For a still picture: "image loader", which takes the first frame of an animation too, "PDF
    // loader", or empty where neither reads the file.
    std::string imageRoute;

    // Sound and pictures in the order of the file, attached pictures left out. Empty for still
    // pictures and for whatever cannot be opened.
    std::vector<ClassifiedContent> inside;
    std::int64_t duration = 0; // of these, in 100 ns; 0: unknown

    bool pngMov = false;   // a ".mov" with PNG pictures
    bool aacInMp4 = false; // an MP4 whose first sound track is "mp4a"

    // Why the container is no MP4 or QuickTime file that can be walked to its end; empty where it
    // can. The tracks are then those met before the place where the walk stopped, and the streams
    // none.
    std::string mp4Problem;
    std::vector<ClassifiedTrack> tracks; // in file order
    std::vector<ClassifiedStream> streams;

    // Nothing where the extension is neither "mov" nor "mp4", or the file cannot be walked to its
    // end: the library then shows the pictures as they are.
    std::optional<ClassifiedOrientation> orientation;

    // What a person ought to know about these answers: a file that is cut short, a name that its
    // contents contradict, ... One sentence each, without a full stop.
    std::vector<std::string> remarks;
};

// Classifies the file at `path` (UTF-8), which may name a member of a recording. A file that is
// missing, damaged or of no known kind gets the answers that the library has for it: nothing but
// the lack of memory is thrown. videoStream is the stream whose pictures are asked for, as
// DecoderFactory takes it; some files open in another way for another one.
//
// Thread-safety: safe from any thread.
ZANTHE_API FileClassification ClassifyFile(const std::string& path, int videoStream = 0);

// The file to open for `path` (both UTF-8): `path` without the member of a recording that it may
// name. It need not exist. Thread-safety: safe from any thread.
ZANTHE_API std::string ContainerPathOf(const std::string& path);

} // namespace Zanthe
