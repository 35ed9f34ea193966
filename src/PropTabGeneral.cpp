#include "PropTabGeneral.h"

#include <string>

#include "AddressTest.h"
#include "ButtonBox.h"
#include "ComboWidget.h"
#include "EntryHandlers.h"
#include "FieldGrid.h"
#include "InstallableLists.h"
#include "ListWidget.h"
#include "MessageDialogs.h"
#include "OptionCombos.h"
#include "OptionDefaults.h"
#include "PrinterPicture.h"
#include "PropertiesFrame.h"
#include "PropertiesPages.h"
#include "Support.h"
#include "cmessages.h"
#include "cprintqueue.h"
#include "debug.h"
#include "entryfilters.h"
#include "globals.h"
#include "optionstate.h"

std::unique_ptr<PropTabGenNpmenuHelper> G_PropTabGenNpmenu_helper;
std::unique_ptr<PropTabGenPrntoolHelper> G_PropTabGenPrntool_helper;

namespace {

constexpr int L_FeatureWidth = 220;  // pixels
constexpr int L_ListHeight = 120;

// Rows of a label and what it is about.
class Rows {
 public:
  explicit Rows(const OptionTab &tab)
      : window_(G_PropertiesWindow_helper->window), grid_(GTK_GRID(tab.grid)) {}

  void Add(const char *label_name, const char *label_key, GtkWidget *field) {
    AddField(window_, grid_, rows_++, {label_name, label_key}, field);
  }

  void AddText(const char *label_name, const char *label_key, const char *name,
               const std::string &text) {
    GtkWidget *label = NewLabel(window_, name, text, nullptr);
    gtk_label_set_selectable(GTK_LABEL(label), TRUE);
    gtk_widget_set_can_focus(label, FALSE);  // the Tab key goes from field to field
    gtk_label_set_ellipsize(GTK_LABEL(label), PANGO_ELLIPSIZE_END);
    gtk_widget_set_tooltip_text(label, text.c_str());
    Add(label_name, label_key, label);
  }

  GtkWidget *AddEntry(const char *label_name, const char *label_key, const char *name,
                      int max_length) {
    GtkWidget *entry = NewEntry(name, max_length);
    Add(label_name, label_key, entry);
    return entry;
  }

  // With a button that tests it.
  GtkWidget *AddAddress(std::string (*printer)()) {
    GtkWidget *entry = NewEntry("AddressEntry", kAddressLength);
    const AddressTest test = NewAddressTest(window_, entry, printer);
    AddField(window_, grid_, rows_++, {"AddressLabel", "DEF_LBL_IPADDRESS"}, test.field, entry);
    gtk_grid_attach(grid_, test.result, 1, rows_++, 1, 1);
    return entry;
  }

 private:
  GtkWidget *NewEntry(const char *name, int max_length) {
    GtkWidget *entry = StoreWidget(window_, gtk_entry_new(), name);
    gtk_entry_set_max_length(GTK_ENTRY(entry), max_length);
    return entry;
  }

  GtkWidget *window_;
  GtkGrid *grid_;
  int rows_ = 0;
};

std::string QueueName() { return TextOf(G_CurrentQueue_name.get()); }
std::string Address() { return TextOf(fGet_Address_Function(G_CurrentQueue.get())); }
std::string Transport() {
  return G_Translate(TextOf(fGet_AddressType_Function(G_CurrentQueue.get())).c_str());
}

std::string Printer() { return TextOf(fGet_PrinterName_Function(G_CurrentQueue.get())); }

void AddPrinterAndType(Rows &rows) {
  rows.AddText("PrinterLabel", "DEF_LBL_PRINTER", "PrinterNameLabel", Printer());
  rows.AddText("TypeLabel", "DEF_LBL_TYPE", "TypeNameLabel",
               G_Translate(CurrentQueueTypeKey().c_str()));
}

void AddPrintingSystem(Rows &rows) {
  rows.AddText("PrintingSystemLabel", "DEF_LBL_PRN_SYS", "PrintingSystemNameLabel",
               TextOf(fGet_PrintingSystem_Function(G_CurrentQueue.get())));
}

void AddAboutButton(const OptionTab &tab) {
  GtkWidget *window = G_PropertiesWindow_helper->window;
  GtkWidget *box = NewButtonBox(window, GTK_ORIENTATION_HORIZONTAL, "AboutHbuttonbox");
  gtk_button_box_set_layout(GTK_BUTTON_BOX(box), GTK_BUTTONBOX_END);
  gtk_box_pack_end(GTK_BOX(tab.page), box, FALSE, FALSE, 0);
  NewButton(window, box, "AboutButton", "DEF_BTN_ABOUT_TITLE", G_ButtonAboutPressed);
}

void AddFeaturesList(const OptionTab &tab) {
  GtkWidget *window = G_PropertiesWindow_helper->window;
  GtkWidget *list = NewList(
      {{"DEF_LBL_FEATURE_TITLE", L_FeatureWidth}, {"DEF_LBL_STATUS_TITLE", 0}}, GTK_SELECTION_NONE);
  StoreWidget(window, list, "FeaturesClist");
  SetAccessibleName(list, G_Translate("DEF_TAB_FEATURES"));
  GtkWidget *scrolled = NewScrolledList(window, "FeaturesScrolledwindow", list);
  gtk_widget_set_size_request(scrolled, -1, L_ListHeight);
  gtk_box_pack_start(GTK_BOX(tab.page), scrolled, TRUE, TRUE, 0);
  G_PropTabGenPrntool_helper->features_list = list;
  G_InstallableLists.features = list;
  G_OptionChangeHooks.refill_installables = G_FillFeaturesCList;
  G_FillFeaturesCList();
}

GtkWidget *CreatePage() {
  return G_ProgName == kModeAdministration ? create_PropTabGenAdmin() : create_PropTabGenTool();
}

void ForgetPage() {
  G_PropTabGenNpmenu_helper.reset();
  G_PropTabGenPrntool_helper.reset();
}

// A queue that there is has its printer.
QueueDialog StateOfDialog() {
  if (G_PropTabGenNpmenu_helper == nullptr) return {};
  return {G_PropTabGenNpmenu_helper.get(), G_PropertiesWindow_helper->window, true};
}

}  // namespace

