#include "zanthe/analysis/MediaOrientation.h"

#include <memory>

#include "zanthe/analysis/Extension.h"
#include "zanthe/analysis/FileReader.h"
#include "zanthe/analysis/MP4ParseException.h"
#include "zanthe/analysis/MP4ParserFindOrientation.h"
#include "zanthe/analysis/RecordingPath.h"

std::optional<MediaOrientation> FindMediaOrientation(const std::wstring& path) {
    const RecordingPath parsed(path);
    const std::wstring extension = LowerCase(parsed.GetExtension());
    if (extension != L"mov" && extension != L"mp4") {
        return std::nullopt;
    }
    try {
        MP4ParserFindOrientation parser(std::make_unique<FileReader>());
        parser.Parse(parsed.GetContainerPath());
        return parser.Orientation();
    } catch (const MP4ParseException&) {
        return std::nullopt;
    }
}

MediaOrientation ReadMediaOrientation(const std::wstring& path) {
    return FindMediaOrientation(path).value_or(MediaOrientation{});
}

// Exact comparisons: a turn is a turn only when the file says precisely that.
int RotationFromOrientation(const MediaOrientation& orientation) {
    const MP4Matrix& matrix = orientation.matrix;
    if (matrix[1] == -1.0 && matrix[2] == 1.0) {
        return 90;
    }
    if (matrix[0] == -1.0 && matrix[3] == -1.0) {
        return 180;
    }
    if (matrix[1] == 1.0 && matrix[2] == -1.0) {
        return 270;
    }
    return 0;
}
