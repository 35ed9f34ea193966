#include "pagetable.h"

#include "chelp.h"
#include "globals.h"
#include "optionstate.h"
#include "textencoding.h"

namespace {

constexpr size_t L_HelpBuffer = 10239;

#define HELP(...) \
  std::vector<const char *> { __VA_ARGS__ }
#define PAGE(name, word, admin_help, tool_help, has_defaults, ...) \
  {Page::k##name, word,      #name "Label", "DEF_TAB_" word,       \
   admin_help,    tool_help, has_defaults,  __VA_ARGS__},
const std::vector<PropertyPage> L_AllPages = {
#include "pagetable.inc"
};
#undef PAGE
#undef HELP

bool IsAdministration() { return G_ProgName == kModeAdministration; }

const std::vector<const char *> &HelpBlocksOf(const PropertyPage &page) {
  return IsAdministration() ? page.admin_help : page.tool_help;
}

std::vector<PropertyPage> PagesOfProgram() {
  std::vector<PropertyPage> pages;
  for (const PropertyPage &page : L_AllPages) {
    if (!HelpBlocksOf(page).empty()) pages.push_back(page);
  }
  return pages;
}

const PropertyPage *PageAt(int place) {
  const std::vector<PropertyPage> &pages = PropertyPages();
  const bool is_there = place >= 0 && static_cast<size_t>(place) < pages.size();
  return is_there ? &pages[static_cast<size_t>(place)] : nullptr;
}

// The blocks of one page, those that all pages share included.
std::vector<const char *> HelpBlocks(const PropertyPage &page) {
  std::vector<const char *> blocks = HelpBlocksOf(page);
  if (page.page == Page::kOptions && CurrentQueueType().has_pages_a_sheet) {
    blocks.push_back("KPX_MULTIPLE_UP_BEGIN");
  }
  if (page.has_defaults) blocks.push_back("KPX_PROPERTIES_DEFAULTS_BUTTON_BEGIN");
  return blocks;
}

}  // namespace

const std::vector<PropertyPage> &PropertyPages() {
  static std::vector<PropertyPage> pages;
  static int program = kModeNeither;
  if (program != G_ProgName || pages.empty()) pages = PagesOfProgram();
  program = G_ProgName;
  return pages;
}

int PlaceOf(Page page) {
  const std::vector<PropertyPage> &pages = PropertyPages();
  for (size_t place = 0; place < pages.size(); ++place) {
    if (pages[place].page == page) return static_cast<int>(place);
  }
  return -1;
}

std::string PropertiesTitleKey(int place) {
  const PropertyPage *page = PageAt(place);
  if (page == nullptr) return "";
  const std::string program = IsAdministration() ? "ADMIN_" : "TOOL_";
  return "DEF_WND_" + program + "PROP_" + page->title_word + "_TITLE";
}

std::string PropertiesHelp(int place) {
  const PropertyPage *page = PageAt(place);
  std::vector<const char *> blocks;
  if (page != nullptr) blocks = HelpBlocks(*page);
  blocks.push_back("KPX_PROPERTIES_BUTTONS_BEGIN");
  std::string help;
  for (const char *block : blocks) help += fGetHelp_Function(G_Help.get(), block);
  return std::string(Utf8Prefix(help, L_HelpBuffer));
}
