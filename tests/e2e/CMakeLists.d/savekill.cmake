# Saves that are killed.
kpx_add_test(NAME save_kill LIBS kpx_core LABEL e2e SANDBOX bare SOURCES e2e/savekill_test.cpp)
