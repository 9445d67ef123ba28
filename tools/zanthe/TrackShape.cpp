#include "tools/zanthe/TrackShape.h"

#include <algorithm>
#include <array>

namespace Program {

namespace {

using Matrix = std::array<double, 4>; // row-major 2 by 2
using Zanthe::ClassifiedTrack;
using Zanthe::FileClassification;

Matrix Product(const Matrix& a, const Matrix& b) {
    return {a[0] * b[0] + a[1] * b[2], a[0] * b[1] + a[1] * b[3], a[2] * b[0] + a[3] * b[2],
            a[2] * b[1] + a[3] * b[3]};
}

// Of the movie as a whole: the answer for the last track of pictures, without that track's part.
Matrix MovieMatrix(const FileClassification& file) {
    const auto last = std::find_if(file.tracks.rbegin(), file.tracks.rend(),
                                   [](const auto& track) { return track.kind == "video"; });
    if (last == file.tracks.rend()) {
        return {1, 0, 0, 1};
    }
    const Matrix& m = last->matrix;
    const double area = m[0] * m[3] - m[1] * m[2];
    if (area == 0.0) {
        return {1, 0, 0, 1};
    }
    return Product(file.orientation->matrix,
                   {m[3] / area, -m[1] / area, -m[2] / area, m[0] / area});
}

// As the library takes it: plain turns alone, exactly.
int RotationOf(const Matrix& matrix) {
    if (matrix[1] == -1.0 && matrix[2] == 1.0) {
        return 90;
    }
    if (matrix[0] == -1.0 && matrix[3] == -1.0) {
        return 180;
    }
    return matrix[1] == 1.0 && matrix[2] == -1.0 ? 270 : 0;
}

} // namespace

std::optional<TrackShape> ShapeOf(const FileClassification& file, std::size_t index) {
    if (!file.orientation || index >= file.tracks.size()) {
        return std::nullopt;
    }
    const ClassifiedTrack& track = file.tracks[index];
    return TrackShape{.width = track.width,
                      .height = track.height,
                      .rotation = RotationOf(Product(MovieMatrix(file), track.matrix))};
}

} // namespace Program
