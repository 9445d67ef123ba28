#include "platform/av/Fragments.h"

namespace av {

// Fragments are found one behind the other. With every track discarded a read finds no sample to
// hand out, so it goes through all of them and leaves their samples in the index.
void VisitFragments(AVFormatContext& context) {
    for (unsigned int i = 0; i < context.nb_streams; ++i) {
        context.streams[i]->discard = AVDISCARD_ALL;
    }
    const PacketPtr packet(av_packet_alloc());
    while (packet != nullptr && av_read_frame(&context, packet.get()) >= 0) {
        av_packet_unref(packet.get());
    }
}

} // namespace av
