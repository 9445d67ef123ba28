// Whether what a reader shows is what the ffmpeg program shows.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/exact/PictureAsker.h"
#include "tests/support/ReferencePictures.h"

// One question to a reader, and its answer's number among the file's pictures.
struct Question {
    Zanthe::MediaTime time;
    std::size_t picture = 0;
};

// Over this many decibels two pictures are the same one.
constexpr double SamePicture = 40;

// The same where colour is stretched smoothly to the size of the brightness, as the ffmpeg
// program's scaler does, and the reference has it in steps: edges of colour differ. Another picture
// of the made clips is below 15.
constexpr double SameButForColourEdges = 24;

// Of each picture three moments at most: its start, its middle and shortly before its end. The last
// picture's end is not known, so it is asked at its start alone. All shuffled by the seed.
std::vector<Question> QuestionsAbout(const ReferencePictures& reference, std::size_t most,
                                     unsigned int seed);

// Success when `got` is the picture with this number, or one that has the very same time, and is
// less like its neighbours where those differ. A failure tells which picture it is instead.
testing::AssertionResult IsPicture(const std::optional<BgraPicture>& got,
                                   const ReferencePictures& reference, std::size_t number,
                                   double same = SamePicture);

// Asks them one after the other and adds a test failure for each false answer; after a few of those
// it gives up.
void ExpectAnswers(IPictureAsker& asker, const ReferencePictures& reference,
                   const std::vector<Question>& questions, double same = SamePicture);
