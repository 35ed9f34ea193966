// The pages of the properties window, by name: kGeneral, kSetup and so on; pagetable.inc has them.
#pragma once

enum class Page {
#define PAGE(name, ...) k##name,
#include "pagetable.inc"
#undef PAGE
};
