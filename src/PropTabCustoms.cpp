#include "PropTabCustoms.h"

#include <vector>

#include "ButtonBox.h"
#include "CustomDialog.h"
#include "ListWidget.h"
#include "OptionDefaults.h"
#include "PropTabCustomsFct.h"
#include "PropertiesFrame.h"
#include "PropertiesPages.h"
#include "Support.h"
#include "cmessages.h"
#include "debug.h"

std::unique_ptr<PropTabCustomsHelper> G_PropTabCustoms_helper;
Owned<CList> G_CpsSelections;
Owned<CList> G_CmtSelections;

namespace {

struct ButtonFacts {
  const char *name;
  void (*pressed)();
};

// What one half of the tab is made of.
struct HalfFacts {
  CustomKind kind;
  const char *box_name;
  const char *label_name;
  const char *label_key;
  const char *scrolled_name;
  const char *list_name;
  ListRowHandler selected;
  ListRowHandler unselected;
  int (*add_item)(const char *name);
  const char *buttons_name;
  ButtonFacts add;
  ButtonFacts edit;
  ButtonFacts remove;
};

constexpr HalfFacts L_Papers = {CustomKind::kPaper,
                                "DataCpsVBox",
                                "CPSLabel",
                                "DEF_LBL_CPS_DEFS",
                                "CpsScrolledWindow",
                                "CpsCList",
                                CpsCListRowSelection,
                                CpsCListRowUnSelection,
                                AddItemInCpsCListWidget,
                                "CpsButtonsHBox",
                                {"CpsButtonAdd", ButtonAddCpsPressed},
                                {"CpsButtonEdit", ButtonEditCpsPressed},
                                {"CpsButtonDelete", ButtonDeleteCpsPressed}};
constexpr HalfFacts L_Medias = {CustomKind::kMedia,
                                "DataCmtVBox",
                                "CMTLabel",
                                "DEF_LBL_CMT_DEFS",
                                "CmtScrolledWindow",
                                "CmtCList",
                                CmtCListRowSelection,
                                CmtCListRowUnSelection,
                                AddItemInCmtCListWidget,
                                "CmtButtonsHBox",
                                {"CmtButtonAdd", ButtonAddCmtPressed},
                                {"CmtButtonEdit", ButtonEditCmtPressed},
                                {"CmtButtonDelete", ButtonDeleteCmtPressed}};

std::vector<ListColumn> Columns(CustomKind kind) {
  const ListColumn name = {"DEF_LBL_NAME_TITLE", 0};
  if (kind == CustomKind::kMedia) return {name};
  return {name, {"DEF_LBL_CPS_MILLIMETERS_TITLE", 0}, {"DEF_LBL_CPS_INCHES_TITLE", 0}};
}

GtkWidget *NewCustomButton(GtkWidget *box, const ButtonFacts &facts, const char *title_key) {
  return NewButton(G_PropertiesWindow_helper->window, box, facts.name, title_key, facts.pressed);
}

void AddHalf(GtkWidget *page, const HalfFacts &facts) {
  GtkWidget *window = G_PropertiesWindow_helper->window;
  CustomListHelper &helper = CustomList(facts.kind);
  GtkWidget *half =
      StoreWidget(window, gtk_box_new(GTK_ORIENTATION_VERTICAL, kTabSpacing), facts.box_name);
  gtk_box_pack_start(GTK_BOX(page), half, TRUE, TRUE, 0);
  helper.list = NewList(Columns(facts.kind), GTK_SELECTION_MULTIPLE);
  StoreWidget(window, helper.list, facts.list_name);
  ListOnSelection(helper.list, facts.selected, facts.unselected);
  GtkWidget *label = NewLabel(window, facts.label_name, G_Translate(facts.label_key), helper.list);
  gtk_box_pack_start(GTK_BOX(half), label, FALSE, FALSE, 0);
  GtkWidget *scrolled = NewScrolledList(window, facts.scrolled_name, helper.list);
  gtk_box_pack_start(GTK_BOX(half), scrolled, TRUE, TRUE, 0);
  GtkWidget *buttons = NewButtonBox(window, GTK_ORIENTATION_HORIZONTAL, facts.buttons_name);
  gtk_box_pack_start(GTK_BOX(half), buttons, FALSE, FALSE, 0);
  helper.add_button = NewCustomButton(buttons, facts.add, "DEF_BTN_ADD_TITLE");
  helper.edit_button = NewCustomButton(buttons, facts.edit, "DEF_BTN_EDIT_TITLE");
  helper.delete_button = NewCustomButton(buttons, facts.remove, "DEF_BTN_DELETE_TITLE");
  const Owned<CList> names = fGetKeys_CHash_Function(CustomEntries(facts.kind));
  for (const CString *name : Elements<CString>(names.get())) {
    facts.add_item(fGet_CString_Value_Function(name));
    ++helper.number_defined;
  }
  UpdateCustomButtons(facts.kind);
}

// The record and the two lists of rows too.
void ForgetPage() {
  G_CustomsTab = {};
  G_PropTabCustoms_helper.reset();
  G_CpsSelections.reset();
  G_CmtSelections.reset();
}

}  // namespace

const PageWidgets kCustomsPage = {create_PropTabCustoms, ForgetPage};

GtkWidget *create_PropTabCustoms() {
  const LogScope log("create_PropTabCustoms");
  G_PropTabCustoms_helper = std::make_unique<PropTabCustomsHelper>();
  G_CpsSelections = CreateList();
  G_CmtSelections = CreateList();
  G_CustomsTab = {CustomSelections,
                  [](CustomKind kind) { return CustomList(kind).list; },
                  DeleteSelectedCustomEntries,
                  RemoveEditedCustomEntry,
                  ShowNewCustomEntry,
                  CountNewCustomEntry};
  GtkWidget *page = gtk_box_new(GTK_ORIENTATION_VERTICAL, 2 * kTabSpacing);
  gtk_container_set_border_width(GTK_CONTAINER(page), kTabBorder);
  StoreWidget(G_PropertiesWindow_helper->window, page, "CustomsVBox");
  AddHalf(page, L_Papers);
  AddHalf(page, L_Medias);
  gtk_widget_show_all(page);
  return page;
}

CustomListHelper &CustomList(CustomKind kind) {
  PropTabCustomsHelper &helper = *G_PropTabCustoms_helper;
  return kind == CustomKind::kPaper ? helper.papers : helper.medias;
}

CList *CustomSelections(CustomKind kind) {
  return kind == CustomKind::kPaper ? G_CpsSelections.get() : G_CmtSelections.get();
}

void UpdateCustomButtons(CustomKind kind) {
  const CustomListHelper &helper = CustomList(kind);
  const CustomButtons buttons =
      CustomButtonsFor(kind, helper.number_defined, helper.number_selected);
  gtk_widget_set_sensitive(helper.add_button, buttons.add ? TRUE : FALSE);
  gtk_widget_set_sensitive(helper.edit_button, buttons.edit ? TRUE : FALSE);
  gtk_widget_set_sensitive(helper.delete_button, buttons.remove ? TRUE : FALSE);
}
