#include "zanthe/h264/ISeekOrStepThroughDecider.h"

namespace Zanthe {

ISeekOrStepThroughDecider::~ISeekOrStepThroughDecider() = default;

} // namespace Zanthe
