#include "zanthe/analysis/ClassificationRemarks.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <iterator>
#include <map>
#include <memory>
#include <sstream>
#include <string_view>

#include "platform/av/Mp4Boxes.h"
#include "platform/win32/Path.h"
#include "platform/win32/Text.h"
#include "zanthe/analysis/Extension.h"
#include "zanthe/analysis/FileReader.h"
#include "zanthe/analysis/MP4ParseException.h"
#include "zanthe/analysis/MP4TopLevel.h"
#include "zanthe/analysis/RecordingPath.h"

namespace Zanthe {

namespace {

using Remarks = std::vector<std::string>;

struct NamedContents {
    std::string_view extension;
    std::string_view contents;    // that goes with it
    std::string_view others = {}; // and another one that does
};

constexpr std::string_view QuickTimeFamily = "MP4 or QuickTime";

constexpr NamedContents KnownExtensions[] = {
    {"mp4", QuickTimeFamily},
    {"mov", QuickTimeFamily},
    {"m4a", QuickTimeFamily},
    {"brec", QuickTimeFamily},
    {"m4v", QuickTimeFamily},
    {"3gp", QuickTimeFamily},
    {"3g2", QuickTimeFamily},
    {"mp3", "mp3"},
    {"wav", "wav"},
    {"avi", "avi"},
    {"mpg", "mpeg", "mpegvideo"},
    {"mpeg", "mpeg", "mpegvideo"},
    {"mts", "mpegts"},
    {"m2ts", "mpegts"},
    {"wmv", "asf"},
    {"wma", "asf"},
    {"gif", "gif"},
    {"png", "png picture", "apng"},
    {"bmp", "bmp picture"},
    {"jpg", "jpeg picture"},
    {"jpeg", "jpeg picture"},
    {"pdf", "pdf"},
};

std::string Extension(const FileClassification& file) {
    return win32::WideToUtf8(LowerCase(RecordingPath(win32::Utf8ToWide(file.path)).GetExtension()));
}

// Files that would be read under a name that sends them to another backend.
void RemarkNameOfMp4(const FileClassification& file, Remarks& remarks) {
    if (file.contents != QuickTimeFamily) {
        return;
    }
    if (!file.videoRoute.isBuilt) {
        remarks.push_back("the library goes by the name, which sends this file to " +
                          file.videoRoute.backend +
                          ": called .mp4 it would go to Media Foundation");
    }
    const std::string extension = Extension(file);
    const auto isTurned = [](const ClassifiedTrack& track) {
        const auto& matrix = track.matrix;
        return track.kind == "video" && (matrix[1] != 0 || matrix[2] != 0 || matrix[0] < 0);
    };
    if (extension != "mp4" && extension != "mov" && extension != "brec" &&
        std::any_of(file.tracks.begin(), file.tracks.end(), isTurned)) {
        remarks.emplace_back("a track of pictures has a turn, which is heeded in files called .mp4 "
                             "or .mov alone");
    }
}

void RemarkContents(const FileClassification& file, Remarks& remarks) {
    const std::string extension = Extension(file);
    const auto* known =
        std::find_if(std::begin(KnownExtensions), std::end(KnownExtensions),
                     [&](const NamedContents& each) { return each.extension == extension; });
    if (known == std::end(KnownExtensions) || known->contents == file.contents ||
        (!file.contents.empty() && known->others == file.contents)) {
        return;
    }
    remarks.push_back("the name says ." + extension + ", the contents " +
                      (file.contents.empty() ? "are of no known kind" : "say " + file.contents));
}

std::string BytesText(std::uint64_t count) {
    return std::to_string(count) + (count == 1 ? " byte" : " bytes");
}

// Types and codecs for people.
std::string Quoted(const std::string& characters) {
    std::ostringstream text;
    for (const char each : characters) {
        const auto byte = static_cast<unsigned char>(each);
        if (byte >= 0x20 && byte < 0x7F) {
            text << each;
        } else {
            constexpr std::string_view digits = "0123456789abcdef";
            text << "\\x" << digits[byte >> 4] << digits[byte & 15];
        }
    }
    return '"' + text.str() + '"';
}

// What a box may be called; Apple's begin with a letter beyond ASCII.
bool IsBoxType(const std::string& type) {
    return std::all_of(type.begin(), type.end(), [](char each) {
        const auto byte = static_cast<unsigned char>(each);
        return std::isalnum(byte) != 0 || byte == ' ' || byte == '-' || byte == '_' || byte == 0xA9;
    });
}

void RemarkEnd(const MP4TopLevel& walk, Remarks& remarks) {
    if (const auto& box = walk.Beyond(); box && !IsBoxType(box->type)) {
        remarks.push_back(BytesText(walk.FileSize() - box->offset) +
                          " behind the last box, from byte " + std::to_string(box->offset) +
                          " on, are no box");
    } else if (box) {
        remarks.push_back("the " + Quoted(box->type) + " box at byte " +
                          std::to_string(box->offset) + " ends " +
                          BytesText(box->End() - walk.FileSize()) +
                          " behind the end of the file: the file is cut short");
    }
    if (!walk.HasMovie()) {
        remarks.emplace_back("there is no moov box to walk: the file is probably cut short");
    }
}

// The library gives up a file for a few stray bytes, so it matters to know of them.
void RemarkWalkThatFailed(const MP4TopLevel& walk, Remarks& remarks) {
    const std::uint64_t stopped = walk.Stopped();
    if (walk.HasMetTooManyBoxes()) {
        remarks.push_back("the walk over the boxes stops at byte " + std::to_string(stopped) +
                          ": there are more of them than are read of one file");
        return;
    }
    if (stopped < walk.FileSize()) {
        remarks.push_back("the walk over the boxes stops at byte " + std::to_string(stopped) +
                          ", " + BytesText(walk.FileSize() - stopped) +
                          " before the end of the file: no box begins there");
    }
}

void RemarkBoxes(const FileClassification& file, Remarks& remarks) {
    MP4TopLevel walk(std::make_unique<FileReader>());
    const std::wstring container = win32::Utf8ToWide(file.parsed.container);
    try {
        walk.Parse(container);
        RemarkEnd(walk, remarks);
        if (!file.mp4Problem.empty()) {
            remarks.emplace_back(
                file.tracks.size() >= MP4ParserBase::MaxTracks
                    ? "there are more tracks than the " + std::to_string(MP4ParserBase::MaxTracks) +
                          " that are read of one file"
                    : "what stops the walk over the boxes stands inside the moov box");
        }
    } catch (const MP4ParseException&) {
        if (walk.FileSize() > 0) {
            RemarkWalkThatFailed(walk, remarks);
        }
    }
}

void RemarkTracks(const FileClassification& file, Remarks& remarks) {
    std::map<std::int32_t, int> counts;
    for (const ClassifiedTrack& track : file.tracks) {
        if (++counts[track.id] == 2) {
            remarks.push_back("several tracks have the number " + std::to_string(track.id));
        }
        if (track.codec == "encv" || track.codec == "enca") {
            remarks.push_back("track " + std::to_string(track.id) + " is encrypted");
        }
    }
}

void RemarkCodecs(const FileClassification& file, Remarks& remarks) {
    for (std::size_t i = 0; i < file.tracks.size(); ++i) {
        const ClassifiedTrack& track = file.tracks[i];
        if (track.codecDoubtful) {
            remarks.push_back("track " + std::to_string(track.id) +
                              " has several sample descriptions, the first of them " +
                              Quoted(file.streams[i].codec) + ": " + Quoted(track.codec) +
                              " is what stands behind them, and no codec");
        }
    }
}

void RemarkAac(const FileClassification& file, Remarks& remarks) {
    const auto sound =
        std::find_if(file.streams.begin(), file.streams.end(),
                     [](const ClassifiedStream& stream) { return stream.kind == "audio"; });
    if (file.aacInMp4 || sound == file.streams.end() || sound->codec != "mp4a") {
        return;
    }
    const std::string extension = Extension(file);
    if (extension != "mp4" && extension != "mov") {
        return;
    }
    const auto boxes = av::Mp4Boxes::Open(win32::ExistingPath(file.parsed.container));
    const bool brand = boxes != nullptr && boxes->FourCharacters(16) == "qt  ";
    remarks.emplace_back(brand ? "the first track of sound is mp4a, but the first compatible brand "
                                 "is \"qt  \": the file does not count as AAC in MP4"
                               : "the first track of sound is mp4a, but the file does not count as "
                                 "AAC in MP4");
}

// Tracks of all kinds are counted in one row.
void RemarkKindOfMember(std::int32_t kind, const FileClassification& file, Remarks& remarks) {
    const ClassifiedTrack& track = file.tracks[static_cast<std::size_t>(file.parsed.stream)];
    const std::string_view asked = kind == NumberedAudio ? "audio" : "video";
    if (track.kind != asked) {
        remarks.push_back("track " + std::to_string(file.parsed.stream) + ", counted from 0, is " +
                          track.kind + ", not " + std::string(asked));
    }
}

// A number is one character, whatever follows it.
void RemarkMember(const FileClassification& file, Remarks& remarks) {
    const ClassifiedPath& path = file.parsed;
    if (path.member.empty()) {
        return;
    }
    const std::string extension = Extension(file);
    if (extension != "brec" && extension != "orirec") {
        remarks.push_back("the path names a member, but " + path.container + " is no recording");
    }
    const std::int32_t kind =
        RecordingPath::ClassifyMember(win32::Utf8ToWide(path.member), nullptr);
    if (kind != NumberedVideo && kind != NumberedAudio && kind != NumberedScreenTrack) {
        return;
    }
    if (path.stream < 0 || path.stream > 9) {
        remarks.push_back("the member's number is no digit and counts as " +
                          std::to_string(path.stream));
    } else if (path.member.size() >
               std::string_view("video0.").size() + (kind == NumberedScreenTrack ? 4 : 3)) {
        remarks.push_back("only the first digit of a member's number counts: this is number " +
                          std::to_string(path.stream));
    }
    if (extension == "brec" && file.mp4Problem.empty() &&
        (path.stream < 0 || static_cast<std::size_t>(path.stream) >= file.tracks.size())) {
        remarks.push_back("the recording has no such track: it has " +
                          std::to_string(file.tracks.size()) + ", counted from 0");
        return;
    }
    if (extension == "brec" && file.mp4Problem.empty()) {
        RemarkKindOfMember(kind, file, remarks);
    }
}

} // namespace

std::vector<std::string> RemarksOn(const FileClassification& file) {
    Remarks remarks;
    RemarkMember(file, remarks);
    RemarkContents(file, remarks);
    RemarkNameOfMp4(file, remarks);
    RemarkBoxes(file, remarks);
    RemarkTracks(file, remarks);
    RemarkCodecs(file, remarks);
    RemarkAac(file, remarks);
    constexpr std::size_t most = 20; // a hostile file gives reason for thousands
    if (remarks.size() > most) {
        remarks.resize(most);
        remarks.emplace_back("and more of the kind");
    }
    return remarks;
}

} // namespace Zanthe
