#include "platform/av/StreamChoice.h"

namespace av {

int FindStream(const AVFormatContext& context, TrackKind kind, int ordinal) {
    for (unsigned int i = 0; i < context.nb_streams; ++i) {
        const AVStream& stream = *context.streams[i];
        if (KindOf(stream) == kind && !IsCover(stream) && ordinal-- == 0) {
            return static_cast<int>(i);
        }
    }
    return -1;
}

void DiscardOthers(AVFormatContext& context, int kept) {
    for (unsigned int i = 0; i < context.nb_streams; ++i) {
        context.streams[i]->discard =
            static_cast<int>(i) == kept ? AVDISCARD_DEFAULT : AVDISCARD_ALL;
    }
}

} // namespace av
