#include <algorithm>

#include <gtest/gtest.h>

#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestMedia.h"
#include "tests/zanthe/analysis/Mp4Boxes.h"
#include "zanthe/audio/AudioMediaReaderFactory.h"

namespace Zanthe {
namespace {

bool HasAac(const std::string& path) {
    return AudioMediaReaderFactory::IsMP4WithAACAudio(path);
}

std::string Made(const std::string& name) {
    return MadeMedia("audio-select/" + name);
}

class AacInMp4 : public testing::Test {
protected:
    // `source` as it is, under another name.
    std::string Copy(const std::string& source, const std::string& name) const {
        return m_folder.Write(name, ReadWholeFile(Made(source)));
    }

    // The same with the four bytes at `offset` written over.
    std::string CopyWith(const std::string& source, const std::string& name, std::size_t offset,
                         const std::string& fourBytes) const {
        return m_folder.Write(name, ReadWholeFile(Made(source)).replace(offset, 4, fourBytes));
    }

    TemporaryFolder m_folder;
};

TEST_F(AacInMp4, AacIsFound) {
    EXPECT_TRUE(HasAac(Made("aac.mp4")));
    EXPECT_TRUE(HasAac(Made("aac-behind-picture.mp4")));
    EXPECT_TRUE(HasAac(Made("aac-fragmented.mp4")));
}

// Only the name of the sample description is asked for, not what it describes.
TEST_F(AacInMp4, AnyCodingUnderTheNameCounts) {
    EXPECT_TRUE(HasAac(Made("mp3-as-mp4a.mp4")));
}

TEST_F(AacInMp4, AnotherCodingIsNone) {
    EXPECT_FALSE(HasAac(Made("ac3.mp4")));
    EXPECT_FALSE(HasAac(CopyWith("mp3-as-mp3.mov", "a.mov", 16, "isom")));
}

TEST_F(AacInMp4, TheFirstTrackOfSoundDecides) {
    EXPECT_FALSE(HasAac(Made("ac3-then-aac.mp4")));
    EXPECT_TRUE(HasAac(Made("aac-then-ac3.mp4")));
}

TEST_F(AacInMp4, OnlyAHandlerOfSoundMakesATrackOfSound) {
    std::string bytes = ReadWholeFile(Made("aac.mp4"));
    bytes.replace(bytes.find("soun"), 4, "abcd");
    EXPECT_FALSE(HasAac(m_folder.Write("a.mp4", bytes)));
}

// A whole file with an index only, which is all that is looked at.
std::string SoundFile(const std::string& entries, std::uint32_t count) {
    boxes::TrackHeader header;
    header.volume = 0x100;
    const std::string description = boxes::SampleDescriptionBox(count, entries);
    const std::string table = boxes::Box("stbl", description + boxes::Box("stts", boxes::Zeros(8)) +
                                                     boxes::Box("stsc", boxes::Zeros(8)) +
                                                     boxes::Box("stsz", boxes::Zeros(12)) +
                                                     boxes::Box("stco", boxes::Zeros(8)));
    const std::string media =
        boxes::Box("mdhd", boxes::Zeros(12) + boxes::U32(44100) + boxes::Zeros(8)) +
        boxes::HandlerBox("soun") + boxes::Box("minf", table);
    return boxes::Movie(
        boxes::MovieHeaderBox(0, boxes::Upright) +
        boxes::Box("trak", boxes::TrackHeaderBox(header) + boxes::Box("mdia", media)));
}

std::string SoundEntry(const char* format) {
    return boxes::Box(format, boxes::Zeros(6) + boxes::U16(1) + boxes::Zeros(8) + boxes::U16(2) +
                                  boxes::U16(16) + boxes::Zeros(4) + boxes::U32(44100 << 16));
}

TEST_F(AacInMp4, AnySampleDescriptionOfTheTrackCounts) {
    const std::string ac3 = SoundEntry("ac-3");
    const std::string mp4a = SoundEntry("mp4a");
    EXPECT_TRUE(HasAac(m_folder.Write("a.mp4", SoundFile(mp4a, 1))));
    EXPECT_TRUE(HasAac(m_folder.Write("b.mp4", SoundFile(ac3 + mp4a, 2))));
    EXPECT_FALSE(HasAac(m_folder.Write("c.mp4", SoundFile(ac3 + ac3, 2))));
}

TEST_F(AacInMp4, WithoutSoundThereIsNone) {
    EXPECT_FALSE(HasAac(Made("no-sound.mp4")));
}

TEST_F(AacInMp4, AFirstCompatibleBrandOfQuickTimeIsRefused) {
    EXPECT_FALSE(HasAac(Made("aac.mov")));
    EXPECT_FALSE(HasAac(Copy("aac.mov", "a.mp4")));
    EXPECT_FALSE(HasAac(CopyWith("aac.mp4", "b.mov", 16, "qt  ")));
    EXPECT_TRUE(HasAac(CopyWith("aac.mp4", "c.mov", 16, "QT  ")));
}

TEST_F(AacInMp4, AMajorBrandOfQuickTimeIsNot) {
    ASSERT_EQ(ReadWholeFile(Made("aac.mov")).substr(8, 4), "qt  ");
    EXPECT_TRUE(HasAac(CopyWith("aac.mov", "a.mov", 16, "mp42")));
}

TEST_F(AacInMp4, TheNameMustEndInMp4OrMov) {
    EXPECT_TRUE(HasAac(Copy("aac.mp4", "A.MP4")));
    EXPECT_TRUE(HasAac(Copy("aac.mp4", "a.Mov")));
    EXPECT_FALSE(HasAac(Copy("aac.mp4", "a.m4a")));
    EXPECT_FALSE(HasAac(Copy("aac.mp4", "a.brec")));
    EXPECT_FALSE(HasAac(Copy("aac.mp4", "mp4")));
}

TEST_F(AacInMp4, AShortFileIsNone) {
    const std::string whole = ReadWholeFile(Made("aac.mp4"));
    for (const std::size_t length : {0, 1, 8, 19, 20, 27}) {
        EXPECT_FALSE(HasAac(m_folder.Write("short.mp4", whole.substr(0, length)))) << length;
    }
}

TEST_F(AacInMp4, WhatCannotBeReadIsNone) {
    EXPECT_FALSE(HasAac(m_folder / "none.mp4"));
    EXPECT_FALSE(HasAac(m_folder.Write("text.mp4", "neither boxes nor samples in here")));
    std::filesystem::create_directory(m_folder / "folder.mp4");
    EXPECT_FALSE(HasAac(m_folder / "folder.mp4"));
}

TEST_F(AacInMp4, APathWithBackslashes) {
    std::string path = Copy("aac.mp4", "a.mp4");
    std::replace(path.begin(), path.end(), '/', '\\');
    EXPECT_TRUE(HasAac(path));
    std::string refused = Copy("aac.mov", "a.mov");
    std::replace(refused.begin(), refused.end(), '/', '\\');
    EXPECT_FALSE(HasAac(refused));
}

} // namespace
} // namespace Zanthe
