// The native export macro: the shared object exports only what carries it.
#pragma once

#define KTCORE_API __attribute__((visibility("default")))
