// Several threads classify at once, on the same files and on different ones.
#include <atomic>
#include <vector>

#include <boost/make_shared.hpp>
#include <gtest/gtest.h>

#include "platform/dshow/Uuids.h"
#include "platform/win32/Registry.h"
#include "platform/win32/Text.h"
#include "platform/win32/Version.h"
#include "tests/support/OnAllThreads.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/zanthe/analysis/Mp4Boxes.h"
#include "zanthe/analysis/FileClassification.h"
#include "zanthe/analysis/FileSignature.h"
#include "zanthe/analysis/MP4StreamTypes.h"
#include "zanthe/analysis/MediaFoundationChoice.h"
#include "zanthe/analysis/MediaOrientation.h"
#include "zanthe/analysis/PreferredFilters.h"
#include "zanthe/analysis/SourceFilter.h"

namespace {

constexpr int Threads = 4;
constexpr int Rounds = 100;

// Has all threads call `work` with their number, many times.
template <typename Work>
void ManyTimesOnAllThreads(const Work& work) {
    OnAllThreads(Threads, [&work](int thread) {
        for (int round = 0; round < Rounds; ++round) {
            work(thread);
        }
    });
}

class ClassificationThreads : public testing::Test {
protected:
    std::wstring Write(const std::string& name, const std::string& bytes) {
        return win32::Utf8ToWide(m_folder.Write(name, bytes));
    }

    static std::string TurnedMovie() {
        boxes::TrackHeader header;
        header.matrix = boxes::Clockwise90;
        header.width = 64 << 16;
        header.height = 48 << 16;
        return boxes::Movie(
            boxes::Track(boxes::TrackHeaderBox(header), "vide",
                         boxes::SampleDescriptionBox(1, boxes::VisualEntry("png ", 64, 48))));
    }

    TemporaryFolder m_folder;
    std::wstring m_movie = Write("a.mov", TurnedMovie());
    std::wstring m_sound = Write("a.bin", "RIFF\1\2\3\4WAVE");
};

TEST_F(ClassificationThreads, SubtypesAndBackends) {
    const auto version = boost::make_shared<Zanthe::WindowsVersionProvider>();
    ManyTimesOnAllThreads([&](int thread) {
        EXPECT_EQ(DetectMediaSubtype(m_sound), MEDIASUBTYPE_WAVE);
        EXPECT_EQ(DetectMediaSubtype(m_movie), MEDIASUBTYPE_None);
        const auto purpose = static_cast<MediaFoundationPurpose>(thread % 3);
        EXPECT_TRUE(ShouldUseMediaFoundation(m_movie, purpose, version));
    });
}

TEST_F(ClassificationThreads, StreamsAndOrientations) {
    ManyTimesOnAllThreads([&](int) {
        EXPECT_EQ(ReadMP4StreamTypes(m_movie),
                  (std::vector<MP4StreamType>{{MP4TrackType::Video, "png "}}));
        EXPECT_EQ(RotationFromOrientation(ReadMediaOrientation(m_movie)), 90);
    });
}

TEST_F(ClassificationThreads, FiltersOverTheRegistry) {
    const GUID filter = SelectSourceFilter(L"a.orirec!Screen_Stream.avi");
    ManyTimesOnAllThreads([&](int) {
        EXPECT_EQ(SelectSourceFilter(L"a.orirec!Screen_Stream.avi"), filter);
        EXPECT_FALSE(IsAlternateInstallMode());
        AddPreferredFilters(L"a.mp4", nullptr);
        SetPreferredFilterHost(nullptr);
    });
}

// The system's version may be set while others ask for it: they see one or the other.
TEST_F(ClassificationThreads, TheSystemsVersion) {
    std::atomic<int> answers = 0;
    ManyTimesOnAllThreads([&](int thread) {
        if (thread == 0) {
            win32::SetSystemVersion({6, 1, 0});
            win32::SetSystemVersion({});
        } else {
            Zanthe::WindowsVersionProvider().IsWindows62OrLater();
            ++answers;
        }
    });
    EXPECT_EQ(answers, (Threads - 1) * Rounds);
    EXPECT_TRUE(Zanthe::WindowsVersionProvider().IsWindows62OrLater());
}

TEST_F(ClassificationThreads, EveryAnswer) {
    const std::string path = win32::WideToUtf8(m_movie);
    const Zanthe::FileClassification one = Zanthe::ClassifyFile(path);
    ManyTimesOnAllThreads([&](int) {
        const Zanthe::FileClassification other = Zanthe::ClassifyFile(path);
        EXPECT_EQ(other.tracks, one.tracks);
        EXPECT_EQ(other.orientation, one.orientation);
        EXPECT_EQ(other.remarks, one.remarks);
    });
}

} // namespace
