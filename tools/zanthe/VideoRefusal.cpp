#include "tools/zanthe/VideoRefusal.h"

#include "tools/zanthe/FileContents.h"
#include "tools/zanthe/TrackChoice.h"

namespace Program {

namespace {

using Zanthe::FileClassification;

// Members are taken apart by the classification, and all but one have no reader.
std::string MemberText(const FileClassification& file) {
    if (file.parsed.member.empty() || file.parsed.kind == "screen video") {
        return {};
    }
    return "; of the members of recordings only Screen_Stream.avi of a legacy one is read: name "
           "the recording itself, and one of its tracks by --stream";
}

// In a QuickTime file the first track decides which reader is asked.
std::string PngText(const FileClassification& file) {
    std::vector<int> numbers;
    for (const int number : TracksOf(file, TrackKind::Pictures)) {
        if (file.streams[static_cast<std::size_t>(number)].codec == "png ") {
            numbers.push_back(number);
        }
    }
    return file.pngMov && !numbers.empty() && file.videoRoute.backend == "Media Foundation"
               ? "; PNG images are in " + NumbersText("stream", numbers)
               : std::string();
}

std::string Explanation(const FileClassification& file) {
    std::string text = MissingBackendText(file, file.videoRoute) + MemberText(file) + PngText(file);
    for (const std::string& remark : file.remarks) {
        if (remark.rfind("the name ", 0) == 0) {
            text += "; " + remark;
        }
    }
    return text;
}

std::string Reason(const FileClassification& file, const std::string& reason) {
    const bool isWhole = file.parsed.container == file.path;
    if (const std::string screen = isWhole ? ScreenStreamIn(file.path) : ""; !screen.empty()) {
        return "it is a legacy recording: name its member, " + screen;
    }
    // What is damaged in a film of a recording has no other text.
    return (reason == "std::exception" ? "the film in it is damaged, or none" : reason) +
           Explanation(file);
}

std::string DamageText(const FileClassification& file) {
    std::string text = "the recording is damaged";
    if (!file.mp4Problem.empty()) {
        text += "; " + file.mp4Problem;
    }
    for (const std::string& remark : file.remarks) {
        text += "; " + remark;
    }
    return text;
}

} // namespace

CommandError VideoRefusal(const FileClassification& file, const std::string& reason) {
    return {file.path, "no reader for its pictures: " + Reason(file, reason)};
}

CommandError RecordingRefusal(const FileClassification& file) {
    if (file.contents != "MP4 or QuickTime") {
        return VideoRefusal(file, "it is no recording on MP4");
    }
    if (!file.streams.empty() && TracksOf(file, TrackKind::Pictures).empty()) {
        return {file.path, "has no pictures"};
    }
    return {file.path, "no reader for its pictures: " + DamageText(file)};
}

} // namespace Program
