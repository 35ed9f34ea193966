#include "ReadyAhead.h"

#include <gtk/gtk.h>
#include <pango/pangocairo.h>
#include <pthread.h>
#include <sched.h>
#include <sys/mman.h>
#include <unistd.h>

#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <semaphore>

#include "endprogram.h"
#include "ignoreresult.h"

namespace {

// Bytes: what the heap of a print tool, which has the least, holds when its window is shown.
constexpr size_t L_HeapRoom = 4 << 20;

// The font of the interface, as the toolkit asks Pango for it: with other values Pango would load
// it once more.
struct InterfaceFont {
  PangoFontDescription *description = nullptr;  // null: not to be loaded
  cairo_font_options_t *options = nullptr;      // null: the usual ones
  double resolution = 0;                        // dots per inch; negative: the usual one
};

// The font is this thread's until L_FontIsKnown is released, the font map is the other one's until
// that is joined. Nothing here has a destructor, since the program may end while the thread waits.
struct Ahead {
  bool begun = false;
  pthread_t thread = {};
  uintptr_t room = 0;  // the address of the heap's new room
  InterfaceFont font;
  PangoFontMap *fonts = nullptr;
};
Ahead L_Ahead;
std::binary_semaphore L_FontIsKnown{0};

// The processors but the one of this thread. A new thread might otherwise start on that one, and
// its creator would wait out a time slice, which is milliseconds.
std::optional<cpu_set_t> OtherProcessors() {
  cpu_set_t processors;
  if (sched_getaffinity(0, sizeof processors, &processors) != 0) return std::nullopt;
  const int own = sched_getcpu();
  if (own >= 0) CPU_CLR(static_cast<size_t>(own), &processors);
  if (CPU_COUNT(&processors) == 0) return std::nullopt;
  return processors;
}

// Lets the heap grow at once by what it will need, and keep that. The address of the new room.
uintptr_t GrowHeap() {
  void *volatile block = nullptr;  // else the compiler leaves out what is only allocated and freed
  // The first block is mapped for itself. Freeing it, the C library learns that blocks of this size
  // come and go: it takes the second one from the heap and does not give the heap's end back.
  for (int i = 0; i < 2; ++i) {
    block = std::malloc(L_HeapRoom);
    std::free(block);
  }
  return reinterpret_cast<uintptr_t>(block);
}

// Gives the free room its pages, which would otherwise be faulted in one by one. Changes no byte.
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
  if (L_Ahead.font.description != nullptr) LoadFont(L_Ahead.fonts, L_Ahead.font);
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
  // Signals are the main thread's. Pango's threads, which the new one starts, have its mask too.
  sigset_t all;
  sigset_t before;
  sigfillset(&all);
  pthread_sigmask(SIG_SETMASK, &all, &before);
  L_Ahead.begun = pthread_create(&L_Ahead.thread, &attributes, GetReady, nullptr) == 0;
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
  pthread_attr_destroy(&attributes);
}

void LoadFontAhead() {
  if (!L_Ahead.begun) return;
  gchar *name = nullptr;
  g_object_get(gtk_settings_get_default(), "gtk-font-name", &name, nullptr);
  PangoFontDescription *description = pango_font_description_from_string(name);
  g_free(name);
  if ((pango_font_description_get_set_fields(description) & PANGO_FONT_MASK_SIZE) == 0) {
    // The toolkit has a size of its own for it.
    pango_font_description_free(description);
  } else {
    GdkScreen *screen = gdk_screen_get_default();
    const cairo_font_options_t *options = gdk_screen_get_font_options(screen);
    L_Ahead.font.description = description;
    if (options != nullptr) L_Ahead.font.options = cairo_font_options_copy(options);
    L_Ahead.font.resolution = gdk_screen_get_resolution(screen);
  }
  // The libraries that set texts tidy up when the program exits.
  SetBeforeEnd(AwaitFont);
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
