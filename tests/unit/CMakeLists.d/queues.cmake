# The queue database and the spooler integration.
kpx_add_test(NAME queue_record LIBS kpx_core LABEL unit
  SOURCES unit/cprintqueue_test.cpp unit/textline_test.cpp unit/queuelist_test.cpp)
kpx_add_test(NAME option_files LIBS kpx_core LABEL unit SANDBOX bare
  SOURCES unit/textfile_test.cpp unit/deffile_test.cpp unit/cprintqueues_test.cpp)
kpx_add_test(NAME spooler_integration LIBS kpx_core LABEL unit SANDBOX bare
  SOURCES unit/porting_test.cpp unit/interfacescript_test.cpp unit/scriptreader_test.cpp
    unit/seenscripts_test.cpp unit/queuecreation_test.cpp)
