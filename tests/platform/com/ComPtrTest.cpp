#include "platform/com/ComPtr.h"

#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "platform/com/Object.h"

namespace {

constexpr IID IID_INamed = {0x11111111, 0x2222, 0x3333, {1, 2, 3, 4, 5, 6, 7, 8}};
constexpr IID IID_ICounted = {0x11111111, 0x2222, 0x3333, {1, 2, 3, 4, 5, 6, 7, 9}};

struct INamed : IUnknown {
    virtual int Name() = 0;

protected:
    ~INamed() = default;
};

struct ICounted : IUnknown {
    virtual int Count() = 0;

protected:
    ~ICounted() = default;
};

int alive = 0;

class Thing final : public com::Object<INamed, ICounted> {
public:
    explicit Thing(int name = 0)
        : m_name(name) {
        if (name < 0) {
            throw std::bad_alloc();
        }
        ++alive;
    }

    ~Thing() override { --alive; }

    int Name() override { return m_name; }

    int Count() override { return 7; }

private:
    void* Find(REFIID iid) override {
        if (iid == IID_ICounted) {
            return static_cast<ICounted*>(this);
        }
        return com::Among(iid, IID_INamed, static_cast<INamed*>(this));
    }

    const int m_name;
};

ULONG CountOf(IUnknown& object) {
    object.AddRef();
    return object.Release();
}

class ComPtr : public testing::Test {
protected:
    ComPtr() { alive = 0; }

    ~ComPtr() override { EXPECT_EQ(alive, 0); }
};

TEST_F(ComPtr, OwnsOneReference) {
    com::ComPtr<INamed> owner;
    ASSERT_EQ(com::Make<Thing>(owner.Put(), 5), S_OK);
    EXPECT_EQ(owner->Name(), 5);
    EXPECT_EQ(CountOf(*owner), 1U);
    {
        const com::ComPtr<INamed> copy =
            owner; // NOLINT(performance-unnecessary-copy-initialization)
        EXPECT_EQ(CountOf(*owner), 2U);
        EXPECT_TRUE(copy == owner);
    }
    EXPECT_EQ(CountOf(*owner), 1U);
}

TEST_F(ComPtr, MovesAttachesAndDetaches) {
    com::ComPtr<INamed> owner;
    ASSERT_EQ(com::Make<Thing>(owner.Put()), S_OK);
    com::ComPtr<INamed> other = std::move(owner);
    EXPECT_FALSE(owner); // NOLINT(bugprone-use-after-move): a moved owner is empty
    INamed* raw = other.Detach();
    EXPECT_FALSE(other);
    EXPECT_EQ(CountOf(*raw), 1U);
    other = com::ComPtr<INamed>::Attach(raw);
    EXPECT_EQ(CountOf(*raw), 1U);
    const auto& same = other;
    other = same;
    EXPECT_EQ(CountOf(*raw), 1U);
    const com::ComPtr<INamed> borrowed(raw);
    EXPECT_EQ(CountOf(*raw), 2U);
}

TEST_F(ComPtr, GivesBackWhatItHadBeforeSomethingIsPut) {
    com::ComPtr<INamed> owner;
    ASSERT_EQ(com::Make<Thing>(owner.Put(), 1), S_OK);
    ASSERT_EQ(com::Make<Thing>(owner.Put(), 2), S_OK);
    EXPECT_EQ(alive, 1);
    owner.Reset();
    EXPECT_EQ(alive, 0);
    owner.Reset();
}

TEST_F(ComPtr, AsksForInterfaces) {
    com::ComPtr<INamed> owner;
    ASSERT_EQ(com::Make<Thing>(owner.Put(), 3), S_OK);
    const auto counted = owner.As<ICounted>(IID_ICounted);
    ASSERT_TRUE(counted);
    EXPECT_EQ(counted->Count(), 7);
    EXPECT_EQ(CountOf(*owner), 2U);
    EXPECT_FALSE(owner.As<ICounted>(IID{}));
    EXPECT_FALSE(com::ComPtr<INamed>().As<ICounted>(IID_ICounted));
    EXPECT_EQ(CountOf(*owner), 2U);
    INamed* copy = nullptr;
    owner.CopyTo(&copy);
    EXPECT_EQ(copy->Release(), 2U);
}

TEST_F(ComPtr, AnObjectIsTheSameUnknownByEveryInterface) {
    com::ComPtr<INamed> owner;
    ASSERT_EQ(com::Make<Thing>(owner.Put()), S_OK);
    const auto counted = owner.As<ICounted>(IID_ICounted);
    const auto first = owner.As<IUnknown>(IID_IUnknown);
    const auto second = counted.As<IUnknown>(IID_IUnknown);
    EXPECT_EQ(first.Get(), second.Get());
    EXPECT_EQ(counted->QueryInterface(IID_INamed, nullptr), E_POINTER);
}

TEST_F(ComPtr, MakingFailsAsAResult) {
    INamed* object = reinterpret_cast<INamed*>(&alive);
    EXPECT_EQ(com::Make<Thing>(&object, -1), E_OUTOFMEMORY);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ((com::Make<Thing, INamed>(nullptr)), E_POINTER);
    EXPECT_EQ(com::Wall([]() -> HRESULT { throw 1; }), E_FAIL);
}

TEST_F(ComPtr, CountsAcrossThreads) {
    com::ComPtr<INamed> owner;
    ASSERT_EQ(com::Make<Thing>(owner.Put()), S_OK);
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&owner] {
            for (int turn = 0; turn < 10000; ++turn) {
                const com::ComPtr<INamed> copy(owner.Get());
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(CountOf(*owner), 1U);
}

} // namespace
