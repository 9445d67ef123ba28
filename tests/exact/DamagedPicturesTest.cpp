// Whatever happens to a file, a reader answers with a picture, with none, or with a failure of its
// own; and where the file is whole, with the right picture.
#include <sys/resource.h>

#include <cstdint>
#include <cstdio>
#include <memory>
#include <random>
#include <stdexcept>

#include <gtest/gtest.h>

#include "tests/exact/PictureCheck.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestMedia.h"

using Zanthe::MediaTime;

namespace {

// Far more than the clips need and far less than a length field can claim.
constexpr long MostKilobytes = 2L * 1024 * 1024;

long PeakKilobytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

// Opens a file and asks here and there.
void AskAbout(const std::string& path) {
    try {
        PictureAsker asker(path);
        if (!asker) {
            return;
        }
        for (const MediaTime time : {MediaTime(0), MediaTime(2), MediaTime(1, 3), MediaTime(4),
                                     MediaTime(1, 24), MediaTime(100000)}) {
            asker.At(time);
        }
    } catch (const std::runtime_error&) { // NOLINT(bugprone-empty-catch): an answer, too
    } catch (const char*) {               // as the DirectShow side throws its texts
    }
    EXPECT_LT(PeakKilobytes(), MostKilobytes) << path;
}

std::string ExtensionOf(const std::string& name) {
    return name.substr(name.rfind('.'));
}

class DamagedClip : public testing::TestWithParam<const char*> {
protected:
    std::string Damaged(const std::string& bytes) const {
        return m_folder.Write("damaged" + ExtensionOf(GetParam()), bytes);
    }

    const TemporaryFolder m_folder;
    const std::string m_whole = ReadWholeFile(MadeMedia(std::string("h264/") + GetParam()));
};

TEST_P(DamagedClip, CutAnywhere) {
    for (std::size_t bytes = 0; bytes < m_whole.size(); bytes += 16 + m_whole.size() / 25) {
        SCOPED_TRACE(bytes);
        AskAbout(Damaged(m_whole.substr(0, bytes)));
    }
}

TEST_P(DamagedClip, FlippedAnywhere) {
    std::mt19937 random(11);
    for (int round = 0; round < 25; ++round) {
        SCOPED_TRACE(round);
        std::string bytes = m_whole;
        for (int flips = 0; flips < 1 + round; ++flips) {
            bytes[random() % bytes.size()] = static_cast<char>(random());
        }
        AskAbout(Damaged(bytes));
    }
}

// The index is a small part of a file and the one that matters most.
TEST_P(DamagedClip, FlippedInItsIndex) {
    const std::size_t index = m_whole.find("moov");
    ASSERT_NE(index, std::string::npos);
    const std::size_t size = std::min<std::size_t>(2000, m_whole.size() - index);
    std::mt19937 random(12);
    for (int round = 0; round < 40; ++round) {
        SCOPED_TRACE(round);
        std::string bytes = m_whole;
        for (int flips = 0; flips < 1 + round / 4; ++flips) {
            bytes[index + random() % size] = static_cast<char>(random() % 3 == 0 ? 0xff : random());
        }
        AskAbout(Damaged(bytes));
    }
}

INSTANTIATE_TEST_SUITE_P(All, DamagedClip,
                         testing::Values("plain.mp4", "index-first.mp4", "fragmented.mp4",
                                         "edit-into-group.mov", "hevc-open-groups.mp4",
                                         "mpeg4-bframes.mp4", "text-track.mov"));

// Where the packet of picture `number`, counted in order of decoding, begins and how long it is.
struct Place {
    long long position = 0;
    long long size = 0;
};

Place PlaceOf(const std::string& path, int number) {
    const std::string command =
        "ffprobe -v error -select_streams v:0 -show_entries packet=pos,size -of csv=p=0 '" + path +
        "'";
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
    Place place;
    for (int i = 0; i <= number; ++i) {
        // ffprobe keeps its own order of the two.
        if (std::fscanf(pipe.get(), "%lld,%lld\n", &place.size, &place.position) != 2) {
            throw std::runtime_error("no such packet");
        }
    }
    return place;
}

// Groups begin at 0, 24, 48 and 72; the damage lies in the second one.
class HoleInAGroup : public testing::TestWithParam<const char*> {};

TEST_P(HoleInAGroup, TheOthersAreShownExactly) {
    const std::string original = MadeMedia(std::string("h264/") + GetParam());
    std::string bytes = ReadWholeFile(original);
    const Place place = PlaceOf(original, 26);
    for (long long i = place.size / 3; i < place.size; ++i) {
        bytes[static_cast<std::size_t>(place.position + i)] ^= static_cast<char>(0x5a);
    }
    const TemporaryFolder folder;
    const std::string damaged = folder.Write("hole" + ExtensionOf(GetParam()), bytes);
    const ReferencePictures reference(original);
    auto questions = QuestionsAbout(reference, 400, 9);
    PictureAsker asker(damaged);
    ASSERT_TRUE(asker);
    int wrong = 0;
    for (const Question& question : questions) {
        const auto picture = asker.At(question.time);
        if (question.picture < 24 || question.picture >= 48) {
            const auto result = IsPicture(picture, reference, question.picture);
            wrong += result ? 0 : 1;
            EXPECT_TRUE(wrong > 4 || result) << "picture " << question.picture;
        }
    }
    EXPECT_EQ(wrong, 0);
}

INSTANTIATE_TEST_SUITE_P(All, HoleInAGroup,
                         testing::Values("plain.mp4", "fragmented.mp4", "hevc-plain.mp4",
                                         "mpeg4-bframes.mp4"));

TEST(DamagedFiles, RealOnesOfAllKinds) {
    for (const auto& file : RealMedia("damaged")) {
        SCOPED_TRACE(file.string());
        const std::string extension = file.extension().string();
        if (extension == ".mp4" || extension == ".mov") {
            AskAbout(file.string());
        }
    }
}

// Whatever they are, under a name that sends them to the H.264 reader.
TEST(DamagedFiles, RealOnesUnderAnotherName) {
    const TemporaryFolder folder;
    for (const auto& file : RealMedia("damaged")) {
        SCOPED_TRACE(file.string());
        const auto link = folder.Path() / "other.mp4";
        std::filesystem::remove(link);
        std::filesystem::create_symlink(std::filesystem::absolute(file), link);
        AskAbout(link.string());
    }
}

} // namespace
