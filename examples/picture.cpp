// The first pixel of the picture that is shown a tenth of a second into a clip.
#include <exception>
#include <iostream>
#include <memory>

#include <zanthe/core/DecoderFactory.h>

int main(int count, char** arguments) try {
    if (count != 2) {
        std::cerr << "usage: picture CLIP.mp4\n";
        return 2;
    }
    using namespace Zanthe;
    const std::unique_ptr<DecoderFactory> factory(
        DecoderFactory::Create(DecoderOutputFormat::MemoryArgb32, nullptr, true));
    const std::unique_ptr<VideoSampleReader> reader(
        factory->CreateVideoSampleReader(arguments[1], 0, false));
    // A file that cannot be opened may have a reader all the same, of no size.
    if (!reader || reader->outputWidth() == 0) {
        std::cerr << "no pictures to read\n";
        return 1;
    }
    const std::unique_ptr<VideoSample> sample(
        reader->readVideoSample(MediaTime(1, 10), {}, VideoSampleReaderFlags::None));
    if (!sample) {
        std::cerr << "no picture there\n";
        return 1;
    }
    sample->lockData();
    const unsigned char* pixel = sample->data(); // blue, green, red, alpha
    std::cout << sample->width() << " x " << sample->height() << ", red " << int{pixel[2]}
              << ", green " << int{pixel[1]} << ", blue " << int{pixel[0]} << '\n';
    sample->unlockData();

} catch (const std::exception& failure) {

    std::cerr << failure.what() << '\n';
    return 1;

} catch (const char* failure) { // as the side of the filter graphs throws its texts

    std::cerr << failure << '\n';
    return 1;
}
