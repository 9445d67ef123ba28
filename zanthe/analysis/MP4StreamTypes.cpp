#include "zanthe/analysis/MP4StreamTypes.h"

#include <memory>

#include "zanthe/analysis/FileReader.h"
#include "zanthe/analysis/MP4ParseException.h"
#include "zanthe/analysis/MP4ParserFindStreamTypes.h"

std::vector<MP4StreamType> ReadMP4StreamTypes(const std::wstring& path) {
    try {
        MP4ParserFindStreamTypes parser(std::make_unique<FileReader>());
        parser.Parse(path);
        return parser.StreamTypes();
    } catch (const MP4ParseException&) {
        return {};
    }
}
