#include "zanthe/analysis/IdentifierNames.h"

#include <iomanip>
#include <sstream>

#include "platform/dshow/Uuids.h"

namespace {

struct NamedSubtype {
    GUID id;
    const char* name;
};

constexpr NamedSubtype NamedSubtypes[] = {
    {MEDIASUBTYPE_MPEG1System, "MEDIASUBTYPE_MPEG1System"},
    {MEDIASUBTYPE_MPEG1VideoCD, "MEDIASUBTYPE_MPEG1VideoCD"},
    {MEDIASUBTYPE_MPEG1Video, "MEDIASUBTYPE_MPEG1Video"},
    {MEDIASUBTYPE_MPEG1Audio, "MEDIASUBTYPE_MPEG1Audio"},
    {MEDIASUBTYPE_Avi, "MEDIASUBTYPE_Avi"},
    {MEDIASUBTYPE_WAVE, "MEDIASUBTYPE_WAVE"},
    {MEDIASUBTYPE_None, "MEDIASUBTYPE_None"},
};

} // namespace

std::string GuidText(const GUID& id) {
    std::ostringstream text;
    text << std::hex << std::uppercase << std::setfill('0') << '{' << std::setw(8) << id.Data1
         << '-' << std::setw(4) << id.Data2 << '-' << std::setw(4) << id.Data3 << '-';
    for (int i = 0; i < 8; ++i) {
        text << (i == 2 ? "-" : "") << std::setw(2) << static_cast<unsigned>(id.Data4[i]);
    }
    text << '}';
    return text.str();
}

std::string SubtypeName(const GUID& subtype) {
    for (const NamedSubtype& named : NamedSubtypes) {
        if (named.id == subtype) {
            return named.name;
        }
    }
    return GuidText(subtype);
}
