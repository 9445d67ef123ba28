// A host's first steps: the first second of an MP3 file.
#include <iostream>
#include <vector>

#include "zanthe/audio/ffmpeg/FFMPEGAudioReader.h"

int main(int, char** arguments) {
    auto reader = Zanthe::FFMPEGAudioReader::Create(arguments[1], -1, 44100);
    std::vector<float> left(44100), right(44100);
    std::vector<float*> planes{left.data(), right.data()};
    std::cout << reader->FillAudioBuffer(0, 44100, planes) << " frames\n";
}
