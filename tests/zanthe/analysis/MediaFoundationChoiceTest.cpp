#include "zanthe/analysis/MediaFoundationChoice.h"

#include <string>
#include <vector>

#include <boost/make_shared.hpp>
#include <gtest/gtest.h>

#include "platform/win32/Text.h"
#include "tests/support/FixedVersion.h"
#include "tests/support/TestMedia.h"

namespace {

// Hosts hand these in as numbers.
static_assert(static_cast<int>(MediaFoundationPurpose::Audio) == 0);
static_assert(static_cast<int>(MediaFoundationPurpose::VideoSamples) == 1);
static_assert(static_cast<int>(MediaFoundationPurpose::Detection) == 2);

// The answers for one path: Audio, VideoSamples and Detection, each without a version provider, for
// an older and for a newer system.
std::string Answers(const std::wstring& path) {
    const boost::shared_ptr<Zanthe::IWindowsVersionProvider> providers[] = {
        nullptr, boost::make_shared<FixedVersion>(false), boost::make_shared<FixedVersion>(true)};
    std::string answers;
    for (const auto purpose : {MediaFoundationPurpose::Audio, MediaFoundationPurpose::VideoSamples,
                               MediaFoundationPurpose::Detection}) {
        answers += answers.empty() ? "" : " ";
        for (const auto& provider : providers) {
            answers += ShouldUseMediaFoundation(path, purpose, provider) ? 'y' : '-';
        }
    }
    return answers;
}

struct Row {
    std::wstring path;
    std::string answers;
};

// Columns: Audio, VideoSamples, Detection; in each: no provider, below 6.2, from 6.2 on.
const std::vector<Row> Table{
    {L"c:\\a.wmv", "-yy --- -yy"},
    {L"c:\\a.wma", "-yy -yy -yy"},
    {L"c:\\a.mp3", "-yy -yy -yy"},
    {L"c:\\a.mp4", "-yy --y --y"},
    {L"c:\\a.mov", "-yy --y --y"},
    {L"c:\\a.wav", "-yy -yy -yy"},
    {L"c:\\a.m4a", "-yy -yy -yy"},
    {L"c:\\a.mts", "--y --- --y"},
    {L"c:\\a.m2ts", "--y --- --y"},
    {L"c:\\a.brec", "--- --- ---"},
    {L"c:\\a.orirec", "--- --- ---"},
    {L"c:\\a.avi", "--- --- ---"},
    {L"c:\\a.mpg", "--- --- ---"},
    {L"c:\\a.mpeg", "--- --- ---"},
    {L"c:\\a.gif", "--- --- ---"},
    {L"c:\\a.m4v", "--- --- ---"},
    {L"c:\\a.ts", "--- --- ---"},
    {L"c:\\a.mkv", "--- --- ---"},
    {L"c:\\a", "--- --- ---"},
    {L"mp4", "--- --- ---"},
    {L"c:\\x.mp4\\mov", "--- --- ---"},
    {L"c:\\a.", "--- --- ---"},
    {L"", "--- --- ---"},
};

std::wstring Upper(std::wstring text) {
    for (wchar_t& letter : text) {
        letter = letter >= L'a' && letter <= L'z' ? static_cast<wchar_t>(letter - 32) : letter;
    }
    return text;
}

TEST(ShouldUseMediaFoundation, EveryPurposeExtensionAndVersion) {
    for (const Row& row : Table) {
        EXPECT_EQ(Answers(row.path), row.answers) << win32::WideToUtf8(row.path);
    }
}

TEST(ShouldUseMediaFoundation, IgnoresCase) {
    for (const Row& row : Table) {
        EXPECT_EQ(Answers(Upper(row.path)), row.answers) << win32::WideToUtf8(row.path);
    }
}

TEST(ShouldUseMediaFoundation, MovWithPngPictures) {
    const std::wstring path = win32::Utf8ToWide(MadeMedia("classify/png.mov"));
    EXPECT_EQ(Answers(path), "-yy --y yyy");
    EXPECT_EQ(Answers(win32::Utf8ToWide(MadeMedia("classify/h264.mov"))), "-yy --y --y");
}

// Only that question needs the file, so that all others cost no more than looking at the path.
TEST(ShouldUseMediaFoundation, OnlyTheDetectionOfAMovLooksIntoTheFile) {
    const auto newer = boost::make_shared<FixedVersion>(true);
    int looks = 0;
    const auto look = [&looks] {
        ++looks;
        return false;
    };
    for (const Row& row : Table) {
        const bool mov = row.path.ends_with(L".mov");
        for (const auto purpose :
             {MediaFoundationPurpose::Audio, MediaFoundationPurpose::VideoSamples,
              MediaFoundationPurpose::Detection}) {
            looks = 0;
            ShouldUseMediaFoundation(row.path, purpose, newer, look);
            const bool wanted = mov && purpose == MediaFoundationPurpose::Detection;
            EXPECT_EQ(looks, wanted ? 1 : 0) << win32::WideToUtf8(row.path);
        }
    }
    looks = 0;
    ShouldUseMediaFoundation(L"c:\\a.mov", MediaFoundationPurpose::Detection, nullptr, look);
    EXPECT_EQ(looks, 1);
}

TEST(ShouldUseMediaFoundation, ForwardSlashes) {
    EXPECT_EQ(Answers(L"d:/x/y.mp4"), "-yy --y --y");
    EXPECT_EQ(Answers(L"d:/x.y/z"), "--- --- ---");
    EXPECT_EQ(Answers(L"d:/x.mp4/z"), "--- --- ---");
}

// The recording decides, whatever its member is called.
TEST(ShouldUseMediaFoundation, MembersOfRecordings) {
    EXPECT_EQ(Answers(L"c:\\a.brec!video0.mp4"), "--- --- ---");
    EXPECT_EQ(Answers(L"c:\\a.BREC!audio0.mp4"), "--- --- ---");
    EXPECT_EQ(Answers(L"c:\\a.orirec!Camera_Stream.wmv"), "--- --- ---");
    EXPECT_EQ(Answers(L"c:\\a.Orirec!Audio.wav"), "--- --- ---");
}

// What is no member is part of a plain name, and so is a recording's extension before it.
TEST(ShouldUseMediaFoundation, UnknownMembersArePlainFiles) {
    EXPECT_EQ(Answers(L"c:\\a.brec!other.mp4"), "-yy --y --y");
    EXPECT_EQ(Answers(L"c:\\a.orirec!audio.wav"), "-yy -yy -yy");
}

} // namespace
