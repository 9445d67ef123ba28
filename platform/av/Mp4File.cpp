#include "platform/av/Mp4File.h"

#include <algorithm>
#include <utility>

#include "platform/av/OpenInput.h"
#include "platform/av/TrackBoxes.h"

namespace av {

std::unique_ptr<Mp4File> Mp4File::Open(const std::string& path) {
    FormatContextPtr context = OpenMp4(path, EditLists::Ignored);
    if (context == nullptr) {
        return nullptr;
    }
    std::unique_ptr<Mp4File> file(new Mp4File(std::move(context)));
    file->AddBoxes(path);
    return file;
}

// libavformat goes by the coding of a track, and keeps one sample description.
void Mp4File::AddBoxes(const std::string& path) {
    for (TrackBoxes& boxes : ReadTrackBoxes(path)) {
        const auto track =
            std::find_if(m_tracks.begin(), m_tracks.end(), [&](const Mp4Track& each) {
                return each.id == boxes.id && each.handler.empty();
            });
        if (track != m_tracks.end()) {
            track->handler = std::move(boxes.handler);
            track->descriptions = std::move(boxes.descriptions);
        }
    }
}

Mp4File::Mp4File(FormatContextPtr context)
    : m_context(std::move(context)) {
    for (unsigned int i = 0; i < m_context->nb_streams; ++i) {
        const AVStream& stream = *m_context->streams[i];
        if (!IsCover(stream) && stream.id > 0) {
            m_tracks.push_back(
                {static_cast<std::uint32_t>(stream.id), KindOf(stream), CodecOf(stream)});
        }
    }
}

} // namespace av
