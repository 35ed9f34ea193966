#include "PropTabOptions.h"

#include <string>
#include <vector>

#include "MoreOptionsList.h"
#include "OptionCombos.h"
#include "OptionDefaults.h"
#include "Pixmaps.h"
#include "PropertiesFrame.h"
#include "PropertiesPages.h"
#include "Support.h"
#include "cmessages.h"
#include "debug.h"
#include "multipleup.h"
#include "optionlists.h"
#include "optionstate.h"
#include "properties.h"
#include "settingkeys.h"

std::unique_ptr<PropTabOptionsHelper> G_PropTabOptions_helper;
const PageWidgets kOptionsPage = {create_PropTabOptions, [] { G_PropTabOptions_helper.reset(); }};

namespace {

constexpr int L_PictureSpacing = 4;  // pixels
constexpr int L_ChoiceSpacing = 16;

struct NupButtonFacts {
  const char *name;  // of the widgets: "Nup2" for "Nup2Radiobutton" and so on
  const char *label_key;
  const char *value;
  const char *log_name;
};

constexpr std::array<NupButtonFacts, 7> L_Pages = {{
    {"Nup1", "DEF_BTN_1UP_TITLE", "1", "NUP_1"},
    {"Booklet", "DEF_BTN_BOOKLET_TITLE", kBookletKey, "BOOKLET"},
    {"Nup2", "DEF_BTN_2UP_TITLE", "2", "NUP_2"},
    {"Nup4", "DEF_BTN_4UP_TITLE", "4", "NUP_4"},
    {"Nup6", "DEF_BTN_6UP_TITLE", "6", "NUP_6"},
    {"Nup9", "DEF_BTN_9UP_TITLE", "9", "NUP_9"},
    {"Nup16", "DEF_BTN_16UP_TITLE", "16", "NUP_16"},
}};
constexpr std::array<NupButtonFacts, 4> L_Orders = {{
    {"NupLeft", "DEF_BTN_LEFT_TITLE", "Left", "NUP_LEFT"},
    {"NupRight", "DEF_BTN_RIGHT_TITLE", "Right", "NUP_RIGHT"},
    {"NupDown", "DEF_BTN_DOWN_TITLE", "Down", "NUP_DOWN"},
    {"NupBack", "DEF_BTN_BACK_TITLE", "Back", "NUP_BACK"},
}};
constexpr size_t L_LeftAndRight = 2;  // the first of L_Orders

bool HasButtons() {
  return G_PropTabOptions_helper != nullptr &&
         G_PropTabOptions_helper->pages.front().button != nullptr;
}

bool IsActive(const NupButton &choice) {
  return gtk_toggle_button_get_active(GTK_TOGGLE_BUTTON(choice.button)) != FALSE;
}

void Activate(const NupButton &choice) {
  gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(choice.button), TRUE);
}

// Whether that button of the group is there and active.
template <size_t N>
bool IsChosen(const std::array<NupButtonFacts, N> &facts, const std::array<NupButton, N> &group,
              const std::string &value) {
  for (size_t i = 0; i < N; ++i) {
    if (value == facts.at(i).value) return IsActive(group.at(i));
  }
  return false;
}

void PagesClicked(GtkWidget *, gpointer value) {
  RadioButtonNupPressed(static_cast<const char *>(value));
}

void OrderClicked(GtkWidget *, gpointer order) {
  RadioButtonNupOrderPressed(static_cast<const char *>(order));
}

// A click on a picture is one on its button.
gboolean PicturePressed(GtkWidget *, GdkEventButton *event, gpointer button) {
  if (event->type == GDK_BUTTON_PRESS && event->button == GDK_BUTTON_PRIMARY) {
    gtk_widget_grab_focus(GTK_WIDGET(button));
    gtk_button_clicked(GTK_BUTTON(button));
  }
  return TRUE;
}

// Makes the button of that value active, if there is one, without running the handlers.
template <size_t N>
void Toggle(const std::array<NupButtonFacts, N> &facts, const std::array<NupButton, N> &group,
            void (*clicked)(GtkWidget *, gpointer), const std::string &value) {
  const auto handler = reinterpret_cast<gpointer>(clicked);
  for (const NupButton &choice : group) {
    g_signal_handlers_block_matched(choice.button, G_SIGNAL_MATCH_FUNC, 0, 0, nullptr, handler,
                                    nullptr);
  }
  for (size_t i = 0; i < N; ++i) {
    if (value != facts.at(i).value) continue;
    Log(2, std::string("Toggling the ") + facts.at(i).log_name + " radio button");
    Activate(group.at(i));
  }
  for (const NupButton &choice : group) {
    g_signal_handlers_unblock_matched(choice.button, G_SIGNAL_MATCH_FUNC, 0, 0, nullptr, handler,
                                      nullptr);
  }
}

