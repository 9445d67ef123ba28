// The packets of one stream of pictures or sound of a file.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "platform/av/Handles.h"
#include "platform/av/StreamFacts.h"

namespace av {

// Thread-safety: none.
class Demuxer {
public:
    // Null where `path` cannot be opened, has no stream of that ordinal and kind (attached pictures
    // are not counted) or keeps it encrypted.
    static std::unique_ptr<Demuxer> Open(const std::string& path, int ordinal,
                                         TrackKind kind = TrackKind::Video);

    const std::string& Path() const { return m_path; }

    const AVFormatContext& Format() const { return *m_format; }

    const AVStream& Stream() const { return *m_format->streams[m_stream]; }

    // The next packet of the stream in the order of the file. False when there is none any more.
    bool Read(AVPacket& packet);

    // The next packet is one at or before `dts`, as well as the container's index knows. False
    // where it cannot; what is read next is then undefined until another seek succeeds.
    bool SeekBefore(std::int64_t dts);

    // The next packet is the file's first again, exactly as after Open. Costs nothing where it is
    // so already. False when even that fails.
    bool Rewind();

    // Whether a packet is the file's first, whatever times it has: program streams may give it
    // others after a seek.
    bool IsFirst(const AVPacket& packet) const;

    // The decode time of the first packet, if it has one.
    std::optional<std::int64_t> FirstDts() const;

    // Whether its packets carry times of their own. Elementary streams do not: their times are
    // counted from the start.
    bool HasTimes() const { return m_hasTimes; }

    // Whether packets may come without any time between others that have theirs, as program streams
    // give one for each pack at most.
    bool MissesTimes() const;

    // Whether the container's index has a key frame just before the packet decoded at `dts`.
    bool FollowsIndexedKey(std::int64_t dts) const;

    // The decode time of the last key frame at or before `dts` that the container's index has by
    // now; empty where it has no index.
    std::optional<std::int64_t> IndexedKeyBefore(std::int64_t dts) const;

private:
    // What tells a packet from another.
    struct Mark {
        std::int64_t pts = AV_NOPTS_VALUE;
        std::int64_t dts = AV_NOPTS_VALUE;
        std::int64_t position = -1;
        int size = 0;

        bool operator==(const Mark&) const = default;
    };

    static Mark MarkOf(const AVPacket& packet);

    Demuxer(std::string path, int ordinal, TrackKind kind)
        : m_path(std::move(path))
        , m_ordinal(ordinal)
        , m_kind(kind) {}

    bool Reopen();
    bool RewindBySeeking();
    bool IsEncrypted(const AVPacket& first) const;
    bool ReadFromFile(AVPacket& packet);

    std::string m_path;
    int m_ordinal;
    TrackKind m_kind;
    int m_stream = 0;
    FormatContextPtr m_format;
    PacketPtr m_pending; // read to look at it; handed out by the next Read
    Mark m_first;
    bool m_hasTimes = true;
    bool m_rewindsBySeeking = true;
    bool m_atFirst = true; // nothing has been read or moved
};

} // namespace av
