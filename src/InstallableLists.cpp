#include "InstallableLists.h"

#include <vector>

#include "ListWidget.h"
#include "cmessages.h"
#include "cstring.h"
#include "debug.h"

InstallableListWidgets G_InstallableLists;

namespace {

// The identifiers behind the rows of the two lists.
std::vector<Owned<CString>> L_RowData;

void Empty(GtkWidget *list) {
  ListFreeze(list);
  ListClear(list);
}

}  // namespace

int G_FillInstallableCLists() {
  const LogScope log("G_FillInstallableCLists");
  const InstallableListWidgets lists = G_InstallableLists;
  if (lists.available == nullptr || lists.installed == nullptr) return 1;
  Empty(lists.available);
  Empty(lists.installed);
  L_RowData.clear();
  for (const InstallableRow &row : InstallableRows()) {
    G_PutStringInInstallableClists(row.is_installed ? lists.installed : lists.available, row);
  }
  ListThaw(lists.available);
  ListThaw(lists.installed);
  return 1;
}

void G_PutStringInInstallableClists(GtkWidget *list, const InstallableRow &row) {
  const LogScope log("G_PutStringInInstallableClists");
  if (row.text.empty()) return;
  L_RowData.push_back(CreateStringWithValue(row.feature.c_str()));
  ListSetTip(list, ListAppend(list, {row.text}, L_RowData.back().get()), row.reason);
}

void G_FillFeaturesCList() {
  const LogScope log("G_FillFeaturesCList");
  GtkWidget *list = G_InstallableLists.features;
  if (list == nullptr) return;
  Empty(list);
  for (const InstallableRow &row : InstallableRows()) {
    const char *key = row.is_installed ? "DEF_STR_INSTALLED" : "DEF_STR_NOT_INSTALLED";
    G_PutStringInFeaturesClist(list, row, G_Translate(key));
  }
  ListThaw(list);
}

void G_PutStringInFeaturesClist(GtkWidget *list, const InstallableRow &row,
                                const std::string &status) {
  const LogScope log("G_PutStringInFeaturesClist");
  if (row.text.empty()) return;
  ListSetTip(list, ListAppend(list, {row.text, status}, nullptr), row.reason);
}
