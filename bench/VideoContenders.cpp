#include "bench/FfmpegVideoReader.h"
#include "bench/VideoContender.h"
#include "bench/ZantheVideoReader.h"
#ifdef ZANTHE_BENCH_FFMS2
#include "bench/Ffms2VideoReader.h"
#endif
#ifdef ZANTHE_BENCH_OPENCV
#include "bench/OpenCvVideoReader.h"
#endif

std::vector<NamedContender> AllContenders() {
    using OnTheWay = FfmpegVideoReader::OnTheWay;
    return {
        {"ffmpeg",
         [](const VideoFile& file) {
             return std::make_unique<FfmpegVideoReader>(file.path, OnTheWay::DecodeAll);
         }},
        {"ffmpeg-skip",
         [](const VideoFile& file) {
             return std::make_unique<FfmpegVideoReader>(file.path, OnTheWay::SkipUnreferenced);
         }},
        {"zanthe",
         [](const VideoFile& file) {
             return std::make_unique<ZantheVideoReader>(file.path, file.rate);
         }},
#ifdef ZANTHE_BENCH_FFMS2
        {"ffms2",
         [](const VideoFile& file) { return std::make_unique<Ffms2VideoReader>(file.path); }},
#endif
#ifdef ZANTHE_BENCH_OPENCV
        {"opencv",
         [](const VideoFile& file) { return std::make_unique<OpenCvVideoReader>(file.path); }},
#endif
    };
}
