#include "zanthe/images/IImageLoader.h"

namespace Zanthe {

IImageLoader::~IImageLoader() = default;

} // namespace Zanthe
