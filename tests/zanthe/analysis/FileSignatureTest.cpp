#include "zanthe/analysis/FileSignature.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <string>
#include <string_view>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "platform/dshow/Uuids.h"
#include "platform/win32/Text.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestMedia.h"

namespace {

using namespace std::string_literals;

GUID Detect(const std::string& path) {
    return DetectMediaSubtype(win32::Utf8ToWide(path));
}

GUID DetectBytes(const std::string& name, const std::string& bytes) {
    const TemporaryFolder folder;
    return Detect(folder.Write(name, bytes));
}

GUID Subtype(std::uint32_t first) {
    return {first, 0x524F, 0x11CE, {0x9F, 0x53, 0x00, 0x20, 0xAF, 0x0B, 0xA7, 0x70}};
}

// The first entry of `table` that fits `bytes`; -1 for none.
std::ptrdiff_t Find(const std::string& bytes, const std::vector<FileSignatureEntry>& table) {
    const auto read = [&](std::int64_t offset, std::uint32_t length, std::uint8_t* target) {
        const auto size = static_cast<std::int64_t>(bytes.size());
        const std::int64_t start = offset < 0 ? size + offset : offset;
        if (start < 0 || start > size || size - start < length) {
            return false;
        }
        std::memcpy(target, bytes.data() + start, length);
        return true;
    };
    const FileSignatureEntry* entry = FindSignature(read, table);
    return entry != nullptr ? entry - table.data() : -1;
}

const std::string SystemStart = "\x00\x00\x01\xBA\x21\x00\x01\x00\x01\x80\x00\x01\x00\x00\x01\xBB"s;

std::string VideoCdStart() {
    std::string bytes = "RIFF????CDXAfmt "s + std::string(20, '?');
    bytes += "data????\x00\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\x00"s;
    return bytes;
}

// offset, length, mask, value
std::string Text(const FileSignatureCheck& check) {
    const auto hex = [](const std::vector<std::uint8_t>& bytes) {
        std::string text;
        for (const std::uint8_t byte : bytes) {
            text += "0123456789ABCDEF"[byte >> 4];
            text += "0123456789ABCDEF"[byte & 15];
        }
        return text;
    };
    return std::to_string(check.offset) + " " + std::to_string(check.length) + " " +
           hex(check.mask) + " " + hex(check.value);
}

TEST(FileSignatureTable, IsAsItIs) {
    const std::vector<std::pair<GUID, std::vector<std::string>>> expected{
        {Subtype(0xE436EB88), {"0 4 FFFFFFFF 52494646", "8 4 FFFFFFFF 41564920"}},
        {Subtype(0xE436EB87), {"0 2 FFE0 FFE0"}},
        {Subtype(0xE436EB87), {"0 10 FFFFFFFF000000000000 49443303008080808000"}},
        {Subtype(0xE436EB8B), {"0 4 FFFFFFFF 52494646", "8 4 FFFFFFFF 57415645"}},
        {Subtype(0xE436EB86), {"0 4 FFFFFFFF 000001B3"}},
        {Subtype(0xE436EB84),
         {"0 16 FFFFFFFFF100010001800001FFFFFFFF 000001BA2100010001800001000001BB"}},
        {Subtype(0xE436EB85),
         {"0 4 FFFFFFFF 52494646", "8 8 FFFFFFFFFFFFFFFF 43445841666D7420",
          "36 20 FFFFFFFF00000000FFFFFFFFFFFFFFFFFFFFFFFF "
          "646174610000000000FFFFFFFFFFFFFFFFFFFF00"}},
    };
    ASSERT_EQ(FileSignatureTable.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(FileSignatureTable[i].subtype, expected[i].first) << i;
        std::vector<std::string> checks;
        for (const FileSignatureCheck& check : FileSignatureTable[i].checks) {
            checks.push_back(Text(check));
        }
        EXPECT_EQ(checks, expected[i].second) << i;
    }
}

TEST(FindSignature, EveryEntryThatCanHold) {
    EXPECT_EQ(Find("RIFF????AVI ", FileSignatureTable), 0);
    EXPECT_EQ(Find("\xFF\xFB", FileSignatureTable), 1);
    EXPECT_EQ(Find("\xFF\xE0", FileSignatureTable), 1);
    EXPECT_EQ(Find("RIFF????WAVE", FileSignatureTable), 3);
    EXPECT_EQ(Find("\x00\x00\x01\xB3"s, FileSignatureTable), 4);
    EXPECT_EQ(Find(SystemStart, FileSignatureTable), 5);
    EXPECT_EQ(Find(VideoCdStart(), FileSignatureTable), 6);
}

TEST(FindSignature, TheEntryForAnId3TagNeverHolds) {
    EXPECT_EQ(Find("ID3\x03\x00\x80\x80\x80\x80\x00"s, FileSignatureTable), -1);
    EXPECT_EQ(Find("ID3\x03\x00\x00\x00\x00\x00\x00"s, FileSignatureTable), -1);
}

TEST(FindSignature, MaskedBitsAreFree) {
    std::string bytes = SystemStart;
    bytes[4] = '\x2F';
    bytes[5] = bytes[7] = '\xFF';
    EXPECT_EQ(Find(bytes, FileSignatureTable), 5);
    bytes[4] = '\x31';
    EXPECT_EQ(Find(bytes, FileSignatureTable), -1);
}

TEST(FindSignature, OneByteShortIsNoMatch) {
    for (const std::string& whole : {"RIFF????AVI "s, "\xFF\xFB"s, "RIFF????WAVE"s,
                                     "\x00\x00\x01\xB3"s, SystemStart, VideoCdStart()}) {
        EXPECT_EQ(Find(whole.substr(0, whole.size() - 1), FileSignatureTable), -1);
    }
    EXPECT_EQ(Find("", FileSignatureTable), -1);
}

TEST(FindSignature, FirstEntryWins) {
    const std::vector<FileSignatureEntry> table{
        {GUID_NULL, {{0, 1, {0xFF}, {'x'}}}},
        {GUID_NULL, {{0, 1, {0xFF}, {'a'}}, {1, 1, {0xFF}, {'b'}}}},
        {GUID_NULL, {{0, 1, {0xFF}, {'a'}}}},
    };
    EXPECT_EQ(Find("ab", table), 1);
    EXPECT_EQ(Find("ac", table), 2);
    EXPECT_EQ(Find("xb", table), 0);
}

TEST(FindSignature, ANegativeOffsetCountsFromTheEnd) {
    const std::vector<FileSignatureEntry> table{{GUID_NULL, {{-2, 2, {0xFF, 0xFF}, {'y', 'z'}}}}};
    EXPECT_EQ(Find("yz", table), 0);
    EXPECT_EQ(Find("....yz", table), 0);
    EXPECT_EQ(Find("yz.", table), -1);
    EXPECT_EQ(Find("z", table), -1);
}

TEST(FindSignature, LengthsMustAgreeAndFitTheBuffer) {
    const std::string bytes(600, 'a');
    const auto check = [&](std::uint32_t length, std::size_t mask, std::size_t value) {
        return Find(bytes, {{GUID_NULL,
                             {{0, length, std::vector<std::uint8_t>(mask, 0xFF),
                               std::vector<std::uint8_t>(value, 'a')}}}});
    };
    EXPECT_EQ(check(256, 256, 256), 0);
    EXPECT_EQ(check(257, 257, 257), -1);
    EXPECT_EQ(check(4, 3, 4), -1);
    EXPECT_EQ(check(4, 4, 5), -1);
    EXPECT_EQ(check(0xFFFFFFFF, 0, 0), -1);
}

TEST(DetectMediaSubtype, TooShortForASignatureGoesByItsExtension) {
    EXPECT_EQ(DetectBytes("a.wav", "RIF"), MEDIASUBTYPE_WAVE);
    EXPECT_EQ(DetectBytes("a.avi", ""), MEDIASUBTYPE_Avi);
}

TEST(DetectMediaSubtype, TheSignatureWinsOverTheExtension) {
    EXPECT_EQ(DetectBytes("a.mp3", "RIFF\x24\x00\x00\x00WAVEfmt "s), MEDIASUBTYPE_WAVE);
    EXPECT_EQ(DetectBytes("a.wav", "RIFF\x24\x00\x00\x00"s + "AVI LIST"), MEDIASUBTYPE_Avi);
}

TEST(DetectMediaSubtype, AnId3TagIsNoSignature) {
    const std::string tagged = ReadWholeFile(MadeMedia("classify/tone-id3.mp3"));
    ASSERT_EQ(tagged.substr(0, 3), "ID3");
    EXPECT_EQ(DetectBytes("a.bin", tagged), MEDIASUBTYPE_None);
    EXPECT_EQ(DetectBytes("a.mp3", tagged), MEDIASUBTYPE_MPEG1Audio);
}

TEST(DetectMediaSubtype, ABareFrameOfMpegAudioUnderAnyName) {
    const std::string bare = ReadWholeFile(MadeMedia("classify/tone-bare.mp3"));
    ASSERT_EQ(bare.substr(0, 2), "\xFF\xFB");
    for (const char* name : {"a.mp3", "a.bin", "a.avi", "a"}) {
        EXPECT_EQ(DetectBytes(name, bare), MEDIASUBTYPE_MPEG1Audio) << name;
    }
}

TEST(DetectMediaSubtype, MadeFilesWithoutAName) {
    const auto detect = [](std::string_view name) {
        return DetectBytes("unnamed", ReadWholeFile(MadeMedia(name)));
    };
    EXPECT_EQ(detect("classify/picture.avi"), MEDIASUBTYPE_Avi);
    EXPECT_EQ(detect("classify/tone.wav"), MEDIASUBTYPE_WAVE);
    EXPECT_EQ(detect("classify/picture.m1v"), MEDIASUBTYPE_MPEG1Video);
    EXPECT_EQ(detect("classify/system.mpg"), MEDIASUBTYPE_MPEG1System);
    EXPECT_EQ(detect("classify/h264.mov"), MEDIASUBTYPE_None);
}

TEST(DetectMediaSubtype, EveryExtensionOfTheRule) {
    const std::pair<const char*, GUID> cases[] = {
        {"a.avi", MEDIASUBTYPE_Avi},          {"a.AVI", MEDIASUBTYPE_Avi},
        {"a.mp3", MEDIASUBTYPE_MPEG1Audio},   {"a.Mp3", MEDIASUBTYPE_MPEG1Audio},
        {"a.wav", MEDIASUBTYPE_WAVE},         {"a.mpg", MEDIASUBTYPE_MPEG1System},
        {"a.mpeg", MEDIASUBTYPE_MPEG1System}, {"a.MPEG", MEDIASUBTYPE_MPEG1System},
        {"a.mp4", MEDIASUBTYPE_None},         {"a.mov", MEDIASUBTYPE_None},
        {"a.wmv", MEDIASUBTYPE_None},         {"a.mts", MEDIASUBTYPE_None},
        {"a.avi.x", MEDIASUBTYPE_None},       {"a", MEDIASUBTYPE_None},
        {"a.orirec", MEDIASUBTYPE_None},      {"a.wave", MEDIASUBTYPE_None},
    };
    for (const auto& [name, subtype] : cases) {
        EXPECT_EQ(DetectBytes(name, "unknown bytes"), subtype) << name;
    }
}

TEST(DetectMediaSubtype, APathWithoutADotIsComparedWhole) {
    const TemporaryFolder folder;
    folder.Write("avi", "unknown bytes");
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(folder.Path());
    EXPECT_EQ(Detect("avi"), MEDIASUBTYPE_Avi);
    std::filesystem::current_path(before);
}

TEST(DetectMediaSubtype, ARecordingIsNotOpened) {
    EXPECT_EQ(DetectBytes("a.brec", "RIFF????WAVE"), MEDIASUBTYPE_None);
    EXPECT_EQ(DetectBytes("a.BREC", "RIFF????WAVE"), MEDIASUBTYPE_None);
    EXPECT_EQ(DetectBytes("a.brec!audio0.mp4", "RIFF????WAVE"), MEDIASUBTYPE_None);
    EXPECT_EQ(DetectBytes("a.brec!other.mp4", "RIFF????WAVE"), MEDIASUBTYPE_WAVE);
}

TEST(DetectMediaSubtype, WhatCannotBeOpenedHasNone) {
    const TemporaryFolder folder;
    EXPECT_EQ(Detect(folder / "none.avi"), MEDIASUBTYPE_None);
    EXPECT_EQ(Detect(""), MEDIASUBTYPE_None);
    std::filesystem::create_directory(folder.Path() / "folder.avi");
    EXPECT_EQ(Detect(folder / "folder.avi"), MEDIASUBTYPE_None);
    const std::string pipe = folder / "pipe.avi";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(Detect(pipe), MEDIASUBTYPE_None);
}

TEST(DetectMediaSubtype, OpensAPathWithBackslashes) {
    const TemporaryFolder folder;
    std::string path = folder.Write("a.bin", "RIFF????WAVE");
    std::replace(path.begin(), path.end(), '/', '\\');
    EXPECT_EQ(Detect(path), MEDIASUBTYPE_WAVE);
}

// What a file of the folder is, as all of them are.
void ExpectAll(std::string_view folder, const GUID& subtype) {
    const auto files = RealMedia(folder);
    if (files.empty()) {
        GTEST_SKIP() << "no real media beside the checkout";
    }
    for (const auto& file : files) {
        EXPECT_EQ(Detect(file.string()), subtype) << file;
    }
}

TEST(DetectMediaSubtype, RealAvi) {
    ExpectAll("avi", MEDIASUBTYPE_Avi);
}

TEST(DetectMediaSubtype, RealWav) {
    ExpectAll("wav", MEDIASUBTYPE_WAVE);
}

TEST(DetectMediaSubtype, RealWindowsMedia) {
    ExpectAll("asf", MEDIASUBTYPE_None);
}

TEST(DetectMediaSubtype, RealMp4) {
    ExpectAll("mp4", MEDIASUBTYPE_None);
}

TEST(DetectMediaSubtype, RealMpeg) {
    const auto files = RealMedia("mpeg");
    if (files.empty()) {
        GTEST_SKIP() << "no real media beside the checkout";
    }
    std::size_t bareVideo = 0;
    for (const auto& file : files) {
        const bool named = file.extension() == ".mpg" || file.extension() == ".mpeg";
        const bool video = ReadWholeFile(file).substr(0, 4) == "\x00\x00\x01\xB3"s;
        const GUID& byName = named ? MEDIASUBTYPE_MPEG1System : MEDIASUBTYPE_None;
        EXPECT_EQ(Detect(file.string()), video ? MEDIASUBTYPE_MPEG1Video : byName) << file;
        bareVideo += video ? 1 : 0;
    }
    EXPECT_EQ(bareVideo, 2U);
}

TEST(DetectMediaSubtype, RealSignaturesUnderAnotherName) {
    const TemporaryFolder folder;
    for (const auto& [name, subtype] :
         {std::pair("avi", MEDIASUBTYPE_Avi), std::pair("wav", MEDIASUBTYPE_WAVE)}) {
        for (const auto& file : RealMedia(name)) {
            const std::string start = ReadWholeFile(file).substr(0, 64);
            const bool riff = start.substr(0, 4) == "RIFF";
            EXPECT_EQ(Detect(folder.Write("renamed", start)), riff ? subtype : MEDIASUBTYPE_None)
                << file;
        }
    }
}

// A file that fits each entry up to its last check costs the most.
TEST(FileSignature, AtMostElevenReadsDecide) {
    std::vector<const FileSignatureCheck*> lastChecks;
    for (const FileSignatureEntry& entry : FileSignatureTable) {
        lastChecks.push_back(&entry.checks.back());
    }
    std::vector<const FileSignatureCheck*> order;
    for (const FileSignatureEntry& entry : FileSignatureTable) {
        for (const FileSignatureCheck& check : entry.checks) {
            order.push_back(&check);
        }
    }
    std::size_t reads = 0;
    const auto read = [&](std::int64_t offset, std::uint32_t length, std::uint8_t* bytes) {
        const FileSignatureCheck& check = *order.at(reads++);
        EXPECT_EQ(offset, check.offset);
        EXPECT_EQ(length, check.length);
        std::copy(check.value.begin(), check.value.end(), bytes);
        return std::find(lastChecks.begin(), lastChecks.end(), &check) == lastChecks.end();
    };
    EXPECT_EQ(FindSignature(read, FileSignatureTable), nullptr);
    EXPECT_EQ(reads, 11U);
}

} // namespace
