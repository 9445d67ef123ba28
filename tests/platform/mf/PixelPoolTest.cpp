#include "platform/mf/PixelPool.h"

#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace {

using mf::PixelPool;

TEST(PixelPool, LendsTheSameMemoryAgain) {
    const auto pool = std::make_shared<PixelPool>(1000);
    std::uint8_t* first = nullptr;
    {
        const auto block = pool->Take(400);
        first = block.Bytes();
        EXPECT_EQ(pool->BytesKept(), 0U);
    }
    EXPECT_EQ(pool->BytesKept(), 400U);
    const auto again = pool->Take(400);
    EXPECT_EQ(again.Bytes(), first);
    EXPECT_EQ(pool->BytesKept(), 0U);
    EXPECT_NE(pool->Take(401).Bytes(), nullptr);
}

TEST(PixelPool, KeepsNoMoreThanItIsAllowed) {
    const auto pool = std::make_shared<PixelPool>(1000);
    {
        std::vector<PixelPool::Block> blocks;
        for (int i = 0; i < 5; ++i) {
            blocks.push_back(pool->Take(400));
        }
        const auto large = pool->Take(5000);
    }
    EXPECT_LE(pool->BytesKept(), 1000U);
}

TEST(PixelPool, BlocksOutliveTheirOwnersPool) {
    auto pool = std::make_shared<PixelPool>(1000);
    auto block = pool->Take(16);
    pool.reset();
    block.Bytes()[15] = 1;
    block = PixelPool::Block();
    EXPECT_EQ(block.Bytes(), nullptr);
}

TEST(PixelPool, ServesSeveralThreads) {
    const auto pool = std::make_shared<PixelPool>(10000);
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&pool, i] {
            for (int turn = 0; turn < 1000; ++turn) {
                const auto block = pool->Take(1000);
                block.Bytes()[0] = static_cast<std::uint8_t>(i);
                EXPECT_EQ(block.Bytes()[0], i);
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_LE(pool->BytesKept(), 10000U);
}

} // namespace
