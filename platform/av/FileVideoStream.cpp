#include "platform/av/FileVideoStream.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "platform/av/VideoFacts.h"

namespace av {

namespace {

constexpr std::int64_t kSecond = 10'000'000;
// No picture lies outside of these, and sums with them stay in range.
constexpr std::int64_t kBeginning = std::numeric_limits<std::int64_t>::min() / 4;
constexpr std::int64_t kForever = std::numeric_limits<std::int64_t>::max() / 4;

bool Covers(const PicturePtr& picture, std::int64_t time) {
    return picture != nullptr && picture->Start() <= time && time < picture->End();
}

} // namespace

std::unique_ptr<VideoStream> VideoStream::Open(const std::string& path,
                                               const VideoOptions& options) {
    auto demuxer = Demuxer::Open(path, options.ordinal);
    auto decoder =
        demuxer == nullptr ? nullptr : VideoDecoder::Open(demuxer->Stream(), options.device);
    if (decoder == nullptr) {
        return nullptr;
    }
    return std::make_unique<FileVideoStream>(std::move(demuxer), std::move(decoder));
}

FileVideoStream::FileVideoStream(std::unique_ptr<Demuxer> demuxer,
                                 std::unique_ptr<VideoDecoder> decoder)
    : m_demuxer(std::move(demuxer))
    , m_decoder(std::move(decoder))
    , m_feed(*m_demuxer)
    , m_run(m_feed, *m_decoder, m_demuxer->Stream(), !m_demuxer->MissesTimes())
    , m_landing(*m_demuxer, m_feed, m_run.Clock(), m_demuxer->Stream().codecpar->video_delay)
    , m_facts(ReadVideoFacts(m_demuxer->Format(), m_demuxer->Stream()))
    , m_file(FactsOf(m_demuxer->Format()))
    , m_owner(PictureCache::NewOwner())
    , m_next(kBeginning) {}

FileVideoStream::~FileVideoStream() {
    PictureCache::Shared().Forget(m_owner);
}

bool FileVideoStream::Seek(std::int64_t time) {
    m_next = std::clamp(time, kBeginning, kForever);
    return true;
}

ReadResult FileVideoStream::Read(PicturePtr& picture) {
    const std::int64_t time = m_begin ? std::max(m_next, *m_begin) : m_next;
    if (m_end && time >= *m_end) {
        return ReadResult::End;
    }
    PicturePtr found = Find(time);
    if (found == nullptr) {
        return m_gaveOut ? ReadResult::Failed : ReadResult::End;
    }
    m_wentBack = m_last != nullptr && found->Start() < m_last->Start();
    m_next = found->End();
    m_last = found;
    picture = std::move(found);
    return ReadResult::Picture;
}

const WorkCounters& FileVideoStream::Counters() const {
    m_counters = {m_feed.PacketsRead(), m_decoder->FramesDecoded(), m_landing.Seeks()};
    return m_counters;
}

PicturePtr FileVideoStream::Find(std::int64_t time) {
    if (Covers(m_last, time)) {
        return m_last;
    }
    PicturePtr kept = PictureCache::Shared().Find(m_owner, time);
    return kept != nullptr ? kept : Decode(time);
}

PicturePtr FileVideoStream::Decode(std::int64_t time) {
    m_gaveOut = false;
    // Who steps back will ask for the pictures before this one next.
    std::int64_t keepFrom = StepsBack(time) ? WindowBefore(time) : time;
    if (!LeadsTo(time) && !Land(time, keepFrom, false)) {
        return nullptr;
    }
    keepFrom = m_landing.LiesFurtherBack() ? time : keepFrom;
    PicturePtr picture = ReadOn(time, keepFrom);
    if (picture != nullptr && m_run.HasLost(*picture)) {
        return Land(time, keepFrom, true) ? ReadOn(time, keepFrom) : nullptr;
    }
    return picture;
}

PicturePtr FileVideoStream::ReadOn(std::int64_t time, std::int64_t keepFrom) {
    while (PicturePtr picture = m_run.Next(keepFrom)) {
        Keep(picture, keepFrom < time);
        if (const auto begin = m_run.StreamBegin()) {
            m_begin = begin;
        }
        if (!m_run.Position()) {
            m_end = picture->End();
        }
        if (picture->End() > time) {
            return picture;
        }
    }
    return nullptr;
}

// What was decoded for going back stays as long as there is room. Of what is only read through a
// short trail is enough to turn round on: the decoder is faster writing to memory that it wrote to
// lately, by a tenth for a film in HD.
void FileVideoStream::Keep(const PicturePtr& picture, bool forGoingBack) {
    constexpr std::size_t kTrailBytes = std::size_t{32} << 20;
    if (picture->OnDevice()) {
        return; // from a small pool
    }
    PictureCache& cache = PictureCache::Shared();
    cache.Keep(m_owner, picture);
    if (forGoingBack) {
        return;
    }
    m_trail.push_back(picture->Start());
    const std::size_t size = std::max<std::size_t>(SizeInMemory(*picture), 1);
    while (m_trail.size() > 2 + kTrailBytes / size) {
        cache.Drop(m_owner, m_trail.front());
        m_trail.pop_front();
    }
}

// Whether the run at hand reaches `time` sooner than a new landing would.
bool FileVideoStream::LeadsTo(std::int64_t time) {
    constexpr std::int64_t kNear = kSecond / 10;
    constexpr std::int64_t kNearWithoutIndex = 5 * kSecond;
    const auto position = m_run.Position();
    if (!position || time < *position) {
        return false;
    }
    const auto nextDts = m_run.NextDts();
    if (time - *position <= kNear || !nextDts || !m_demuxer->HasTimes()) {
        return true;
    }
    const auto key = m_demuxer->IndexedKeyBefore(m_run.Clock().ToStream(time));
    return key ? *key <= *nextDts : time - *position <= kNearWithoutIndex;
}

// Makes the run one that leads to `time`.
bool FileVideoStream::Land(std::int64_t time, std::int64_t keepFrom, bool decodeAll) {
    Landing::Place place = time == kBeginning ? m_landing.ToStart() : m_landing.Find(time);
    while (place == Landing::Place::KeyFrame) {
        const bool primed = Begin(place, keepFrom, decodeAll);
        if (primed && !m_run.IsBroken() && *m_run.Position() <= time) {
            return true;
        }
        if (primed && m_run.IsBroken()) {
            m_landing.MarkFalse();
        }
        place = m_landing.Earlier();
    }
    if (place == Landing::Place::Nowhere || !Begin(place, keepFrom, decodeAll)) {
        m_gaveOut = true;
        return false;
    }
    return true;
}

bool FileVideoStream::Begin(Landing::Place place, std::int64_t keepFrom, bool decodeAll) {
    const bool fromStart = place == Landing::Place::Start;
    // Some decoders give other pictures at the start of a file than they do later, so what is read
    // from there is always read by a new one.
    if (fromStart) {
        // A decoder's memory goes back when the last of its pictures does, all of it together: one
        // picture kept of each decoder before would hold as much as the whole cache may.
        PictureCache::Shared().Forget(m_owner);
        m_trail.clear();
    }
    if (!fromStart || !m_decoder->Reset()) {
        m_decoder->Flush();
    }
    m_run.Begin(fromStart);
    if (decodeAll) {
        m_run.DecodeAll();
    }
    const bool primed = m_run.Prime(keepFrom);
    m_landedAt = m_run.Position();
    return primed;
}

// Whether the caller goes back step by step, or once more in strides, rather than to some place.
bool FileVideoStream::StepsBack(std::int64_t time) const {
    if (m_last == nullptr || time >= m_last->Start() || m_last->OnDevice()) {
        return false;
    }
    constexpr std::int64_t kFew = 4;
    const std::int64_t distance = m_last->Start() - time;
    const bool isStep = distance <= kFew * std::min(m_last->End() - m_last->Start(), kSecond);
    const bool isStride = distance <= kSecond || (m_landedAt && time >= *m_landedAt);
    return isStep || (m_wentBack && isStride);
}

// The start of as long a span before `time` as the cache can hold.
std::int64_t FileVideoStream::WindowBefore(std::int64_t time) const {
    const std::size_t size = std::max<std::size_t>(SizeInMemory(*m_last), 1);
    const std::size_t pictures = PictureCache::Shared().Budget() / 8 * 7 / size;
    constexpr std::size_t kMostPictures = 4096;
    const auto count = static_cast<std::int64_t>(std::min(pictures, kMostPictures));
    return time - count * std::min(m_last->End() - m_last->Start(), kSecond);
}

} // namespace av
