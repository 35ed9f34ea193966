# The job window with a real spooler.
foreach(test IN ITEMS jobs jobs_many jobs_snmp jobs_testpage jobs_questions jobs_assistive)
  kpx_add_test(NAME ${test} LIBS kpx_core kpx_guidriver LABEL e2e SANDBOX full TIMEOUT 600
    SOURCES e2e/${test}_test.cpp)
  target_compile_definitions(test_${test} PRIVATE KPX_MAKEQUEUES="$<TARGET_FILE:makequeues>")
  add_dependencies(test_${test} makequeues)
endforeach()
target_link_libraries(test_jobs_many PRIVATE Cups::Cups)
target_link_libraries(test_jobs_questions PRIVATE kpx_loopback)
target_compile_definitions(test_jobs_assistive PRIVATE
  KPX_JOBSWINDOW="${CMAKE_CURRENT_SOURCE_DIR}/support/jobswindow")
