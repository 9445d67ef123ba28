#include "platform/mf/Attributes.h"

#include <array>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "platform/com/Object.h"
#include "platform/mf/AttributeStore.h"
#include "platform/mf/Errors.h"
#include "platform/mf/MediaFormats.h"
#include "platform/mf/MediaType.h"
#include "platform/mf/Sample.h"

namespace {

constexpr GUID KeyA = CodedSubtype("keyA");
constexpr GUID KeyB = CodedSubtype("keyB");
constexpr std::array<UINT8, 3> Three = {1, 2, 3};

com::ComPtr<IMFAttributes> NewAttributes() {
    com::ComPtr<IMFAttributes> attributes;
    EXPECT_EQ(MFCreateAttributes(attributes.Put(), 3), S_OK);
    return attributes;
}

ULONG CountOf(IUnknown& object) {
    object.AddRef();
    return object.Release();
}

TEST(Attributes, KeepValuesOfEachType) {
    const auto attributes = NewAttributes();
    UINT32 small = 0;
    UINT64 large = 0;
    GUID guid{};
    EXPECT_EQ(attributes->SetUINT32(KeyA, 7), S_OK);
    EXPECT_EQ(attributes->GetUINT32(KeyA, &small), S_OK);
    EXPECT_EQ(small, 7U);
    EXPECT_EQ(attributes->SetUINT64(KeyA, 1ULL << 40), S_OK);
    EXPECT_EQ(attributes->GetUINT64(KeyA, &large), S_OK);
    EXPECT_EQ(large, 1ULL << 40);
    EXPECT_EQ(attributes->SetGUID(KeyB, KeyA), S_OK);
    EXPECT_EQ(attributes->GetGUID(KeyB, &guid), S_OK);
    EXPECT_EQ(guid, KeyA);
}

TEST(Attributes, SayWhatIsMissingOrOfAnotherType) {
    const auto attributes = NewAttributes();
    UINT32 small = 11;
    UINT64 large = 12;
    EXPECT_EQ(attributes->GetUINT32(KeyA, &small), MF_E_ATTRIBUTENOTFOUND);
    attributes->SetUINT32(KeyA, 7);
    EXPECT_EQ(attributes->GetUINT64(KeyA, &large), MF_E_INVALIDTYPE);
    EXPECT_EQ(attributes->GetUINT32(KeyA, nullptr), E_POINTER);
    EXPECT_EQ(small, 11U);
    EXPECT_EQ(large, 12U);
    EXPECT_EQ(MFGetAttributeUINT32(attributes.Get(), KeyB, 5), 5U);
    EXPECT_EQ(MFGetAttributeUINT32(attributes.Get(), KeyA, 5), 7U);
    EXPECT_EQ(MFGetAttributeUINT64(attributes.Get(), KeyA, 6), 6U);
}

TEST(Attributes, KeepBytes) {
    const auto attributes = NewAttributes();
    std::array<UINT8, 4> read{};
    UINT32 size = 0;
    EXPECT_EQ(attributes->GetBlobSize(KeyA, &size), MF_E_ATTRIBUTENOTFOUND);
    EXPECT_EQ(attributes->SetBlob(KeyA, Three.data(), 3), S_OK);
    EXPECT_EQ(attributes->GetBlobSize(KeyA, &size), S_OK);
    EXPECT_EQ(size, 3U);
    EXPECT_EQ(attributes->GetBlob(KeyA, read.data(), 2, &size), MF_E_BUFFERTOOSMALL);
    EXPECT_EQ(attributes->GetBlob(KeyA, read.data(), 4, nullptr), S_OK);
    EXPECT_EQ(read, (std::array<UINT8, 4>{1, 2, 3, 0}));
    EXPECT_EQ(attributes->GetBlob(KeyA, nullptr, 4, &size), E_POINTER);
    EXPECT_EQ(attributes->SetBlob(KeyA, nullptr, 1), E_POINTER);
    EXPECT_EQ(attributes->SetBlob(KeyA, nullptr, 0), S_OK);
    EXPECT_EQ(attributes->GetBlobSize(KeyA, &size), S_OK);
    EXPECT_EQ(size, 0U);
}

TEST(Attributes, KeepAReferenceOnAnObject) {
    com::ComPtr<IMFMediaType> held;
    ASSERT_EQ(MFCreateMediaType(held.Put()), S_OK);
    {
        const auto attributes = NewAttributes();
        EXPECT_EQ(attributes->SetUnknown(KeyA, held.Get()), S_OK);
        EXPECT_EQ(CountOf(*held), 2U);
        com::ComPtr<IMFMediaType> read;
        EXPECT_EQ(attributes->GetUnknown(KeyA, IID_IMFMediaType, read.PutVoid()), S_OK);
        EXPECT_EQ(read.Get(), held.Get());
        void* other = held.Get();
        EXPECT_EQ(attributes->GetUnknown(KeyA, IID_IMFSample, &other), E_NOINTERFACE);
        EXPECT_EQ(other, nullptr);
        EXPECT_EQ(attributes->SetUnknown(KeyA, nullptr), S_OK);
        EXPECT_EQ(CountOf(*held), 2U); // read
        EXPECT_EQ(attributes->GetUnknown(KeyA, IID_IMFSample, &other), E_NOINTERFACE);
        EXPECT_EQ(attributes->GetUnknown(KeyA, IID_IMFSample, nullptr), E_POINTER);
        attributes->SetUnknown(KeyB, held.Get());
    }
    EXPECT_EQ(CountOf(*held), 1U);
}

TEST(Attributes, AreCopiedWhole) {
    const auto from = NewAttributes();
    const auto to = NewAttributes();
    from->SetUINT32(KeyA, 3);
    from->SetBlob(KeyB, Three.data(), 3);
    to->SetUINT32(MF_MT_SUBTYPE, 1);
    EXPECT_EQ(from->CopyAllItems(to.Get()), S_OK);
    UINT32 value = 0;
    EXPECT_EQ(to->GetUINT32(KeyA, &value), S_OK);
    EXPECT_EQ(to->GetBlobSize(KeyB, &value), S_OK);
    EXPECT_EQ(to->GetUINT32(MF_MT_SUBTYPE, &value), MF_E_ATTRIBUTENOTFOUND);
    EXPECT_EQ(from->CopyAllItems(from.Get()), S_OK);
    EXPECT_EQ(from->GetUINT32(KeyA, &value), S_OK);
    EXPECT_EQ(from->CopyAllItems(nullptr), E_POINTER);
}

// Somebody's own attributes, without the layer's way of copying.
class ForeignAttributes final : public com::Object<IMFAttributes> {
public:
    HRESULT GetUINT32(REFGUID key, UINT32* value) override { return m_store.Get(key, value); }

