#include "platform/mf/SourceFile.h"

#include <filesystem>
#include <utility>

#include "platform/mf/Errors.h"

namespace mf {

HRESULT ReadSourceFacts(const std::string& path, av::FileFacts& facts) {
    std::error_code unknown;
    if (!std::filesystem::exists(path, unknown)) {
        return kFileNotFound;
    }
    auto read = av::ReadFileFacts(path);
    if (!read || read->streams.empty()) {
        return MF_E_UNSUPPORTED_BYTESTREAM_TYPE;
    }
    facts = std::move(*read);
    return S_OK;
}

} // namespace mf
