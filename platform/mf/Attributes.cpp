#include "platform/mf/Attributes.h"

#include "platform/mf/AttributeStore.h"

namespace mf {

namespace {

class AttributesObject final : public WithAttributes<IMFAttributes> {
public:
    AttributesObject()
        : WithAttributes(IID_IMFAttributes) {}
};

} // namespace

} // namespace mf

HRESULT MFCreateAttributes(IMFAttributes** attributes, UINT32 /*initialSize*/) {
    return com::Make<mf::AttributesObject>(attributes);
}
