// A file of the library's calls that ends with its owner.
#pragma once

#include <memory>

#include "platform/mp4v2/Mp4v2.h"

struct FileCloser {
    using pointer = MP4FileHandle;

    void operator()(MP4FileHandle file) const { MP4Close(file, 0); }
};

using OwnedFile = std::unique_ptr<void, FileCloser>;
