// What a decider does while its collection runs.
#include <chrono>
#include <future>
#include <latch>
#include <memory>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "platform/com/ClassRegistry.h"
#include "platform/mf/MediaFormats.h"
#include "tests/zanthe/h264/ScriptedCollector.h"
#include "zanthe/h264/KeyFrameCache.h"
#include "zanthe/h264/KeyFrameCollectingSeekOrStepThroughDecider.h"

namespace Zanthe {
namespace {

using Decider = KeyFrameCollectingSeekOrStepThroughDecider;

// A collection that does not end before it is let go, which it is with this object at the latest.
class HeldCollection {
public:
    explicit HeldCollection(KeyFrameTable table)
        : m_collection(MakeCollection(std::move(table), [this] { m_gate.wait(); })) {}

    HeldCollection(const HeldCollection&) = delete;
    HeldCollection& operator=(const HeldCollection&) = delete;

    ~HeldCollection() { LetGo(); }

    void LetGo() {
        if (!std::exchange(m_letGo, true)) {
            m_gate.count_down();
        }
    }

    std::unique_ptr<Decider> MakeDecider(const std::string& path) const {
        return std::make_unique<Decider>(path, 0, 0, MFVideoFormat_H264,
                                         std::make_unique<ScriptedCollector>(m_collection));
    }

private:
    std::latch m_gate{1};
    bool m_letGo = false;
    std::shared_ptr<Collection> m_collection;
};

// Asks on a thread of its own.
std::future<bool> Ask(const Decider& decider, std::int64_t from, std::int64_t to) {
    return std::async(std::launch::async,
                      [&decider, from, to] { return decider.NeedToSeekBetweenTimes(from, to); });
}

template <typename T>
bool EndsWithin(const std::future<T>& call, std::chrono::milliseconds time) {
    return call.wait_for(time) == std::future_status::ready;
}

constexpr std::chrono::seconds Long{20};         // for what ends at once
constexpr std::chrono::milliseconds AWhile{100}; // for what does not end

TEST(KeyFrameDeciderThreads, IsMadeAtOnceAndWaitsOnlyForItsTable) {
    HeldCollection held({{0, 100, 200, 210}, 260});
    auto made = std::async(std::launch::async, [&held] { return held.MakeDecider(FreshPath()); });
    EXPECT_TRUE(EndsWithin(made, Long));
    if (!EndsWithin(made, AWhile)) {
        held.LetGo();
    }
    const auto decider = made.get();
    auto backward = Ask(*decider, 50, 49);
    auto same = Ask(*decider, 50, 50);
    EXPECT_TRUE(EndsWithin(backward, Long));
    EXPECT_TRUE(EndsWithin(same, Long));
    auto forward = Ask(*decider, 50, 250);
    EXPECT_FALSE(EndsWithin(forward, AWhile));
    held.LetGo();
    EXPECT_TRUE(backward.get());
    EXPECT_TRUE(same.get());
    EXPECT_TRUE(forward.get());
}

TEST(KeyFrameDeciderThreads, OfTwoAtATimeTheFirstResultStays) {
    const std::string path = FreshPath();
    HeldCollection early({{0, 100, 200, 210}, 260});
    HeldCollection late({{0}, 1000});
    auto first = early.MakeDecider(path);
    auto second = late.MakeDecider(path);
    early.LetGo();
    EXPECT_TRUE(first->NeedToSeekBetweenTimes(0, 200));
    late.LetGo();
    EXPECT_FALSE(second->NeedToSeekBetweenTimes(0, 200)); // by the table of its own
    second.reset();
    HeldCollection none({{}, 0, false});
    none.LetGo();
    EXPECT_TRUE(none.MakeDecider(path)->NeedToSeekBetweenTimes(0, 200));
}

TEST(KeyFrameDeciderThreads, APathIsInCollectionAsLongAsThat) {
    const KeyFrameCache& cache = KeyFrameCache::OfProcess();
    const std::string path = FreshPath();
    HeldCollection held({{0}, 100});
    auto decider = held.MakeDecider(path);
    EXPECT_TRUE(cache.IsInCollection(path));
    EXPECT_FALSE(cache.IsInCollection(path + "0"));
    held.LetGo();
    decider.reset();
    EXPECT_FALSE(cache.IsInCollection(path));
}

TEST(KeyFrameDeciderThreads, TheThreadIsASingleThreadedApartment) {
    HRESULT other = S_OK;
    const auto collection = MakeCollection(
        {{0}, 100}, [&other] { other = CoInitializeEx(nullptr, COINIT_MULTITHREADED); });
    std::make_unique<Decider>(FreshPath(), 0, 0, MFVideoFormat_H264,
                              std::make_unique<ScriptedCollector>(collection))
        .reset();
    EXPECT_EQ(other, RPC_E_CHANGED_MODE);
}

} // namespace
} // namespace Zanthe
