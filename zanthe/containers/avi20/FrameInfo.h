// One frame of a stream, as its index tells it.
#pragma once

#include <cstdint>

namespace AVI20::Read {

struct FrameInfo {
    FrameInfo() = default;
    FrameInfo(const FrameInfo&) = default;
    FrameInfo& operator=(const FrameInfo&) = default;
    virtual ~FrameInfo() = default;

    // Of the frame's payload, from the start of the file.
    virtual std::uint64_t GetOffset() const = 0;

    // Of the payload, in bytes.
    virtual std::uint32_t GetSize() const = 0;

    virtual bool IsKeyFrame() const = 0;
};

// Of an old index.
struct TypeOneFrameInfo final : public FrameInfo {
    TypeOneFrameInfo(std::uint32_t frameFlags, std::uint64_t frameOffset, std::uint32_t frameSize)
        : flags(frameFlags)
        , offset(frameOffset)
        , size(frameSize) {}

    // FrameInfo
    std::uint64_t GetOffset() const override { return offset; }

    std::uint32_t GetSize() const override { return size; }

    bool IsKeyFrame() const override { return (flags & 0x10) != 0; }

    std::uint32_t flags; // bit 4: a key frame
    std::uint64_t offset;
    std::uint32_t size;
};

// Of a standard index.
struct TypeTwoFrameInfo final : public FrameInfo {
    TypeTwoFrameInfo(std::uint64_t frameOffset, std::uint32_t frameRawSize)
        : offset(frameOffset)
        , rawSize(frameRawSize) {}

    // FrameInfo
    std::uint64_t GetOffset() const override { return offset; }

    std::uint32_t GetSize() const override { return rawSize & 0x7FFFFFFF; }

    bool IsKeyFrame() const override { return (rawSize & 0x80000000) == 0; }

    std::uint64_t offset;
    std::uint32_t rawSize; // bit 31: no key frame
};

} // namespace AVI20::Read
