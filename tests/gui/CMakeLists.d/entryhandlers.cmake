# Handlers that are called without any window.
kpx_add_test(NAME entry_handlers LIBS kpx_gui LABEL gui SOURCES gui/entryhandlers_test.cpp)
