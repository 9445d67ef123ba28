#include "zanthe/h264/IH264KeyframeCollector.h"

namespace Zanthe {

IH264KeyframeCollector::~IH264KeyframeCollector() = default;

} // namespace Zanthe