void ShowOrders(OrderBoxes boxes) {
  const auto &orders = G_PropTabOptions_helper->orders;
  for (size_t i = 0; i < orders.size(); ++i) {
    const bool shown =
        boxes == OrderBoxes::kAll || (boxes == OrderBoxes::kLeftAndRight && i < L_LeftAndRight);
    gtk_widget_set_visible(orders.at(i).box, shown ? TRUE : FALSE);
  }
}

void RedrawOrders(size_t count) {
  for (size_t i = 0; i < count; ++i) {
    change_pixmap(G_PropTabOptions_helper->orders.at(i).picture,
                  NupOrderPicture(L_Orders.at(i).value).c_str());
  }
}

// The orders of a sheet that was turned: the order may have been set meanwhile.
void ShowOrdersOfTurnedSheet(OrderBoxes boxes) {
  ShowOrders(boxes);
  if (boxes == OrderBoxes::kNone) return;
  Toggle(L_Orders, G_PropTabOptions_helper->orders, OrderClicked, CurrentNupOrder());
}

// The buttons of the work copy's choice, active without running their handlers.
void ShowChosen() {
  Toggle(L_Pages, G_PropTabOptions_helper->pages, PagesClicked, CurrentMultipleUp());
  Toggle(L_Orders, G_PropTabOptions_helper->orders, OrderClicked, CurrentNupOrder());
  ShowOrders(CurrentOrderBoxes());
}

void RedrawAll() {
  G_RedrawMultipleUpPixmaps();
  G_RedrawMultipleNupOrdersPixmaps();
}

// The picture stands for nothing that the button's text does not say, but is named for those who
// have it read.
NupButton NewNupButton(const NupButtonFacts &facts, const std::string &picture_file,
                       const NupButton &group) {
  GtkWidget *window = G_PropertiesWindow_helper->window;
  const std::string name = facts.name;
  const char *text = G_Translate(facts.label_key);
  NupButton choice;
  choice.box = StoreWidget(window, gtk_box_new(GTK_ORIENTATION_VERTICAL, L_PictureSpacing),
                           (name + "Vbox").c_str());
  choice.picture =
      StoreWidget(window, create_pixmap(window, picture_file.c_str()), (name + "Pixmap").c_str());
  SetAccessibleName(choice.picture, text);
  auto *member = group.button == nullptr ? nullptr : GTK_RADIO_BUTTON(group.button);
  choice.button = StoreWidget(window, gtk_radio_button_new_with_label_from_widget(member, text),
                              (name + "Radiobutton").c_str());
  gtk_widget_set_halign(choice.button, GTK_ALIGN_CENTER);
  GtkWidget *area = gtk_event_box_new();
  gtk_event_box_set_visible_window(GTK_EVENT_BOX(area), FALSE);
  gtk_container_add(GTK_CONTAINER(area), choice.picture);
  g_signal_connect(area, "button-press-event", G_CALLBACK(PicturePressed), choice.button);
  gtk_box_pack_start(GTK_BOX(choice.box), area, TRUE, TRUE, 0);
  gtk_box_pack_start(GTK_BOX(choice.box), choice.button, FALSE, FALSE, 0);
  return choice;
}

// A row of choices in `box`, with their handlers.
template <size_t N>
void AddGroup(GtkWidget *box, const std::array<NupButtonFacts, N> &facts,
              std::array<NupButton, N> &group, std::string (*picture)(const std::string &),
              void (*clicked)(GtkWidget *, gpointer)) {
  for (size_t i = 0; i < N; ++i) {
    const NupButtonFacts &fact = facts.at(i);
    group.at(i) = NewNupButton(fact, picture(fact.value), group.front());
    gtk_box_pack_start(GTK_BOX(box), group.at(i).box, FALSE, FALSE, 0);
    g_signal_connect(group.at(i).button, "clicked", G_CALLBACK(clicked),
                     const_cast<char *>(fact.value));
  }
}

GtkWidget *NewRow(GtkWidget *parent, const char *name) {
  GtkWidget *row = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, L_ChoiceSpacing);
  StoreWidget(G_PropertiesWindow_helper->window, row, name);
  gtk_box_pack_start(GTK_BOX(parent), row, FALSE, FALSE, 0);
  return row;
}

// The row of orders is as high as that of pages, so that nothing moves when orders come and go.
void KeepHeight(GtkWidget *pages, GtkWidget *orders) {
  GtkSizeGroup *sizes = gtk_size_group_new(GTK_SIZE_GROUP_VERTICAL);
  gtk_size_group_add_widget(sizes, pages);
  gtk_size_group_add_widget(sizes, orders);
  g_object_unref(sizes);
}