const PageWidgets kGeneralPage = {CreatePage, ForgetPage};

GtkWidget *create_PropTabGenAdmin() {
  const LogScope log("create_PropTabGenAdmin");
  G_PropTabGenNpmenu_helper = std::make_unique<PropTabGenNpmenuHelper>();
  G_QueueDialogs.properties = StateOfDialog;
  PropTabGenNpmenuHelper &helper = *G_PropTabGenNpmenu_helper;
  const OptionTab tab = NewOptionTab("GeneralVbox");
  Rows rows(tab);
  helper.queue_entry = rows.AddEntry("QueueLabel", "DEF_LBL_QUEUE", "QueueEntry", kQueueNameLength);
  gtk_entry_set_text(GTK_ENTRY(helper.queue_entry), QueueName().c_str());
  FilterAsQueueName(helper.queue_entry);
  AddPrinterAndType(rows);
  helper.transport_combo =
      NewCombo(G_PropertiesWindow_helper->window, "TransportCombo", "TransportComboEntry", nullptr);
  ComboFill(helper.transport_combo, {Transport()});
  ComboSetRow(helper.transport_combo, 0);
  gtk_widget_set_sensitive(helper.transport_combo, FALSE);
  rows.Add("TransportLabel", "DEF_LBL_TRANSPORT", helper.transport_combo);
  helper.address_entry = rows.AddAddress(Printer);
  gtk_entry_set_text(GTK_ENTRY(helper.address_entry), Address().c_str());
  FilterAsAddress(helper.address_entry);
  AddPrintingSystem(rows);
  AddAboutButton(tab);
  gtk_widget_show_all(tab.page);
  return tab.page;
}

GtkWidget *create_PropTabGenTool() {
  const LogScope log("create_PropTabGenTool");
  G_PropTabGenPrntool_helper = std::make_unique<PropTabGenPrntoolHelper>();
  const OptionTab tab = NewOptionTab("GeneralVbox");
  Rows rows(tab);
  rows.AddText("QueueLabel", "DEF_LBL_QUEUE", "QueueNameLabel", QueueName());
  AddPrinterAndType(rows);
  rows.AddText("TransportLabel", "DEF_LBL_TRANSPORT", "TransportNameLabel", Transport());
  rows.AddText("AddressLabel", "DEF_LBL_IPADDRESS", "AddressNameLabel", Address());
  AddPrintingSystem(rows);
  GtkWidget *picture = NewPrinterPicture(G_PropertiesWindow_helper->window);
  gtk_widget_set_halign(picture, GTK_ALIGN_CENTER);
  gtk_box_pack_start(GTK_BOX(tab.page), picture, FALSE, FALSE, 0);
  AddFeaturesList(tab);
  AddAboutButton(tab);
  gtk_widget_show_all(tab.page);
  return tab.page;
}

QueueIdentity ReadIdentity() {
  const PropTabGenNpmenuHelper &helper = *G_PropTabGenNpmenu_helper;
  return {gtk_entry_get_text(GTK_ENTRY(helper.queue_entry)), ComboText(helper.transport_combo),
          gtk_entry_get_text(GTK_ENTRY(helper.address_entry))};
}

void FocusIdentity(IdentityFault fault) {
  const PropTabGenNpmenuHelper &helper = *G_PropTabGenNpmenu_helper;
  FocusInProperties(fault == IdentityFault::kNoAddress ? helper.address_entry : helper.queue_entry);
}
