// The pages of the properties window: which there are in each program, and what goes with them.
#pragma once

#include <string>
#include <vector>

#include "page.h"

struct PropertyPage {
  Page page;
  const char *title_word;  // "DEF_WND_<program>_PROP_<word>_TITLE" is the window's title
  const char *label_name;  // of the tab's label
  const char *label_key;
  std::vector<const char *> admin_help;  // blocks; empty: administration lacks the page
  std::vector<const char *> tool_help;   // blocks; empty: the print tool lacks it
  bool has_defaults;                     // has a Defaults button
  std::vector<Page> needs;               // pages whose lists it changes
};

// The pages of the running program, in the order of the notebook.
const std::vector<PropertyPage> &PropertyPages();

// The place of a page in that order, from 0; -1 when the program lacks it.
[[nodiscard]] int PlaceOf(Page page);

// The catalogue key of the window's title on the page at `place`; empty out of range.
std::string PropertiesTitleKey(int place);

// The help text of the page at `place`; out of range only what all pages share.
std::string PropertiesHelp(int place);
