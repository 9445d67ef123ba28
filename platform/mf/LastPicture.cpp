#include "platform/mf/LastPicture.h"

#include <algorithm>
#include <limits>

namespace mf {

namespace {

// From here on it is quicker to read the rest than to look for its end.
constexpr LONGLONG kShortRest = 10'000'000;

} // namespace

bool LastPicture::HasPictureAt(LONGLONG time) {
    av::PicturePtr picture;
    return m_stream.Seek(time) && m_stream.Read(picture) == av::ReadResult::Picture;
}

// What a header says of the duration may be false, so the end is looked for by halves.
const av::PicturePtr& LastPicture::Find(LONGLONG shown, LONGLONG behind) {
    behind = std::min(behind, std::numeric_limits<LONGLONG>::max() / 2);
    while (m_picture == nullptr && behind - shown > kShortRest) {
        const LONGLONG middle = shown + (behind - shown) / 2;
        (HasPictureAt(middle) ? shown : behind) = middle;
    }
    if (m_picture == nullptr && m_stream.Seek(shown)) {
        av::PicturePtr picture;
        while (m_stream.Read(picture) == av::ReadResult::Picture) {
            m_picture = picture;
        }
    }
    return m_picture;
}

} // namespace mf
