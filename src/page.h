// The pages of the properties window, by name; pagetable.h says what goes with each.
#pragma once

enum class Page {
  kGeneral,
  kSetup,
  kOutput,
  kOptions,
  kDestination,
  kFeatures,  // administration alone
  kCustoms,   // administration alone
  kFonts,
};
