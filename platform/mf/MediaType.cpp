#include "platform/mf/MediaType.h"

#include "platform/mf/AttributeStore.h"
#include "platform/mf/MediaFormats.h"

namespace mf {

namespace {

class MediaTypeObject final : public WithAttributes<IMFMediaType> {
public:
    MediaTypeObject()
        : WithAttributes(IID_IMFMediaType) {}

    HRESULT GetMajorType(GUID* majorType) override { return GetGUID(MF_MT_MAJOR_TYPE, majorType); }
};

} // namespace

} // namespace mf

HRESULT MFCreateMediaType(IMFMediaType** type) {
    return com::Make<mf::MediaTypeObject>(type);
}
