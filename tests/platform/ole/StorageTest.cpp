#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/com/ComPtr.h"
#include "platform/com/StorageResult.h"
#include "platform/com/TaskMemory.h"
#include "platform/ole/Storage.h"
#include "platform/win32/Text.h"
#include "tests/support/CompoundFile.h"
#include "tests/support/SlotOf.h"
#include "tests/support/TemporaryFolder.h"

namespace {

com::ComPtr<IStorage> Open(const std::string& path) {
    com::ComPtr<IStorage> storage;
    StgOpenStorage(win32::Utf8ToWide(path).c_str(), nullptr, STGM_SHARE_DENY_WRITE, nullptr, 0,
                   storage.Put());
    return storage;
}

HRESULT ResultOfOpening(const std::string& path, DWORD mode = STGM_SHARE_DENY_WRITE) {
    com::ComPtr<IStorage> storage;
    const HRESULT result =
        StgOpenStorage(win32::Utf8ToWide(path).c_str(), nullptr, mode, nullptr, 0, storage.Put());
    EXPECT_EQ(storage.Get() == nullptr, FAILED(result));
    return result;
}

com::ComPtr<IStream> OpenStream(IStorage& storage, const wchar_t* name) {
    com::ComPtr<IStream> stream;
    storage.OpenStream(name, nullptr, STGM_SHARE_EXCLUSIVE, 0, stream.Put());
    return stream;
}

std::string ReadWhole(IStream& stream) {
    STATSTG facts{};
    EXPECT_EQ(stream.Stat(&facts, STATFLAG_NONAME), S_OK);
    std::string bytes(facts.cbSize.QuadPart, '?');
    ULONG read = 0;
    EXPECT_EQ(stream.Read(bytes.data(), static_cast<ULONG>(bytes.size()), &read), S_OK);
    EXPECT_EQ(read, bytes.size());
    return bytes;
}

HRESULT SeekTo(IStream& stream, std::int64_t distance, DWORD origin, std::uint64_t* place) {
    LARGE_INTEGER move{};
    move.QuadPart = distance;
    ULARGE_INTEGER now{};
    const HRESULT result = stream.Seek(move, origin, &now);
    *place = now.QuadPart;
    return result;
}

std::string Pattern(std::size_t size) {
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < size; ++i) {
        bytes[i] = static_cast<char>(i * 31 + i / 251);
    }
    return bytes;
}

class Storage : public testing::Test {
protected:
    // A small stream lies in sectors of 64 bytes, a large one in its own.
    Storage() {
        WriteCompoundFile(
            path, {{"Small.wav", small}, {"Large.avi", large}, {"folder/Inner.dat", "inner"}});
    }

