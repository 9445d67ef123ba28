#include "tests/support/CompoundFile.h"

#include <memory>
#include <stdexcept>

#include "platform/ole/Gsf.h"

#include <gsf/gsf-outfile-msole.h>
#include <gsf/gsf-output-stdio.h>

#undef TRUE
#undef FALSE

namespace {

struct Unreference {
    void operator()(void* object) const { g_object_unref(object); }
};

using OutputPtr = std::unique_ptr<GsfOutput, Unreference>;
using OutfilePtr = std::unique_ptr<GsfOutfile, Unreference>;

void Require(bool holds) {
    if (!holds) {
        throw std::runtime_error("a compound file cannot be written");
    }
}

void WriteMember(GsfOutfile& folder, const std::string& name, const std::string& bytes) {
    const std::size_t slash = name.find('/');
    if (slash != std::string::npos) {
        const OutputPtr inner(gsf_outfile_new_child(&folder, name.substr(0, slash).c_str(), 1));
        WriteMember(*GSF_OUTFILE(inner.get()), name.substr(slash + 1), bytes);
        Require(gsf_output_close(inner.get()) != 0);
        return;
    }
    const OutputPtr child(gsf_outfile_new_child(&folder, name.c_str(), 0));
    Require(gsf_output_write(child.get(), bytes.size(),
                             reinterpret_cast<const guint8*>(bytes.data())) != 0);
    Require(gsf_output_close(child.get()) != 0);
}

} // namespace

void WriteCompoundFile(const std::string& path,
                       const std::vector<std::pair<std::string, std::string>>& members) {
    gsf_init();
    const OutputPtr sink(gsf_output_stdio_new(path.c_str(), nullptr));
    Require(sink != nullptr);
    const OutfilePtr root(gsf_outfile_msole_new(sink.get()));
    for (const auto& [name, bytes] : members) {
        WriteMember(*root, name, bytes);
    }
    Require(gsf_output_close(GSF_OUTPUT(root.get())) != 0);
}
