#include "platform/mf/CodecEnumerator.h"

#include <utility>

#include "platform/com/Replaceable.h"

namespace mf {

namespace {

com::Replaceable<CodecEnumerator> currentEnumerator;

} // namespace

CodecEnumerator SetCodecEnumerator(CodecEnumerator enumerator) {
    return currentEnumerator.Replace(std::move(enumerator));
}

CodecEnumerator CurrentCodecEnumerator() {
    return currentEnumerator.Current();
}

} // namespace mf
