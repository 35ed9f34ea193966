# Custom paper sizes and media types.
kpx_add_test(NAME custom_sizes LIBS kpx_core LABEL unit
  SOURCES unit/customsizes_test.cpp unit/customentries_test.cpp)
