// The features whose options the properties window lists: what is to be known of each, in one row.
#pragma once

#include <string_view>
#include <vector>

#include "page.h"

struct ListedFeature {
  const char *feature;  // its key
  const char *name;     // of its row of widgets: "PaperSize" for "PaperSizeCombo" and so on
  Page page;            // that its list is on
  int row;              // of the grid there, from 0
  const char *label_key;
  bool has_picture;          // of the choice, beside the list
  bool turns_with_sheet;     // its pictures differ for an upright and a lying sheet
  bool is_exempt;            // never compared with constraints, neither as choice nor as setting
  int default_place;         // when the page's Defaults button sets it, from 0
  const char *default_name;  // what the log calls it when it has no default
};

// In the order in which their lists are filled.
const std::vector<ListedFeature> &ListedFeatures();

// The row of a feature; null when it has no list.
const ListedFeature *FindListedFeature(std::string_view feature);

// The features of a page in the order in which its Defaults button sets them.
std::vector<const ListedFeature *> DefaultsOfPage(Page page);
