# The rows and words of the job window.
foreach(module jobrows jobstates listedqueues snmpstatus)
  kpx_add_test(NAME ${module} LIBS kpx_core LABEL unit SOURCES unit/${module}_test.cpp)
endforeach()
