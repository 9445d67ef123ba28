#include "tests/exact/PictureCheck.h"

#include <algorithm>
#include <exception>
#include <iomanip>
#include <random>
#include <sstream>

using testing::AssertionFailure;
using testing::AssertionResult;
using testing::AssertionSuccess;
using Zanthe::MediaTime;

namespace {

constexpr int MostFailures = 4; // then a file's test gives up

// Where two pictures have one time, either may be shown then.
std::vector<std::size_t> PicturesWithTheTimeOf(const ReferencePictures& reference,
                                               std::size_t number) {
    std::vector<std::size_t> numbers;
    for (std::size_t i = 0; i < reference.Count(); ++i) {
        if (reference.Time(i) == reference.Time(number)) {
            numbers.push_back(i);
        }
    }
    return numbers;
}

std::string MostAlike(const BgraPicture& got, const ReferencePictures& reference) {
    double best = 0;
    std::size_t number = 0;
    for (std::size_t i = 0; i < reference.Count(); ++i) {
        const double alike = Psnr(got, reference.Pixels(i));
        if (alike > best) {
            best = alike;
            number = i;
        }
    }
    std::ostringstream text;
    text << "most like picture " << number << " (" << std::setprecision(3) << best
         << " dB); the number in it is " << NumberInPicture(got);
    return text.str();
}

// The neighbours count only where they differ from the picture itself.
bool IsRatherANeighbour(const BgraPicture& got, const ReferencePictures& reference,
                        std::size_t number, double alike) {
    for (const std::size_t other : {number - 1, number + 1}) {
        if (other < reference.Count() && reference.Time(other) != reference.Time(number) &&
            Psnr(reference.Pixels(number), reference.Pixels(other)) < SamePicture &&
            Psnr(got, reference.Pixels(other)) > alike) {
            return true;
        }
    }
    return false;
}

std::vector<MediaTime> MomentsOf(const ReferencePictures& reference, std::size_t number) {
    const MediaTime start = reference.Time(number);
    std::size_t next = number + 1;
    while (next < reference.Count() && reference.Time(next) == start) {
        ++next;
    }
    if (next >= reference.Count()) {
        return {start};
    }
    const MediaTime length = reference.Time(next) - start;
    return {start, start + length / MediaTime(2), start + length * MediaTime(19, 20)};
}

} // namespace

std::vector<Question> QuestionsAbout(const ReferencePictures& reference, std::size_t most,
                                     unsigned int seed) {
    std::vector<Question> questions;
    for (std::size_t number = 0; number < reference.Count(); ++number) {
        for (const MediaTime time : MomentsOf(reference, number)) {
            questions.push_back({time, number});
        }
    }
    std::mt19937 random(seed);
    std::shuffle(questions.begin(), questions.end(), random);
    questions.resize(std::min(questions.size(), most));
    return questions;
}

AssertionResult IsPicture(const std::optional<BgraPicture>& got, const ReferencePictures& reference,
                          std::size_t number, double same) {
    if (!got) {
        return AssertionFailure() << "no picture";
    }
    double alike = 0;
    for (const std::size_t twin : PicturesWithTheTimeOf(reference, number)) {
        alike = std::max(alike, Psnr(*got, reference.Pixels(twin)));
    }
    if (alike >= same && !IsRatherANeighbour(*got, reference, number, alike)) {
        return AssertionSuccess();
    }
    return AssertionFailure() << got->width << "x" << got->height << ", " << std::setprecision(3)
                              << alike << " dB alike, " << MostAlike(*got, reference);
}

void ExpectAnswers(IPictureAsker& asker, const ReferencePictures& reference,
                   const std::vector<Question>& questions, double same) {
    int failures = 0;
    for (std::size_t asked = 0; asked < questions.size() && failures < MostFailures; ++asked) {
        const Question& question = questions[asked];
        const AssertionResult result =
            IsPicture(asker.At(question.time), reference, question.picture, same);
        if (!result) {
            ++failures;
            ADD_FAILURE() << "question " << asked << " of " << questions.size() << ", at "
                          << question.time << " s: expected picture " << question.picture << " of "
                          << reference.Count() << ", shown from "
                          << reference.Time(question.picture) << " s; got " << result.message();
        }
    }
}
