# The option logic on real printers.
kpx_add_test(NAME options_corpus LIBS kpx_core LABEL e2e SANDBOX bare
  SOURCES e2e/options_corpus_test.cpp)
