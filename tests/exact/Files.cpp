#include "tests/exact/Files.h"

#include <algorithm>
#include <cctype>

namespace {

const char* const ForTheReader[] = {
    // order and groups
    "plain.mp4", "bframes-3.mp4", "b-pyramid.mp4", "no-bframes.mp4", "long-group.mp4",
    "short-groups.mp4", "intra-only.mp4", "open-groups.mp4", "open-groups.mov", "intra-refresh.mp4",
    "two-slices.mp4", "one-picture.mp4", "three-pictures.mp4",
    // time
    "vfr-gaps.mp4", "vfr-speeds.mp4", "vfr-jitter.mp4", "vfr-long-pause.mov", "rate-29.97.mp4",
    "coarse-clock.mp4", "same-time.mp4", "same-time-bframes.mp4",
    // shapes
    "odd-size-444.mp4", "odd-height-422.mp4", "cropped.mp4", "wide-pixels.mp4", "tall-pixels.mov",
    "422.mp4", "10-bit.mp4", "10-bit-422.mov", "gray.mp4", "mbaff.mp4", "fake-interlaced.mp4",
    "large.mp4", "hd.mp4", "rotated-90.mp4", "rotated-180.mp4", "rotated-270.mp4", "mirrored.mp4",
    "rotated-and-mirrored.mp4", "other-display-size.mp4",
    // colour
    "bt709.mp4", "bt601.mp4", "smpte240m.mp4", "full-range.mp4", "full-range-only.mp4",
    "no-colour-words.mp4",
    // layout and tracks
    "index-first.mp4", "fragmented.mp4", "fragmented-finely.mp4", "fragmented-late.mp4",
    "audio-first.mp4", "longer-sound.mp4", "longer-sound.mov", "text-track.mov", "text-track.mp4",
    "cover.mp4", "two-videos.mp4",
    // edit lists
    "edit-into-group.mp4", "edit-into-group.mov", "edit-into-long-group.mp4",
    "edit-into-open-group.mp4", "edit-into-hevc.mp4", "edit-into-mpeg4.mp4", "edit-empty-start.mp4",
    "edit-empty-start.mov", "edit-later.mp4", "edit-none.mp4",
    // other codecs
    "hevc-plain.mp4", "hevc-open-groups.mp4", "hevc-hev1.mp4", "hevc-10-bit.mp4",
    "hevc-long-group.mov", "mpeg4-plain.mp4", "mpeg4-bframes.mp4", "mpeg4-bframes.mov",
    "mpeg4-odd-size.mp4", "mpeg4-long-group.mp4",
    // less than is promised
    "cut-off.mp4", "cut-off-fragmented.mp4"};

const char* const InOtherContainers[] = {
    "open-groups.ts",     "in-transport.ts",      "in-program.mpg",    "in-avi-no-bframes.avi",
    "in-matroska.mkv",    "hevc-in-transport.ts", "mpeg4-bframes.avi", "size-change.ts",
    "starts-in-group.ts", "cut-off.ts",           "size-change.mp4",   "in-avi.avi"};

std::string TestName(std::string name) {
    std::replace_if(
        name.begin(), name.end(), [](unsigned char c) { return std::isalnum(c) == 0; }, '_');
    return name;
}

} // namespace

std::vector<std::string> MadeClips(Containers containers) {
    std::vector<std::string> clips(std::begin(ForTheReader), std::end(ForTheReader));
    if (containers == Containers::All) {
        clips.insert(clips.end(), std::begin(InOtherContainers), std::end(InOtherContainers));
    }
    return clips;
}

std::string NameOfClip(const testing::TestParamInfo<std::string>& info) {
    return TestName(info.param);
}

std::string NameOfFile(const testing::TestParamInfo<std::filesystem::path>& info) {
    return TestName(info.param.filename().string());
}
