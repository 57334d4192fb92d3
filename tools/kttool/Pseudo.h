// Pseudo-translation of one text.
#pragma once

#include "tools/kttool/PeResources.h"

namespace kttool {

// `text` accented where `codePage` has the accents, lengthened by about 35 %
// and bracketed; placeholders, the letter behind '&', the part behind a tab
// and control characters unchanged.
WideText PseudoTranslate(const WideText& text, unsigned codePage);

}  // namespace kttool