    HRESULT GetUINT64(REFGUID key, UINT64* value) override { return m_store.Get(key, value); }

    HRESULT GetGUID(REFGUID key, GUID* value) override { return m_store.Get(key, value); }

    HRESULT GetBlobSize(REFGUID key, UINT32* size) override {
        return m_store.GetBlobSize(key, size);
    }

    HRESULT GetBlob(REFGUID key, UINT8* bytes, UINT32 capacity, UINT32* size) override {
        return m_store.GetBlob(key, bytes, capacity, size);
    }

    HRESULT GetUnknown(REFGUID key, REFIID iid, void** object) override {
        return m_store.GetUnknown(key, iid, object);
    }

    HRESULT SetUINT32(REFGUID key, UINT32 value) override { return m_store.Set(key, value); }

    HRESULT SetUINT64(REFGUID key, UINT64 value) override { return m_store.Set(key, value); }

    HRESULT SetGUID(REFGUID key, REFGUID value) override { return m_store.Set(key, value); }

    HRESULT SetBlob(REFGUID key, const UINT8* bytes, UINT32 size) override {
        return m_store.SetBlob(key, bytes, size);
    }

    HRESULT SetUnknown(REFGUID /*key*/, IUnknown* /*object*/) override { return E_ABORT; }

    HRESULT CopyAllItems(IMFAttributes* destination) override {
        return m_store.CopyTo(*destination);
    }

private:
    void* Find(REFIID iid) override {
        return com::Among(iid, IID_IMFAttributes, static_cast<IMFAttributes*>(this));
    }

