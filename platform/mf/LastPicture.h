#pragma once

#include "platform/av/VideoStream.h"
#include "platform/win32/Types.h"

namespace mf {

// The last picture of a stream, found when it is first asked for, and kept.
//
// Thread-safety: none.
class LastPicture {
public:
    // `stream` is borrowed and outlives this.
    explicit LastPicture(av::VideoStream& stream)
        : m_stream(stream) {}

    // Whether it is known and shown at `position`, or before: nothing need be read then.
    bool IsAtOrBefore(LONGLONG position) const {
        return m_picture != nullptr && m_picture->Start() <= position;
    }

    // `shown`: a time at which the stream has a picture; `behind`: one behind its last one. Moves
    // the stream. Null where nothing can be read any more.
    const av::PicturePtr& Find(LONGLONG shown, LONGLONG behind);

    const av::PicturePtr& Get() const { return m_picture; }

private:
    bool HasPictureAt(LONGLONG time);

    av::VideoStream& m_stream;
    av::PicturePtr m_picture;
};

} // namespace mf
