#include "AccessKeys.h"

#include <string>
#include <vector>

#include "keyletters.h"

namespace {

// The labels of the texts.
struct Part {
  KeyedTexts keyed;
  std::vector<GtkLabel *> labels;
};

struct Parts {
  Part always;
  std::vector<Part> pages;
  Part spare;
  int page = -1;  // the one that is walked through
};

void Add(Part &part, GtkWidget *label) {
  if (!GTK_IS_LABEL(label)) return;
  part.keyed.texts.emplace_back(gtk_label_get_text(GTK_LABEL(label)));
  part.labels.push_back(GTK_LABEL(label));
}

Part &CurrentPart(Parts &parts) {
  return parts.page < 0 ? parts.always : parts.pages.at(static_cast<size_t>(parts.page));
}

// Return, Escape or the like.
bool HasKeyOfItsOwn(GtkWidget *button) {
  GList *closures = gtk_widget_list_accel_closures(button);
  const bool has = closures != nullptr;
  g_list_free(closures);
  return has;
}

bool NamesAField(GtkWidget *label) {
  GtkWidget *field = gtk_label_get_mnemonic_widget(GTK_LABEL(label));
  return field != nullptr && (gtk_widget_get_can_focus(field) != FALSE || GTK_IS_COMBO_BOX(field));
}

void Collect(GtkWidget *widget, gpointer data);

void CollectPages(GtkNotebook *notebook, Parts &parts) {
  const int outer = parts.page;
  for (int i = 0; i < gtk_notebook_get_n_pages(notebook); ++i) {
    GtkWidget *page = gtk_notebook_get_nth_page(notebook, i);
    Add(parts.always, gtk_notebook_get_tab_label(notebook, page));
    parts.pages.emplace_back();
    parts.page = static_cast<int>(parts.pages.size()) - 1;
    Collect(page, &parts);
    parts.page = outer;
  }
}

void Collect(GtkWidget *widget, gpointer data) {
  Parts &parts = *static_cast<Parts *>(data);
  // What the toolkit makes inside these is its own.
  if (GTK_IS_TREE_VIEW(widget) || GTK_IS_COMBO_BOX(widget) || GTK_IS_FILE_CHOOSER_WIDGET(widget)) {
    return;
  }
  if (GTK_IS_NOTEBOOK(widget)) {
    CollectPages(GTK_NOTEBOOK(widget), parts);
  } else if (GTK_IS_BUTTON(widget)) {
    Part &part = HasKeyOfItsOwn(widget) ? parts.spare : CurrentPart(parts);
    Add(part, gtk_bin_get_child(GTK_BIN(widget)));
  } else if (GTK_IS_LABEL(widget)) {
    if (NamesAField(widget)) Add(CurrentPart(parts), widget);
  } else if (GTK_IS_CONTAINER(widget)) {
    gtk_container_forall(GTK_CONTAINER(widget), Collect, data);
  }
}

// With "_" before the letter and before each "_" of its own.
std::string WithMnemonic(const std::string &text, size_t letter) {
  std::string marked;
  for (size_t i = 0; i < text.size(); ++i) {
    if (i == letter || text[i] == '_') marked += '_';
    marked += text[i];
  }
  return marked;
}

void Underline(const KeyedTexts &keyed, const std::vector<GtkLabel *> &labels) {
  for (size_t i = 0; i < labels.size(); ++i) {
    const std::string marked = WithMnemonic(keyed.texts[i], keyed.letters[i]);
    const bool is_marked = gtk_label_get_use_underline(labels[i]) != FALSE;
    if (is_marked && marked == gtk_label_get_label(labels[i])) continue;
    // Not the button's own text: that stays without "_" for whoever asks for it.
    gtk_label_set_text_with_mnemonic(labels[i], marked.c_str());
  }
}

// Letters that come into a window that is shown are underlined at once, unlike the others.
void HideUnlessAsked(GtkWindow *window) {
  if (gtk_widget_get_mapped(GTK_WIDGET(window)) == FALSE) return;
  if (gtk_window_get_mnemonics_visible(window) != FALSE) return;
  gtk_window_set_mnemonics_visible(window, TRUE);
  gtk_window_set_mnemonics_visible(window, FALSE);
}

}  // namespace

void GiveAccessKeys(GtkWidget *window) {
  Parts parts;
  Collect(window, &parts);
  KeyedWindow keyed{parts.always.keyed, {}, parts.spare.keyed};
  for (const Part &page : parts.pages) keyed.pages.push_back(page.keyed);
  ChooseKeyLetters(keyed);
  Underline(keyed.always, parts.always.labels);
  Underline(keyed.spare, parts.spare.labels);
  for (size_t i = 0; i < parts.pages.size(); ++i) {
    Underline(keyed.pages[i], parts.pages[i].labels);
  }
  HideUnlessAsked(GTK_WINDOW(window));
}
