// A collector of key frames that does as the test says.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "zanthe/h264/IH264KeyframeCollector.h"

struct KeyFrameTable {
    std::vector<std::int64_t> keyFrameTimes;
    std::int64_t duration = 0;
    bool collected = true;
};

struct Collection {
    KeyFrameTable table;
    std::function<void()> during; // on the collecting thread, when the table has been handed over

    // What was asked.
    std::string path;
    std::int64_t firstSampleTime = -1;
};

class ScriptedCollector final : public Zanthe::IH264KeyframeCollector {
public:
    explicit ScriptedCollector(std::shared_ptr<Collection> collection)
        : m_collection(std::move(collection)) {}

    // IH264KeyframeCollector
    bool CollectKeyframeTimesAndDuration(const std::string& path, std::int64_t firstSampleTime,
                                         std::vector<std::int64_t>& keyFrameTimes,
                                         std::int64_t& duration) override {
        m_collection->path = path;
        m_collection->firstSampleTime = firstSampleTime;
        keyFrameTimes = m_collection->table.keyFrameTimes;
        duration = m_collection->table.duration;
        if (m_collection->during) {
            m_collection->during();
        }
        return m_collection->table.collected;
    }

private:
    std::shared_ptr<Collection> m_collection;
};

inline std::shared_ptr<Collection> MakeCollection(KeyFrameTable table,
                                                  std::function<void()> during = {}) {
    auto collection = std::make_shared<Collection>();
    collection->table = std::move(table);
    collection->during = std::move(during);
    return collection;
}

// A path that no decider of this process has seen: what is collected is kept for good.
inline std::string FreshPath() {
    static std::atomic<int> count = 0;
    return "/none/" + std::to_string(++count);
}