void AddNupFrame(const OptionTab &tab) {
  GtkWidget *window = G_PropertiesWindow_helper->window;
  PropTabOptionsHelper &helper = *G_PropTabOptions_helper;
  GtkWidget *frame =
      StoreWidget(window, gtk_frame_new(G_Translate("DEF_LBL_MULTIPLEUP_TITLE")), "NupFrame");
  gtk_widget_set_margin_start(gtk_frame_get_label_widget(GTK_FRAME(frame)), kTabBorder);
  gtk_box_pack_start(GTK_BOX(tab.page), frame, FALSE, FALSE, 0);
  GtkWidget *rows =
      StoreWidget(window, gtk_box_new(GTK_ORIENTATION_VERTICAL, kTabSpacing), "NupVbox");
  gtk_container_set_border_width(GTK_CONTAINER(rows), kTabBorder);
  gtk_container_add(GTK_CONTAINER(frame), rows);
  GtkWidget *pages = NewRow(rows, "NupHbox");
  GtkWidget *orders = NewRow(rows, "NupOrderHbox");
  AddGroup(pages, L_Pages, helper.pages, MultipleUpPicture, PagesClicked);
  AddGroup(orders, L_Orders, helper.orders, NupOrderPicture, OrderClicked);
  KeepHeight(pages, orders);
  gtk_widget_show_all(frame);
  for (const NupButton &order : helper.orders) gtk_widget_set_no_show_all(order.box, TRUE);
  ShowChosen();
  G_OptionChangeHooks.show_nup_orders = ShowOrdersOfTurnedSheet;
  G_OptionChangeHooks.redraw_multiple_up = RedrawAll;
}

}  // namespace

GtkWidget *create_PropTabOptions() {
  const LogScope log("create_PropTabOptions");
  GtkWidget *window = G_PropertiesWindow_helper->window;
  const OptionTab tab = NewOptionTab("OptionsVbox");
  G_PropTabOptions_helper = std::make_unique<PropTabOptionsHelper>();
  G_PropTabOptions_helper->page = tab.page;
  GtkGrid *grid = GTK_GRID(tab.grid);
  AddOptionRows(window, grid, Page::kOptions);
  if (CurrentQueueType().has_pages_a_sheet) AddNupFrame(tab);
  AddMoreOptions(window, tab.page);
  AddDefaultsButton(tab, "DefaultOptionsButton", ButtonOptionsDefaultsPressed);
  return tab.page;
}

void RadioButtonNupPressed(const char *value) {
  const LogScope log("RadioButtonNupPressed");
  if (!HasButtons()) return;
  const PropTabOptionsHelper &helper = *G_PropTabOptions_helper;
  if (!IsChosen(L_Pages, helper.pages, value)) return;
  const OrderBoxes boxes = ChooseMultipleUp(value);
  ShowOrders(boxes);
  if (boxes == OrderBoxes::kNone) return;
  RedrawOrders(boxes == OrderBoxes::kAll ? helper.orders.size() : L_LeftAndRight);
  Activate(helper.orders.front());
  RadioButtonNupOrderPressed(L_Orders.front().value);
}

void RadioButtonNupOrderPressed(const char *order) {
  const LogScope log("RadioButtonNupOrderPressed");
  if (!HasButtons() || !IsChosen(L_Orders, G_PropTabOptions_helper->orders, order)) return;
  ChooseNupOrder(order);
}

void ShowMultipleUp() {
  if (!HasButtons()) return;
  ShowChosen();
  RedrawAll();
}

void G_RedrawMultipleUpPixmaps() {
  const LogScope log("G_RedrawMultipleUpPixmaps");
  if (!HasButtons()) return;
  for (size_t i = 0; i < L_Pages.size(); ++i) {
    change_pixmap(G_PropTabOptions_helper->pages.at(i).picture,
                  MultipleUpPicture(L_Pages.at(i).value).c_str());
  }
}

void G_RedrawMultipleNupOrdersPixmaps() {
  const LogScope log("G_RedrawMultipleNupOrdersPixmaps");
  if (!HasButtons()) return;
  if (QueueFeatureValue(kNupKey).empty()) {
    Log(2, "NUP not defined! There is no need for redrawing!");
    return;
  }
  RedrawOrders(L_Orders.size());
}

void ButtonOptionsDefaultsPressed() {
  const LogScope log("ButtonOptionsDefaultsPressed");
  const PageReset result = ResetPage(Page::kOptions);
  if (result == PageReset::kStopped) return;
  const bool more_changed = ResetMoreOptions();
  // The lists of installable options too: a resolution can conflict with what is installed.
  if (result == PageReset::kChanged || more_changed) RefillAfterDefaults();
  if (!HasButtons()) {
    ChooseMultipleUp("1");
    return;
  }
  Activate(G_PropTabOptions_helper->pages.front());
  RadioButtonNupPressed("1");
}
