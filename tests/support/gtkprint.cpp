// A program with a document, as GTK prints it: through GtkPrintOperation and GTK's own way to CUPS.
//
// Usage: gtkprint [--dialog] QUEUE PAGES [NAME=VALUE...]
//
// Prints PAGES pages with the print settings NAME=VALUE, which are those of GtkPrintSettings; those
// of the printer begin with "cups-". --dialog asks in GTK's print dialog first. Ends with 0 when
// the job was handed over, with 1 otherwise.

#include <gtk/gtk.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

void DrawPage(GtkPrintOperation *, GtkPrintContext *context, int page, void *) {
  cairo_t *cairo = gtk_print_context_get_cairo_context(context);
  cairo_select_font_face(cairo, "Sans", CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL);
  cairo_set_font_size(cairo, 99);
  cairo_move_to(cairo, 99, 199);
  cairo_show_text(cairo, std::to_string(page + 1).c_str());
}

}  // namespace

int main(int argc, char **argv) {
  const bool asks = argc > 1 && std::strcmp(argv[1], "--dialog") == 0;
  if (asks) {
    --argc;
    ++argv;
  }
  if (argc < 3 || !gtk_init_check(&argc, &argv)) return 1;
  GtkPrintSettings *settings = gtk_print_settings_new();
  gtk_print_settings_set_printer(settings, argv[1]);
  for (int i = 3; i < argc; ++i) {
    char *sign = std::strchr(argv[i], '=');
    if (sign == nullptr) return 1;
    gtk_print_settings_set(settings, std::string(argv[i], sign).c_str(), sign + 1);
  }
  GtkPrintOperation *operation = gtk_print_operation_new();
  gtk_print_operation_set_n_pages(operation, std::atoi(argv[2]));
  gtk_print_operation_set_print_settings(operation, settings);
  g_signal_connect(operation, "draw-page", G_CALLBACK(DrawPage), nullptr);
  GError *error = nullptr;
  const GtkPrintOperationResult result = gtk_print_operation_run(
      operation, asks ? GTK_PRINT_OPERATION_ACTION_PRINT_DIALOG : GTK_PRINT_OPERATION_ACTION_PRINT,
      nullptr, &error);
  if (error != nullptr) std::fprintf(stderr, "gtkprint: %s\n", error->message);
  // The job goes out from the main loop.
  while (result == GTK_PRINT_OPERATION_RESULT_APPLY && !gtk_print_operation_is_finished(operation))
    gtk_main_iteration();
  g_object_unref(operation);
  g_object_unref(settings);
  return result == GTK_PRINT_OPERATION_RESULT_APPLY && error == nullptr ? 0 : 1;
}
