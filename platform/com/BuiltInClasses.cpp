#include "platform/com/BuiltInClasses.h"

#include <algorithm>
#include <array>

#include "platform/mf/ColorConverter.h"
#include "platform/mf/Resampler.h"
#include "platform/mf/Transform.h"
#include "platform/wic/ImagingFactory.h"

namespace com {

namespace {

struct BuiltIn {
    CLSID classId;
    HRESULT (*create)(REFIID iid, void** object);
};

// One table rather than objects that enter themselves: an archive's linker drops what nobody names.
constexpr std::array kBuiltIns = {
    BuiltIn{CLSID_CColorConvertDMO, mf::CreateColorConverter},
    BuiltIn{CLSID_CResamplerMediaObject, mf::CreateResampler},
    BuiltIn{CLSID_WICImagingFactory, wic::CreateImagingFactory},
};

} // namespace

HRESULT CreateBuiltIn(REFCLSID classId, REFIID iid, void** object) {
    const auto* const found =
        std::find_if(kBuiltIns.begin(), kBuiltIns.end(),
                     [&](const BuiltIn& builtIn) { return builtIn.classId == classId; });
    return found == kBuiltIns.end() ? REGDB_E_CLASSNOTREG : found->create(iid, object);
}

} // namespace com
