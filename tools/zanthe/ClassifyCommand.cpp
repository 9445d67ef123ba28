#include "tools/zanthe/ClassifyCommand.h"

#include "tools/zanthe/ClassifyReport.h"
#include "tools/zanthe/InputFile.h"
#include "tools/zanthe/Interrupt.h"
#include "zanthe/analysis/FileClassification.h"

namespace Program {

void RunClassify(const ClassifyRequest& request, std::ostream& out) {
    StopCatchingInterrupts();
    RequireReadableFile(Zanthe::ContainerPathOf(request.file));
    const Zanthe::FileClassification file = Zanthe::ClassifyFile(request.file);
    if (request.json) {
        PrintJson(file, out);
    } else {
        PrintLines(file, out);
    }
}

} // namespace Program
