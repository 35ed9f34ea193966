// What the tabs of option rows share: their frame, and their Defaults button.

#pragma once

#include <gtk/gtk.h>

#include "page.h"

inline constexpr int kTabBorder = 10;  // pixels
inline constexpr int kTabSpacing = 8;

struct OptionTab {
  GtkWidget *page;  // vertical box; stored on the properties window
  GtkWidget *grid;  // at its top; for AddOptionRow
};

// An empty page whose box is stored as `name`.
OptionTab NewOptionTab(const char *name);

// A Defaults button stored as `name` at the foot of the page. Shows all of the page, so it comes
// last.
void AddDefaultsButton(const OptionTab &tab, const char *name, void (*pressed)());

enum class PageReset { kSame, kChanged, kStopped };

// Sets the features of a page to the printer's defaults, in order, each with its picture; a feature
// without a default ends it there with a line in the log.
[[nodiscard]] PageReset ResetPage(Page page);

// Refills the lists of installable options: the two of the administration, or the print tool's one.
void RefillInstallableLists();

// Refills every option list, then the lists of installable options.
void RefillAfterDefaults();
