# The rules of the administration windows.
kpx_add_test(NAME entry_filters LIBS kpx_core LABEL unit SOURCES unit/entryfilters_test.cpp)
kpx_add_test(NAME administration LIBS kpx_core LABEL unit SANDBOX bare
  SOURCES unit/queuenames_test.cpp unit/savequeues_test.cpp unit/foundqueues_test.cpp)
kpx_add_test(NAME printersearch LIBS kpx_core LABEL unit SOURCES unit/printersearch_test.cpp)