    mf::AttributeStore m_store;
};

TEST(Attributes, AreCopiedIntoSomebodysOwn) {
    const auto from = NewAttributes();
    from->SetUINT32(KeyA, 3);
    from->SetUINT64(KeyB, 4);
    from->SetGUID(MF_MT_SUBTYPE, KeyA);
    from->SetBlob(MF_MT_MPEG_SEQUENCE_HEADER, Three.data(), 3);
    const auto to = com::MakeOwned<ForeignAttributes>();
    EXPECT_EQ(from->CopyAllItems(to.Get()), S_OK);
    EXPECT_EQ(MFGetAttributeUINT32(to.Get(), KeyA, 0), 3U);
    EXPECT_EQ(MFGetAttributeUINT64(to.Get(), KeyB, 0), 4U);
    UINT32 size = 0;
    EXPECT_EQ(to->GetBlobSize(MF_MT_MPEG_SEQUENCE_HEADER, &size), S_OK);
    from->SetUnknown(KeyA, nullptr);
    EXPECT_EQ(from->CopyAllItems(to.Get()), E_ABORT);
}

TEST(Attributes, AreBounded) {
    const auto attributes = NewAttributes();
    std::vector<UINT8> bytes(mf::AttributeStore::kMostBytes + 1);
    EXPECT_EQ(attributes->SetBlob(KeyA, bytes.data(), mf::AttributeStore::kMostBytes), S_OK);
    EXPECT_EQ(attributes->SetBlob(KeyA, bytes.data(), mf::AttributeStore::kMostBytes + 1),
              E_INVALIDARG);
    for (UINT32 i = 1; i < mf::AttributeStore::kMostValues; ++i) {
        ASSERT_EQ(attributes->SetUINT32(CodedSubtype(i), i), S_OK);
    }
    EXPECT_EQ(attributes->SetUINT32(CodedSubtype(0U), 0), E_OUTOFMEMORY);
    EXPECT_EQ(attributes->SetUINT32(KeyA, 0), S_OK); // what is there can be replaced
}

TEST(Attributes, ServeSeveralThreads) {
    const auto attributes = NewAttributes();
    std::vector<std::thread> threads;
    for (UINT32 i = 0; i < 4; ++i) {
        threads.emplace_back([&attributes, i] {
            for (UINT32 turn = 0; turn < 2000; ++turn) {
                attributes->SetBlob(KeyA, Three.data(), turn % 4);
                attributes->SetUINT32(CodedSubtype(i), turn);
                UINT32 value = 0;
                attributes->GetBlobSize(KeyA, &value);
                EXPECT_EQ(MFGetAttributeUINT32(attributes.Get(), CodedSubtype(i), 0), turn);
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
}

TEST(Attributes, SizesAndRatiosShareAValue) {
    const auto attributes = NewAttributes();
    EXPECT_EQ(MFSetAttributeSize(attributes.Get(), MF_MT_FRAME_SIZE, 1920, 1080), S_OK);
    EXPECT_EQ(MFGetAttributeUINT64(attributes.Get(), MF_MT_FRAME_SIZE, 0), 1920ULL << 32 | 1080);
    UINT32 numerator = 0;
    UINT32 denominator = 0;
    EXPECT_EQ(MFGetAttributeRatio(attributes.Get(), MF_MT_FRAME_RATE, &numerator, &denominator),
              MF_E_ATTRIBUTENOTFOUND);
    MFSetAttributeRatio(attributes.Get(), MF_MT_FRAME_RATE, 30000, 1001);
    EXPECT_EQ(MFGetAttributeRatio(attributes.Get(), MF_MT_FRAME_RATE, &numerator, &denominator),
              S_OK);
    EXPECT_EQ(numerator, 30000U);
    EXPECT_EQ(denominator, 1001U);
}

TEST(MediaType, TellsItsMajorType) {
    com::ComPtr<IMFMediaType> type;
    ASSERT_EQ(MFCreateMediaType(type.Put()), S_OK);
    GUID major{};
    EXPECT_EQ(type->GetMajorType(&major), MF_E_ATTRIBUTENOTFOUND);
    type->SetGUID(MF_MT_MAJOR_TYPE, MFMediaType_Video);
    EXPECT_EQ(type->GetMajorType(&major), S_OK);
    EXPECT_EQ(major, MFMediaType_Video);
    EXPECT_TRUE(type.As<IMFAttributes>(IID_IMFAttributes));
    EXPECT_FALSE(type.As<IMFSample>(IID_IMFSample));
}

} // namespace
