#include "tests/platform/av/ReadingOrders.h"

#include <algorithm>
#include <random>
#include <sstream>

extern "C" {
#include <libavutil/imgutils.h>
#include <libavutil/pixdesc.h>
}

namespace av {

namespace {

std::uint64_t HashBytes(std::uint64_t hash, const std::uint8_t* bytes, int count) {
    for (int i = 0; i < count; ++i) {
        hash = (hash ^ bytes[i]) * 0x100000001b3U;
    }
    return hash;
}

std::uint64_t HashOf(const AVFrame& frame) {
    std::uint64_t hash = 0xcbf29ce484222325U;
    const auto format = static_cast<AVPixelFormat>(frame.format);
    const AVPixFmtDescriptor* description = av_pix_fmt_desc_get(format);
    for (int plane = 0; plane < av_pix_fmt_count_planes(format); ++plane) {
        const bool chroma = plane == 1 || plane == 2;
        const int rows = AV_CEIL_RSHIFT(frame.height, chroma ? description->log2_chroma_h : 0);
        const int bytes = av_image_get_linesize(format, frame.width, plane);
        for (int y = 0; y < rows; ++y) {
            const std::ptrdiff_t offset = static_cast<std::ptrdiff_t>(y) * frame.linesize[plane];
            hash = HashBytes(hash, frame.data[plane] + offset, bytes);
        }
    }
    return hash;
}

class Comparison {
public:
    Comparison(const std::string& path, std::size_t most, OrderReport& report)
        : m_report(report) {
        const auto linear = VideoStream::Open(path, {});
        m_stream = VideoStream::Open(path, {});
        if (linear != nullptr) {
            m_seen = ReadAll(*linear, most);
            PicturePtr more;
            m_whole = linear->Read(more) != ReadResult::Picture;
        }
        report.pictures = m_seen.size();
    }

    const std::vector<SeenPicture>& Seen() const { return m_seen; }

    void CheckTiling() {
        for (std::size_t i = 1; i < m_seen.size(); ++i) {
            if (m_seen[i].start != m_seen[i - 1].end) {
                Differ("tile", i, m_seen[i]);
            }
        }
        for (std::size_t i = 0; i < m_seen.size(); ++i) {
            if (m_seen[i].start >= m_seen[i].end) {
                Differ("span", i, m_seen[i]);
            }
        }
    }

    void Check(const char* order, std::int64_t time) {
        m_stream->Seek(time);
        CheckNext(order, IndexAt(time));
    }

    void CheckNext(const char* order, std::size_t expected) {
        ++m_report.reads;
        PicturePtr picture;
        const ReadResult result = m_stream->Read(picture);
        if (expected >= m_seen.size()) {
            if (m_whole && result == ReadResult::Picture) {
                Differ(order, expected, See(*picture));
            }
            return;
        }
        const SeenPicture got = result == ReadResult::Picture ? See(*picture) : SeenPicture{};
        if (!(got == m_seen[expected])) {
            Differ(order, expected, got);
        }
    }

    std::size_t IndexAt(std::int64_t time) const {
        const auto after = std::upper_bound(
            m_seen.begin(), m_seen.end(), time,
            [](std::int64_t t, const SeenPicture& picture) { return t < picture.start; });
        if (after == m_seen.begin()) {
            return 0;
        }
        const auto index = static_cast<std::size_t>(after - m_seen.begin()) - 1;
        return index + 1 == m_seen.size() && time >= m_seen[index].end ? m_seen.size() : index;
    }

private:
    void Differ(const char* order, std::size_t index, const SeenPicture& got) {
        std::ostringstream line;
        line << order << " #" << index;
        if (index < m_seen.size()) {
            line << " [" << m_seen[index].start << ", " << m_seen[index].end << ")";
        }
        line << " got [" << got.start << ", " << got.end << ")";
        const auto same =
            std::find_if(m_seen.begin(), m_seen.end(),
                         [&](const SeenPicture& picture) { return picture.hash == got.hash; });
        if (same != m_seen.end()) {
            line << " the pixels of #" << (same - m_seen.begin());
        }
        m_report.differences.push_back(line.str());
    }

    std::unique_ptr<VideoStream> m_stream;
    std::vector<SeenPicture> m_seen;
    bool m_whole = false; // m_seen goes to the end of the stream
    OrderReport& m_report;
};

} // namespace

SeenPicture See(const Picture& picture) {
    return {picture.Start(), picture.End(), HashOf(picture.Frame())};
}

std::vector<SeenPicture> ReadAll(VideoStream& stream, std::size_t most) {
    std::vector<SeenPicture> seen;
    PicturePtr picture;
    while (seen.size() < most && stream.Read(picture) == ReadResult::Picture) {
        seen.push_back(See(*picture));
    }
    return seen;
}

OrderReport CompareOrders(const std::string& path, int reads, unsigned seed, std::size_t most) {
    OrderReport report;
    Comparison comparison(path, most, report);
    const auto& seen = comparison.Seen();
    if (seen.empty()) {
        return report;
    }
    comparison.CheckTiling();
    std::mt19937_64 random(seed);
    const auto pick = [&] { return random() % seen.size(); };
    for (int i = 0; i < reads; ++i) {
        const SeenPicture& picture = seen[pick()];
        const auto length = static_cast<std::uint64_t>(picture.end - picture.start);
        comparison.Check("random", picture.start + static_cast<std::int64_t>(random() % length));
    }
    for (int i = 0; i < reads; ++i) {
        const SeenPicture& picture = seen[pick()];
        comparison.Check("boundary", i % 2 == 0 ? picture.start : picture.end - 1);
    }
    std::size_t at = pick();
    for (int i = 0; i < reads && at < seen.size(); ++i, --at) {
        comparison.Check("backward", seen[at].start);
    }
    at = pick();
    for (int i = 0; i < reads; ++i) {
        comparison.Check("fro", seen[at].start);
        const std::size_t run = random() % 6;
        for (std::size_t step = 1; step <= run; ++step) {
            comparison.CheckNext("on", at + step);
        }
        const std::size_t there = at + run + random() % 4;
        at = there < 8 + seen.size() && there >= 4 ? std::min(there - 4, seen.size() - 1) : pick();
    }
    comparison.Check("before", seen.front().start - 1);
    comparison.Check("behind", seen.back().end);
    comparison.Check("last", seen.back().end - 1);
    comparison.Check("first", seen.front().start);
    return report;
}

} // namespace av
