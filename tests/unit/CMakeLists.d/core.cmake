# The object library, the texts, the log and the print tool's core.
kpx_add_test(NAME object_library LIBS kpx_core LABEL unit
  SOURCES unit/cstring_test.cpp unit/clist_test.cpp unit/chash_test.cpp unit/cselection_test.cpp)
