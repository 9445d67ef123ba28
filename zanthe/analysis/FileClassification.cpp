#include "zanthe/analysis/FileClassification.h"

#include <array>
#include <string_view>

#include "platform/av/Contents.h"
#include "platform/win32/Path.h"
#include "platform/win32/Text.h"
#include "zanthe/analysis/BrecStreamOrdinal.h"
#include "zanthe/analysis/ClassificationBackends.h"
#include "zanthe/analysis/ClassificationInside.h"
#include "zanthe/analysis/ClassificationMp4.h"
#include "zanthe/analysis/ClassificationRemarks.h"
#include "zanthe/analysis/FileSignature.h"
#include "zanthe/analysis/IdentifierNames.h"
#include "zanthe/analysis/PreferredFilters.h"
#include "zanthe/analysis/RecordingPath.h"
#include "zanthe/analysis/SourceFilter.h"

namespace Zanthe {

namespace {

const char* MemberKindName(std::int32_t kind) {
    constexpr std::array<const char*, 10> names{
        "no member",    "numbered video", "numbered audio", "numbered screen track",
        "screen video", "camera video",   "microphone",     "system audio",
        "event data",   "manifest",
    };
    return names.at(static_cast<std::size_t>(kind));
}

const char* SubtypeSourceName(SubtypeSource source) {
    switch (source) {
    case SubtypeSource::Signature:
        return "signature";
    case SubtypeSource::Extension:
        return "extension";
    case SubtypeSource::Nothing:
        break;
    }
    return "nothing";
}

ClassifiedPath ParsePath(const std::wstring& path) {
    const RecordingPath recording(path);
    ClassifiedPath parsed;
    parsed.container = win32::WideToUtf8(recording.GetContainerPath());
    if (recording.kind != NoMember) {
        parsed.member = win32::WideToUtf8(recording.fileName.substr(recording.name.size() + 1));
    }
    parsed.kind = MemberKindName(recording.kind);
    parsed.stream = recording.index;
    parsed.memberCode = recording.memberCode;
    parsed.ordinal = BrecStreamOrdinal(path);
    return parsed;
}

// Formats of single pictures are called "png_pipe" and so on, and some by all their endings.
std::string ContentsName(const std::string& container) {
    constexpr std::string_view pipe = "_pipe";
    const std::string name = av::ContentsOf(win32::ExistingPath(container));
    const std::size_t at = name.rfind(pipe);
    const bool picture = at != std::string::npos && at + pipe.size() == name.size();
    if (name == "mov,mp4,m4a,3gp,3g2,mj2") {
        return "MP4 or QuickTime";
    }
    return picture ? name.substr(0, at) + " picture" : name;
}

void ClassifyFilters(const std::wstring& path, FileClassification& result) {
    const DetectedSubtype detected = DetectMediaSubtypeAndSource(path);
    result.subtype = SubtypeName(detected.subtype);
    result.subtypeSource = SubtypeSourceName(detected.source);
    const GUID filter = SelectSourceFilter(path);
    const char* name = SourceFilterName(filter);
    result.sourceFilterId = GuidText(filter);
    result.sourceFilter = name != nullptr ? name : result.sourceFilterId;
    for (const PreferredFilter& preferred : PreferredFiltersFor(path)) {
        result.preferredFilters.push_back(win32::WideToUtf8(preferred.library));
    }
}

} // namespace

FileClassification ClassifyFile(const std::string& path, int videoStream) {
    const std::wstring widePath = win32::Utf8ToWide(path);
    FileClassification result;
    result.path = path;
    result.parsed = ParsePath(widePath);
    result.contents = ContentsName(result.parsed.container);
    ClassifyFilters(widePath, result);
    ClassifyMp4(result);
    ClassifyBackends(videoStream, result);
    ClassifyInside(result);
    result.remarks = RemarksOn(result);
    return result;
}

std::string ContainerPathOf(const std::string& path) {
    return win32::WideToUtf8(RecordingPath(path).GetContainerPath());
}

} // namespace Zanthe
