// The resources of the translation benchmark, shared by its script and its
// code.
#pragma once

#define KT_BENCH_STRING_TRANSLATED 100
#define KT_BENCH_STRING_UNKNOWN 101
#define KT_BENCH_DIALOG 300
// Control n (1 to 50) has id n and the text "Control text n"; the caption
// is "Control text 0".
#define KT_BENCH_DIALOG_CONTROLS 50
