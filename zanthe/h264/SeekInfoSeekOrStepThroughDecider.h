// Decides by what the media source says of its key frames.
#pragma once

#include <cstdint>
#include <string>

#include "platform/com/ComPtr.h"
#include "zanthe/h264/ISeekOrStepThroughDecider.h"

struct IMFSeekInfo;

namespace Zanthe {

// Thread-safety: NeedToSeekBetweenTimes is as safe as the source's IMFSeekInfo.
class ZANTHE_API SeekInfoSeekOrStepThroughDecider : public ISeekOrStepThroughDecider {
public:
    // Keeps a reference on seekInfo. timeOffset: what the source's times are ahead of the reader's,
    // the time of the first sample. `path` is kept, and plays no part.
    //
    // Throws std::runtime_error with "SeekInfoSeekOrStepThroughDecider: seekInfo need to be
    // non-null".
    SeekInfoSeekOrStepThroughDecider(const std::string& path, IMFSeekInfo* seekInfo,
                                     std::int64_t timeOffset);
    ~SeekInfoSeekOrStepThroughDecider() override;

    // ISeekOrStepThroughDecider
    // An earlier time is sought; the same one is not. A later time is stepped to in the interval of
    // `from` and in the one behind it. Where the source never answers, it counts as one interval;
    // an answer stands when the source falls silent behind it.
    bool NeedToSeekBetweenTimes(std::int64_t from, std::int64_t to) const override;

private:
    struct Neighbours;

    void FindNeighbours(std::int64_t time, Neighbours& found) const;
    void AskFor(std::int64_t position, Neighbours& found) const;
    void RefineNearestKeyFrames(std::int64_t position, Neighbours& found) const;

    std::string m_path;
    std::int64_t m_timeOffset;
    com::ComPtr<IMFSeekInfo> m_seekInfo;
};

} // namespace Zanthe
