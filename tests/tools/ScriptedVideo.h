#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tools/zanthe/IVideo.h"

// A picture of one colour, `width` by `height`, in memory that is larger than it.
std::unique_ptr<Zanthe::VideoSample> PlainSample(int width, int height, std::uint32_t colour);

// A video in memory that keeps its contract, unless a test bends it. Picture i has the colour i
// + 1.
class ScriptedVideo : public Program::IVideo {
public:
    // What a bent video does instead of `Honest`; called with the number of the read, from 0.
    using Script = std::function<std::optional<Program::Picture>(std::size_t index,
                                                                 const Zanthe::MediaTime& time)>;

    // Pictures that start at `starts` (100 ns, rising, the first at 0) and end at `end`, or where
    // facts.duration says. A video that does not tell times is asked at the times themselves.
    ScriptedVideo(std::vector<std::int64_t> starts, std::int64_t end, bool tellsTimes = true);

    const Program::VideoFacts& Facts() const override { return facts; }

    std::optional<Program::Picture> At(const Zanthe::MediaTime& time) override;

    std::vector<std::string> Operations() const override { return {"looked", "found"}; }

    // What the contract asks for.
    std::optional<Program::Picture> Honest(const Zanthe::MediaTime& time) const;
    std::optional<std::size_t> IndexAt(std::int64_t units) const;
    Program::Picture PictureOf(std::size_t index) const;

    std::vector<std::int64_t> starts;
    std::int64_t end;
    Program::VideoFacts facts;
    std::vector<Zanthe::MediaTime> reads;
    Script script;
};

// `count` starts of pictures at an even rate that 100 ns do not divide: 1001/30000 s.
std::vector<std::int64_t> EvenStarts(std::size_t count);
