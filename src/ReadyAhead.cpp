#include "ReadyAhead.h"

#include <gtk/gtk.h>
#include <malloc.h>
#include <pango/pangocairo.h>
#include <pthread.h>
#include <sched.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <optional>
#include <semaphore>

#include "ignoreresult.h"

namespace {

// What the heap of a print tool holds when its window is shown, rounded up.
constexpr int L_HeapRoom = 4 << 20;
// The C library's own, which mallopt cannot ask for.
constexpr int L_UsualMappedSize = 128 << 10;

// The font of the interface, as the toolkit asks Pango for it: with other values Pango would load
// it once more.
struct InterfaceFont {
  PangoFontDescription *description = nullptr;
  cairo_font_options_t *options = nullptr;  // null: the usual ones
  double resolution = 0;                    // dots per inch; negative: the usual one
};

// The thread's, until it is joined. Nothing here has a destructor, since the program may end while
// the thread runs.
struct Ahead {
  bool begun = false;
  pthread_t thread = {};
  uintptr_t room = 0;  // the address of the heap's new room
  InterfaceFont font;
  PangoFontMap *fonts = nullptr;
};
Ahead L_Ahead;
std::binary_semaphore L_FontIsKnown{0};

// The processors but the one of this thread. A new thread may else be started on that one, and what
// has made it stands still for as long as one turn lasts, which is milliseconds.
std::optional<cpu_set_t> OtherProcessors() {
  cpu_set_t processors;
  if (sched_getaffinity(0, sizeof processors, &processors) != 0) return std::nullopt;
  const int own = sched_getcpu();
  if (own >= 0) CPU_CLR(static_cast<size_t>(own), &processors);
  if (CPU_COUNT(&processors) == 0) return std::nullopt;
  return processors;
}

// Lets the heap grow at once by what it will need, and keep that; where it has grown.
uintptr_t GrowHeap() {
  mallopt(M_TRIM_THRESHOLD, 2 * L_HeapRoom);
  mallopt(M_MMAP_THRESHOLD, 2 * L_HeapRoom);  // the block comes from the heap, large as it is
  void *block = std::malloc(L_HeapRoom);
  const auto room = reinterpret_cast<uintptr_t>(block);
  std::free(block);
  mallopt(M_MMAP_THRESHOLD, L_UsualMappedSize);
  return room;
}

// Gives the free room its pages, which the theme would else ask for one by one. It changes no byte.
void FillWithPages(uintptr_t room) {
  const auto page = static_cast<uintptr_t>(sysconf(_SC_PAGESIZE));
  const uintptr_t first = (room + page - 1) / page * page;
  if (room == 0) return;
  IgnoreResult(madvise(reinterpret_cast<void *>(first), L_HeapRoom - page, MADV_POPULATE_WRITE),
               "a kernel before 5.14 does not know it; the pages come one by one then");
}

void LoadFont(PangoFontMap *map, const InterfaceFont &font) {
  PangoContext *context = pango_font_map_create_context(map);
  pango_context_set_font_description(context, font.description);
  pango_context_set_language(context, pango_language_get_default());
  pango_cairo_context_set_font_options(context, font.options);
  pango_cairo_context_set_resolution(context, font.resolution);
  PangoLayout *layout = pango_layout_new(context);
  pango_layout_set_text(layout, "A", -1);
  pango_layout_get_pixel_size(layout, nullptr, nullptr);
  g_object_unref(layout);
  g_object_unref(context);
}

void *GetReady(void *) {
  FillWithPages(L_Ahead.room);
  L_Ahead.fonts = pango_cairo_font_map_new();  // begins to read the fonts' configuration
  L_FontIsKnown.acquire();
  LoadFont(L_Ahead.fonts, L_Ahead.font);
  return nullptr;
}

}  // namespace

void BeginReadyAhead() {
  const std::optional<cpu_set_t> processors = OtherProcessors();
  if (!processors) return;
  L_Ahead.room = GrowHeap();
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setaffinity_np(&attributes, sizeof *processors, &*processors);
  L_Ahead.begun = pthread_create(&L_Ahead.thread, &attributes, GetReady, nullptr) == 0;
  pthread_attr_destroy(&attributes);
}

void LoadFontAhead() {
  if (!L_Ahead.begun) return;
  gchar *name = nullptr;
  g_object_get(gtk_settings_get_default(), "gtk-font-name", &name, nullptr);
  GdkScreen *screen = gdk_screen_get_default();
  const cairo_font_options_t *options = gdk_screen_get_font_options(screen);
  L_Ahead.font.description = pango_font_description_from_string(name);
  if (options != nullptr) L_Ahead.font.options = cairo_font_options_copy(options);
  L_Ahead.font.resolution = gdk_screen_get_resolution(screen);
  g_free(name);
  L_FontIsKnown.release();
}

void AwaitFont() {
  if (!L_Ahead.begun) return;
  L_Ahead.begun = false;
  pthread_join(L_Ahead.thread, nullptr);
  pango_cairo_font_map_set_default(PANGO_CAIRO_FONT_MAP(L_Ahead.fonts));
  g_object_unref(L_Ahead.fonts);
  pango_font_description_free(L_Ahead.font.description);
  if (L_Ahead.font.options != nullptr) cairo_font_options_destroy(L_Ahead.font.options);
}
