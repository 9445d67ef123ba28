// Does a video show the same picture at a time, whatever was read before?
//
//     VideoVerifier verifier(*video, {.seeks = 200, .seed = 1});
//     VideoVerification found = verifier.Run();
//     if (!found.Equal()) { ... *found.first ... }
//
// The video is read once from start to end, and the time and the hash of each picture kept; then
// pictures are asked for in every other order and compared with that.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "tools/zanthe/IVideo.h"
#include "tools/zanthe/VideoTimeline.h"

namespace Program {

// The ways of reading, in the order they are tried.
enum class VideoReadKind { Linear, Random, Backward, ToAndFro, Boundaries, BehindEnd };
inline constexpr int VideoReadKinds = 6;

// "linear", "random", "backward", "to and fro", "boundaries", "behind the end".
std::string_view NameOf(VideoReadKind kind);

struct VideoRead {
    VideoReadKind kind = VideoReadKind::Linear;
    std::int64_t index = 0; // among the reads of its kind
    Zanthe::MediaTime time = {};
};

// In what a read was not as it should be.
struct VideoDifference {
    enum class What {
        Picture, // another picture than in the linear reading
        Time,    // that picture or another, with another time than in the linear reading
        Missing, // none where there is one
        Extra,   // one where there is none
        Gap,     // the linear reading met times that no picture covers, behind `picture`
        Order,   // the linear reading went back behind `picture`
        Failure  // an exception, where the linear reading met none
    };
    What what = What::Picture;
    VideoRead read = {};
    std::size_t picture = 0;                        // number of the one expected
    std::int64_t expectedStart = 0;                 // 100 ns
    std::optional<std::int64_t> answeredStart = {}; // 100 ns, where told
    std::uint64_t expectedHash = 0;                 // Picture
    std::uint64_t answeredHash = 0;                 // Picture
    std::optional<std::size_t> answeredPicture =
        {};                   // Picture: number of one that looks like the answer
    std::string failure = {}; // Failure: the exception's text
};

struct VideoTally {
    VideoReadKind kind = VideoReadKind::Linear;
    std::int64_t reads = 0;
    std::int64_t differences = 0;
};

struct VideoVerification {
    std::int64_t pictures = 0;       // by the linear reading
    std::int64_t duration = 0;       // 100 ns, to the end of the last of them by its own duration
    std::vector<VideoTally> tallies; // one a kind, in order
    std::optional<VideoDifference> first;

    std::int64_t Reads() const;
    std::int64_t Differences() const;

    bool Equal() const { return !first.has_value(); }
};

struct VideoVerifierPlan {
    std::int64_t seeks = 200; // random reads
    std::uint64_t seed = 0;
};

// Thread-safety: none.
class VideoVerifier {
public:
    // Called before each read; may throw to stop the work.
    using Watch = std::function<void(const VideoRead& read)>;

    // video: stays the caller's.
    VideoVerifier(IVideo& video, const VideoVerifierPlan& plan, Watch watch = {});

    // Once. Throws what the linear reading and the watch throw; a read that fails later is a
    // difference.
    VideoVerification Run();

private:
    void ReadLinearly();
    void ReadAtRandom();
    void ReadBackward();
    void ReadToAndFro();
    void ReadBoundaries();
    void ReadBehindEnd();

    void ReadBackwardFrom(std::size_t last, std::size_t first);
    void ReadPicture(VideoReadKind kind, std::size_t picture);
    void ReadAndCompare(VideoReadKind kind, const Zanthe::MediaTime& time);
    void Compare(const VideoRead& read, const std::optional<Picture>& answer);
    void ComparePicture(const VideoRead& read, std::size_t expected, const Picture& answer);

    std::int64_t LastAnswer() const;

    VideoRead NextRead(VideoReadKind kind, const Zanthe::MediaTime& time);
    VideoTally& TallyOf(VideoReadKind kind);
    void Note(const VideoDifference& difference);
    std::int64_t Between(std::int64_t low, std::int64_t high);

    IVideo& m_video;
    VideoVerifierPlan m_plan;
    Watch m_watch;
    std::mt19937_64 m_random;
    VideoTimeline m_timeline;
    VideoVerification m_found;
};

} // namespace Program
