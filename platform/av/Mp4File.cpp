#include "platform/av/Mp4File.h"

#include <utility>

#include "platform/av/OpenInput.h"

namespace av {

std::unique_ptr<Mp4File> Mp4File::Open(const std::string& path) {
    FormatContextPtr context = OpenMp4(path, EditLists::Ignored);
    return context == nullptr ? nullptr : std::unique_ptr<Mp4File>(new Mp4File(std::move(context)));
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
