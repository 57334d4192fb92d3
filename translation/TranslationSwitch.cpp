// The translation switch, which every interceptor reads at each call: on from
// the moment the library is loaded.
#include "kticore/translation/Translation.h"

namespace {
int translationEnabled = 1;
}  // namespace

int Supp_IsTranslationEnable() { return translationEnabled; }

void Supp_SetTranslationEnable(int enable) { translationEnabled = enable; }
