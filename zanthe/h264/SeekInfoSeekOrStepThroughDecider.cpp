#include "zanthe/h264/SeekInfoSeekOrStepThroughDecider.h"

#include <stdexcept>

#include "platform/mf/MediaFormats.h"
#include "platform/mf/SeekInfo.h"
#include "zanthe/h264/PropVariantHelper.h"
#include "zanthe/h264/ReferenceTime.h"

namespace Zanthe {

// The key frames around a position, on the source's timeline; 0 as long as none is told.
struct SeekInfoSeekOrStepThroughDecider::Neighbours {
    PropVariantHelper previous;
    PropVariantHelper next;
};

SeekInfoSeekOrStepThroughDecider::SeekInfoSeekOrStepThroughDecider(const std::string& path,
                                                                   IMFSeekInfo* seekInfo,
                                                                   std::int64_t timeOffset)
    : m_path(path)
    , m_timeOffset(timeOffset)
    , m_seekInfo(seekInfo) {
    if (!m_seekInfo) {
        throw std::runtime_error("SeekInfoSeekOrStepThroughDecider: seekInfo need to be non-null");
    }
}

SeekInfoSeekOrStepThroughDecider::~SeekInfoSeekOrStepThroughDecider() = default;

bool SeekInfoSeekOrStepThroughDecider::NeedToSeekBetweenTimes(std::int64_t from,
                                                              std::int64_t to) const {
    if (to < from) {
        return true;
    }
    Neighbours ofFrom;
    Neighbours ofTo;
    FindNeighbours(from, ofFrom);
    FindNeighbours(to, ofTo);
    return !(ofFrom.previous == ofTo.previous) && !(ofFrom.next == ofTo.previous);
}

void SeekInfoSeekOrStepThroughDecider::FindNeighbours(std::int64_t time, Neighbours& found) const {
    const std::int64_t position = SaturatingSum(time, m_timeOffset);
    AskFor(position, found);
    RefineNearestKeyFrames(position, found);
}

// Without an answer `found` stays as it was.
void SeekInfoSeekOrStepThroughDecider::AskFor(std::int64_t position, Neighbours& found) const {
    const PropVariantHelper start(position);
    static_cast<void>(
        m_seekInfo->GetNearestKeyFrames(&GUID_NULL, start, found.previous, found.next));
}

// A position on a key frame gets that one twice, which tells no interval from another; so the
// position moves on, for half a second at most.
void SeekInfoSeekOrStepThroughDecider::RefineNearestKeyFrames(std::int64_t position,
                                                              Neighbours& found) const {
    constexpr int mostAttempts = 15;
    constexpr std::int64_t thirtiethOfASecond = 333333;
    for (int i = 0; i < mostAttempts && found.previous == found.next; ++i) {
        position = SaturatingSum(position, thirtiethOfASecond);
        AskFor(position, found);
    }
}

} // namespace Zanthe
