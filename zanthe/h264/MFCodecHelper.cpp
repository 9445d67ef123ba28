#include "zanthe/h264/MFCodecHelper.h"

#include <vector>

#include "platform/com/ComPtr.h"
#include "platform/com/TaskMemory.h"
#include "platform/mf/Activate.h"
#include "platform/mf/MediaFormats.h"
#include "platform/mf/Transform.h"

namespace Zanthe {

namespace {

enum class Side { Input, Output };

// The codecs of the category, software first. Each keeps its own reference; the array is given back.
std::vector<com::ComPtr<IMFActivate>> FindCodecs(REFGUID category, Side side, REFGUID subtype) {
    constexpr UINT32 flags = MFT_ENUM_FLAG_SYNCMFT | MFT_ENUM_FLAG_HARDWARE |
                             MFT_ENUM_FLAG_LOCALMFT | MFT_ENUM_FLAG_SORTANDFILTER;
    const MFT_REGISTER_TYPE_INFO type{MFMediaType_Video, subtype};
    IMFActivate** found = nullptr;
    UINT32 count = 0;
    const bool input = side == Side::Input;
    if (FAILED(MFTEnumEx(category, flags, input ? &type : nullptr, input ? nullptr : &type, &found,
                         &count))) {
        return {};
    }
    std::vector<com::ComPtr<IMFActivate>> codecs;
    codecs.reserve(count);
    for (UINT32 i = 0; i < count; ++i) {
        codecs.push_back(com::ComPtr<IMFActivate>::Attach(found[i]));
    }
    CoTaskMemFree(found);
    return codecs;
}

bool HasCodec(REFGUID category, Side side, REFGUID subtype) {
    for (const auto& codec : FindCodecs(category, side, subtype)) {
        com::ComPtr<IMFTransform> transform;
        if (SUCCEEDED(codec->ActivateObject(IID_IMFTransform, transform.PutVoid()))) {
            return true;
        }
    }
    return false;
}

} // namespace

bool MFCodecHelper::hasH265Decoder() {
    return HasCodec(MFT_CATEGORY_VIDEO_DECODER, Side::Input, MFVideoFormat_HEVC) ||
           HasCodec(MFT_CATEGORY_VIDEO_DECODER, Side::Input, MFVideoFormat_HEVC_ES);
}

bool MFCodecHelper::hasH265Encoder() {
    return HasCodec(MFT_CATEGORY_VIDEO_ENCODER, Side::Output, MFVideoFormat_HEVC) ||
           HasCodec(MFT_CATEGORY_VIDEO_ENCODER, Side::Output, MFVideoFormat_HEVC_ES);
}

} // namespace Zanthe
