// Any bytes as a path, parsed as one that may name a member of a recording, and classified. No file
// is opened. Whatever the bytes, the parts put together must be the path again.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include <boost/make_shared.hpp>

#include "platform/win32/Text.h"
#include "zanthe/analysis/Extension.h"
#include "zanthe/analysis/MediaFoundationChoice.h"
#include "zanthe/analysis/PreferredFilters.h"
#include "zanthe/analysis/RecordingPath.h"

namespace {

void Require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

void CheckParts(const RecordingPath& parsed, const std::wstring& path) {
    Require(parsed.directory + parsed.fileName == path);
    Require(path.starts_with(parsed.GetContainerPath()));
    Require(parsed.fileName.find_first_of(L"\\/") == std::wstring::npos);
    Require(parsed.name.ends_with(parsed.GetExtension()));
    if (parsed.kind == NoMember) {
        Require(parsed.name == parsed.fileName && parsed.index == 0 && parsed.memberCode == 0);
    } else {
        Require(parsed.kind <= Manifest && !parsed.name.empty());
        Require(parsed.fileName.size() > parsed.name.size() &&
                parsed.fileName[parsed.name.size()] == L'!');
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string utf8(reinterpret_cast<const char*>(data), size);
    const std::wstring path = win32::Utf8ToWide(utf8);
    CheckParts(RecordingPath(utf8), path);
    Require(path.size() >= LowerExtension(path).size());
    Require(path.size() >= LowerTextBehindLastDot(path).size());
    Require(PreferredFiltersFor(path).size() <= 3);
    const auto version = boost::make_shared<Zanthe::WindowsVersionProvider>();
    ShouldUseMediaFoundation(path, MediaFoundationPurpose::Audio, version);
    ShouldUseMediaFoundation(path, MediaFoundationPurpose::VideoSamples, version);
    return 0;
}
