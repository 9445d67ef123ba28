// What both kinds of index do with their frames.
#pragma once

#include <algorithm>
#include <exception>
#include <vector>

#include "zanthe/containers/avi20/Index.h"

namespace AVI20::Read {

// A recording of hours has a million frames, so what is kept of each is small: `Record` is a plain
// structure with a member `FrameInfoType Info() const`.
template <typename FrameInfoType, typename Record>
class TemplatedIndex : public Index {
    static_assert(sizeof(Record) <= 16, "a million of them are kept");

public:
    // Index
    std::shared_ptr<FrameInfo> GetFrameInfo(std::uint32_t frame) const override {
        return std::make_shared<FrameInfoType>(InfoOf(frame));
    }

    std::uint32_t GetFrameCount() const override {
        return static_cast<std::uint32_t>(m_records.size());
    }

    std::uint64_t GetByteOffsetOfFrame(std::uint32_t frame) const override {
        return frame < GetFrameCount() ? m_byteOffsets[frame] : GetTotalBytes();
    }

    // A frame without bytes shares its place with the next one; the later one is answered.
    std::int64_t GetFrameAtByteOffset(std::uint64_t byteOffset) const override {
        const auto after = std::upper_bound(m_byteOffsets.begin(), m_byteOffsets.end(), byteOffset);
        return after - m_byteOffsets.begin() - 1;
    }

    std::uint64_t GetFrameOffset(std::uint32_t frame) const override {
        return frame < GetFrameCount() ? InfoOf(frame).GetOffset() : 0;
    }

    std::uint32_t GetFrameSize(std::uint32_t frame) const override {
        return frame < GetFrameCount() ? InfoOf(frame).GetSize() : 0;
    }

    bool IsKeyFrame(std::uint32_t frame) const override {
        return frame < GetFrameCount() && InfoOf(frame).IsKeyFrame();
    }

    std::uint32_t FindKeyFrame(std::uint32_t frame) const override {
        const auto after = std::upper_bound(m_keyFrames.begin(), m_keyFrames.end(), frame);
        return after == m_keyFrames.begin() ? 0 : *(after - 1);
    }

protected:
    // 13 days at 30 frames a second. A file of holes can promise any number.
    static constexpr std::uint64_t MostFrames = std::uint64_t{1} << 25;

    // Before records are appended. Throws std::exception for more frames than an index may have.
    void Reserve(std::uint64_t moreFrames) {
        if (m_records.size() + moreFrames > MostFrames) {
            throw std::exception();
        }
        if (m_records.empty()) {
            m_records.reserve(moreFrames);
        }
    }

    void Append(const Record& record) { m_records.push_back(record); }

    // Behind the last record.
    void Finish() {
        m_records.shrink_to_fit(); // several standard indexes have made it grow by doubling
        m_byteOffsets.reserve(m_records.size());
        std::uint64_t sum = 0;
        for (std::uint32_t frame = 0; frame < GetFrameCount(); ++frame) {
            const FrameInfoType info = InfoOf(frame);
            m_byteOffsets.push_back(sum);
            sum += info.GetSize();
            if (info.IsKeyFrame()) {
                m_keyFrames.push_back(frame);
            }
        }
        m_keyFrames.shrink_to_fit();
    }

    // The sum of all sizes.
    std::uint64_t TotalBytes() const {
        return m_records.empty() ? 0 : m_byteOffsets.back() + GetFrameSize(GetFrameCount() - 1);
    }

private:
    FrameInfoType InfoOf(std::uint32_t frame) const { return m_records[frame].Info(); }

    std::vector<Record> m_records;
    std::vector<std::uint64_t> m_byteOffsets; // the sizes of all frames before each
    std::vector<std::uint32_t> m_keyFrames;
};

} // namespace AVI20::Read
