#include "strings/NarrowTextCodePage.h"

namespace kt {

namespace {
unsigned narrowTextCodePage = 0;
}  // namespace

unsigned NarrowTextCodePage() { return narrowTextCodePage; }

void SetNarrowTextCodePage(unsigned codePage) { narrowTextCodePage = codePage; }

}  // namespace kt
