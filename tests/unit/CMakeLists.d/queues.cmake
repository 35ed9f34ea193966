# The queue database and the spooler integration.
kpx_add_test(NAME queue_record LIBS kpx_core LABEL unit
  SOURCES unit/cprintqueue_test.cpp unit/textline_test.cpp)