    TemporaryFolder folder;
    std::string path = folder / "a.orirec";
    std::string small = Pattern(1'000);
    std::string large = Pattern(300'001);
};

TEST_F(Storage, StreamsAreReadWhole) {
    const auto storage = Open(path);
    ASSERT_TRUE(storage);
    EXPECT_EQ(ReadWhole(*OpenStream(*storage, L"Small.wav")), small);
    EXPECT_EQ(ReadWhole(*OpenStream(*storage, L"Large.avi")), large);
    EXPECT_EQ(ReadWhole(*OpenStream(*storage, L"LARGE.AVI")), large);
}

TEST_F(Storage, StreamsAreReadAnywhere) {
    const auto storage = Open(path);
    const auto stream = OpenStream(*storage, L"Large.avi");
    std::uint64_t place = 0;
    for (const std::size_t from : {299'990UL, 511UL, 512UL, 0UL, 150'000UL}) {
        EXPECT_EQ(SeekTo(*stream, static_cast<std::int64_t>(from), STREAM_SEEK_SET, &place), S_OK);
        std::string bytes(1'500, '?');
        ULONG read = 0;
        const HRESULT result = stream->Read(bytes.data(), 1'500, &read);
        EXPECT_EQ(result, read == 1'500 ? S_OK : S_FALSE);
        EXPECT_EQ(bytes.substr(0, read), large.substr(from, 1'500));
    }
    EXPECT_EQ(SeekTo(*stream, -1, STREAM_SEEK_END, &place), S_OK);
    EXPECT_EQ(place, 300'000U);
    EXPECT_EQ(SeekTo(*stream, 10, STREAM_SEEK_CUR, &place), S_OK);
    EXPECT_EQ(place, 300'010U);
    char byte = 0;
    ULONG read = 1;
    EXPECT_EQ(stream->Read(&byte, 1, &read), S_FALSE);
    EXPECT_EQ(read, 0U);
    EXPECT_LT(SeekTo(*stream, -1, STREAM_SEEK_SET, &place), 0);
    EXPECT_LT(SeekTo(*stream, 0, 3, &place), 0);
}

TEST_F(Storage, TwoStreamsAndACloneHavePositionsOfTheirOwn) {
    const auto storage = Open(path);
    const auto one = OpenStream(*storage, L"Large.avi");
    const auto other = OpenStream(*storage, L"Small.wav");
    com::ComPtr<IStream> clone;
    ASSERT_EQ(one->Clone(clone.Put()), S_OK);
    std::string a(700, '?'), b(700, '?'), c(700, '?');
    one->Read(a.data(), 700, nullptr);
    other->Read(b.data(), 700, nullptr);
    clone->Read(c.data(), 700, nullptr);
    EXPECT_EQ(a, large.substr(0, 700));
    EXPECT_EQ(b, small.substr(0, 700));
    EXPECT_EQ(c, a);
    one->Read(a.data(), 700, nullptr);
    EXPECT_EQ(a, large.substr(700, 700));
}

TEST_F(Storage, AStreamOutlivesItsStorage) {
    const auto stream = OpenStream(*Open(path), L"Large.avi");
    EXPECT_EQ(ReadWhole(*stream), large);
}

TEST_F(Storage, ElementsAreTold) {
    const auto storage = Open(path);
    com::ComPtr<IEnumSTATSTG> elements;
    ASSERT_EQ(storage->EnumElements(0, nullptr, 0, elements.Put()), S_OK);
    std::vector<std::wstring> told;
    STATSTG facts{};
    while (elements->Next(1, &facts, nullptr) == S_OK) {
        told.push_back(facts.pwcsName);
        told.back() +=
            L' ' + std::to_wstring(facts.type) + L' ' + std::to_wstring(facts.cbSize.QuadPart);
        CoTaskMemFree(facts.pwcsName);
    }
    std::sort(told.begin(), told.end());
    EXPECT_EQ(told, (std::vector<std::wstring>{L"Large.avi 2 300001", L"Small.wav 2 1000",
                                               L"folder 1 0"}));
    EXPECT_EQ(elements->Reset(), S_OK);
    EXPECT_EQ(elements->Skip(2), S_OK);
    EXPECT_EQ(elements->Skip(2), S_FALSE);
}

TEST_F(Storage, ElementsAreToldSeveralAtATime) {
    const auto storage = Open(path);
    com::ComPtr<IEnumSTATSTG> elements;
    ASSERT_EQ(storage->EnumElements(0, nullptr, 0, elements.Put()), S_OK);
    std::vector<STATSTG> facts(5);
    EXPECT_EQ(elements->Next(2, facts.data(), nullptr), STG_E_INVALIDPOINTER);
    EXPECT_EQ(elements->Next(1, nullptr, nullptr), STG_E_INVALIDPOINTER);
    ULONG fetched = 7;
    EXPECT_EQ(elements->Next(2, facts.data(), &fetched), S_OK);
    EXPECT_EQ(fetched, 2U);
    com::ComPtr<IEnumSTATSTG> clone;
    ASSERT_EQ(elements->Clone(clone.Put()), S_OK);
    EXPECT_EQ(elements->Next(3, facts.data() + 2, &fetched), S_FALSE);
    EXPECT_EQ(fetched, 1U);
    EXPECT_EQ(clone->Next(1, facts.data() + 3, nullptr), S_OK); // at the place of the first
    EXPECT_EQ(clone->Next(1, facts.data() + 4, nullptr), S_FALSE);
    EXPECT_STREQ(facts[2].pwcsName, facts[3].pwcsName);
    for (std::size_t i = 0; i < 4; ++i) {
        CoTaskMemFree(facts[i].pwcsName);
    }
}

TEST_F(Storage, AStreamTellsItsOwnName) {
    const auto storage = Open(path);
    const auto stream = OpenStream(*storage, L"LARGE.avi");
    STATSTG facts{};
    ASSERT_EQ(stream->Stat(&facts, STATFLAG_DEFAULT), S_OK);
    const com::TaskText name(facts.pwcsName);
    EXPECT_STREQ(name.get(), L"Large.avi");
    EXPECT_EQ(facts.type, static_cast<DWORD>(STGTY_STREAM));
    com::ComPtr<IStorage> inner;
    ASSERT_EQ(storage->OpenStorage(L"FOLDER", nullptr, 0, nullptr, 0, inner.Put()), S_OK);
    ASSERT_EQ(inner->Stat(&facts, STATFLAG_DEFAULT), S_OK);
    const com::TaskText innerName(facts.pwcsName);
    EXPECT_STREQ(innerName.get(), L"folder");
    EXPECT_EQ(facts.type, static_cast<DWORD>(STGTY_STORAGE));
    ASSERT_EQ(inner->Stat(&facts, STATFLAG_NONAME), S_OK);
    EXPECT_EQ(facts.pwcsName, nullptr);
}

TEST_F(Storage, NothingIsWritten) {
    const auto storage = Open(path);
    com::ComPtr<IStream> stream;
    com::ComPtr<IStorage> inner;
    EXPECT_EQ(storage->CreateStream(L"New", 0, 0, 0, stream.Put()), STG_E_ACCESSDENIED);
    EXPECT_EQ(storage->CreateStorage(L"New", 0, 0, 0, inner.Put()), STG_E_ACCESSDENIED);
    EXPECT_EQ(storage->DestroyElement(L"Small.wav"), STG_E_ACCESSDENIED);
    EXPECT_EQ(storage->RenameElement(L"Small.wav", L"New"), STG_E_ACCESSDENIED);
    EXPECT_EQ(OpenStream(*storage, L"Small.wav")->Write("x", 1, nullptr), STG_E_ACCESSDENIED);
}

TEST_F(Storage, InnerStoragesOpen) {
    const auto storage = Open(path);
    com::ComPtr<IStorage> inner;
    ASSERT_EQ(storage->OpenStorage(L"folder", nullptr, 0, nullptr, 0, inner.Put()), S_OK);
    EXPECT_EQ(ReadWhole(*OpenStream(*inner, L"Inner.dat")), "inner");
}

TEST_F(Storage, WhatIsNotThereIsNotOpened) {
    const auto storage = Open(path);
    com::ComPtr<IStream> stream;
    com::ComPtr<IStorage> inner;
    EXPECT_EQ(storage->OpenStream(L"None", nullptr, 0, 0, stream.Put()), STG_E_FILENOTFOUND);
    EXPECT_EQ(storage->OpenStream(L"folder", nullptr, 0, 0, stream.Put()), STG_E_FILENOTFOUND);
    EXPECT_EQ(storage->OpenStream(L"Inner.dat", nullptr, 0, 0, stream.Put()), STG_E_FILENOTFOUND);
    EXPECT_EQ(storage->OpenStorage(L"Large.avi", nullptr, 0, nullptr, 0, inner.Put()),
              STG_E_FILENOTFOUND);
    EXPECT_EQ(storage->OpenStream(L"Large.avi", nullptr, STGM_READWRITE, 0, stream.Put()),
              STG_E_ACCESSDENIED);
    EXPECT_FALSE(stream);
    EXPECT_FALSE(inner);
}

TEST_F(Storage, AFileIsToldFromACompoundFile) {
    EXPECT_EQ(StgIsStorageFile(win32::Utf8ToWide(path).c_str()), S_OK);
    const std::string text = folder.Write("text", "no compound file");
    EXPECT_EQ(StgIsStorageFile(win32::Utf8ToWide(text).c_str()), S_FALSE);
    EXPECT_EQ(ResultOfOpening(text), STG_E_FILEALREADYEXISTS);
    EXPECT_EQ(ResultOfOpening(folder.Write("empty", "")), STG_E_FILEALREADYEXISTS);
    EXPECT_EQ(ResultOfOpening(folder / "none"), STG_E_FILENOTFOUND);
    EXPECT_EQ(ResultOfOpening(folder.Path().string()), STG_E_FILENOTFOUND);
    EXPECT_EQ(StgIsStorageFile(L"/dev/zero"), STG_E_FILENOTFOUND);
    EXPECT_EQ(ResultOfOpening(path, STGM_READWRITE), STG_E_ACCESSDENIED);
}

TEST_F(Storage, StgOpenStorageExOpensTheSame) {
    com::ComPtr<IStorage> storage;
    const std::wstring wide = win32::Utf8ToWide(path);
    EXPECT_EQ(StgOpenStorageEx(wide.c_str(), STGM_TRANSACTED | STGM_NOSNAPSHOT, STGFMT_ANY, 0,
                               nullptr, nullptr, IID_IStorage, storage.PutVoid()),
              S_OK);
    EXPECT_EQ(ReadWhole(*OpenStream(*storage, L"Small.wav")), small);
    EXPECT_EQ(StgOpenStorageEx(wide.c_str(), 0, STGFMT_ANY, 0, nullptr, nullptr, IID_IStream,
                               storage.PutVoid()),
              E_NOINTERFACE);
}

TEST_F(Storage, ACutFileFailsOrGivesWhatItHolds) {
    const std::string whole = ReadWholeFile(path);
    for (std::size_t size = 0; size < whole.size(); size += size < 1'600 ? 1 : 4'099) {
        const auto storage = Open(folder.Write("cut", whole.substr(0, size)));
        if (!storage) {
            continue;
        }
        for (const wchar_t* name : {L"Small.wav", L"Large.avi"}) {
            if (const auto stream = OpenStream(*storage, name)) {
                std::string bytes(300'001, '?');
                ULONG read = 0;
                stream->Read(bytes.data(), 300'001, &read);
                EXPECT_LE(read, 300'001U);
            }
        }
    }
}

std::string Patched(std::string bytes, std::size_t place, std::uint32_t value) {
    for (int i = 0; i < 4; ++i) {
        bytes[place + i] = static_cast<char>(value >> 8 * i);
    }
    return bytes;
}

std::uint32_t NumberAt(const std::string& bytes, std::size_t place) {
    std::uint32_t value = 0;
    std::memcpy(&value, bytes.data() + place, sizeof value);
    return value;
}

// Sectors of a gigabyte would be taken from the stack; a directory in a circle, or one as long as
// the file, would be walked by as many calls within each other.
TEST_F(Storage, HostileHeadersAreRefused) {
    const std::string whole = ReadWholeFile(path);
    for (const std::uint32_t shift : {0U, 5U, 20U, 30U, 31U, 0xFFFFU}) {
        EXPECT_EQ(ResultOfOpening(folder.Write("shift", Patched(whole, 30, shift | 6U << 16))),
                  STG_E_INVALIDHEADER);
    }
    const std::uint32_t directory = NumberAt(whole, 48);
    const std::uint32_t table = NumberAt(whole, 76);
    const std::size_t next = (table + 1ULL) * 512 + directory % 128 * 4ULL;
    ASSERT_LT(directory, 128U * 109);
    if (directory < 128) {
        EXPECT_EQ(ResultOfOpening(folder.Write("circle", Patched(whole, next, directory))),
                  STG_E_INVALIDHEADER);
    }
    EXPECT_EQ(ResultOfOpening(folder.Write("tables", Patched(whole, 44, 0xFFFFFFFF))),
              STG_E_INVALIDHEADER);
}

// Nothing stands beside the root. What a file says does would be read and never given back.
TEST_F(Storage, ARootWithNeighboursIsRefused) {
    const std::string whole = ReadWholeFile(path);
    const std::size_t root = (NumberAt(whole, 48) + 1ULL) * 512;
    for (const std::size_t link : {68, 72}) {
        ASSERT_EQ(NumberAt(whole, root + link), 0xFFFFFFFFU);
        for (const std::uint32_t beside : {1U, 2U, 3U}) {
            EXPECT_EQ(ResultOfOpening(folder.Write("beside", Patched(whole, root + link, beside))),
                      STG_E_INVALIDHEADER);
        }
        EXPECT_EQ(ResultOfOpening(folder.Write("itself", Patched(whole, root + link, 0))), S_OK);
    }
}

// Each link of each entry of the directory turned to each other entry, itself and the root among
// them: what is opened then may hold anything, but walking it ends.
TEST_F(Storage, EntriesThatLinkInCirclesEnd) {
    const std::string whole = ReadWholeFile(path);
    constexpr std::uint32_t EntryBytes = 128;
    const std::size_t directory = (NumberAt(whole, 48) + 1ULL) * 512;
    for (std::uint32_t entry = 0; entry < 4; ++entry) {
        for (const std::size_t link : {68, 72, 76}) { // before, behind, below
            for (const std::uint32_t target : {0U, 1U, 2U, 3U, 4U, 1000U, 0xFFFFFFFEU}) {
                const std::size_t place = directory + std::size_t{entry} * EntryBytes + link;
                const std::string file = folder.Write("links", Patched(whole, place, target));
                com::ComPtr<IStorage> storage;
                if (FAILED(StgOpenStorage(win32::Utf8ToWide(file).c_str(), nullptr,
                                          STGM_SHARE_DENY_WRITE, nullptr, 0, storage.Put()))) {
                    continue;
                }
                com::ComPtr<IEnumSTATSTG> elements;
                ASSERT_EQ(storage->EnumElements(0, nullptr, 0, elements.Put()), S_OK);
                STATSTG facts{};
                int count = 0;
                while (elements->Next(1, &facts, nullptr) == S_OK) {
                    CoTaskMemFree(facts.pwcsName);
                    ASSERT_LT(++count, 100);
                }
            }
        }
    }
}

TEST(StorageNames, ADirectoryInARowOfEntriesOpens) {
    const TemporaryFolder folder;
    std::vector<std::pair<std::string, std::string>> members;
    members.reserve(1'500);
    for (int i = 0; i < 1'500; ++i) {
        members.emplace_back("member" + std::to_string(i), "x");
    }
    WriteCompoundFile(folder / "many", members);
    EXPECT_TRUE(Open(folder / "many"));
    for (int i = 0; i < 1'500; ++i) {
        members.emplace_back("more" + std::to_string(i), "x");
    }
    WriteCompoundFile(folder / "too-many", members);
    EXPECT_EQ(ResultOfOpening(folder / "too-many"), STG_E_INVALIDHEADER);
}

#if defined(__x86_64__)

TEST(OperationOrder, Storages) {
    EXPECT_EQ(SlotOf(&IStorage::CreateStream), 3);
    EXPECT_EQ(SlotOf(&IStorage::OpenStream), 4);
    EXPECT_EQ(SlotOf(&IStorage::CreateStorage), 5);
    EXPECT_EQ(SlotOf(&IStorage::OpenStorage), 6);
    EXPECT_EQ(SlotOf(&IStorage::EnumElements), 11);
    EXPECT_EQ(SlotOf(&IStorage::Stat), 17);
    EXPECT_EQ(SlotOf(&IEnumSTATSTG::Next), 3);
    EXPECT_EQ(SlotOf(&IEnumSTATSTG::Skip), 4);
    EXPECT_EQ(SlotOf(&IEnumSTATSTG::Reset), 5);
    EXPECT_EQ(SlotOf(&IEnumSTATSTG::Clone), 6);
}

#endif

} // namespace
