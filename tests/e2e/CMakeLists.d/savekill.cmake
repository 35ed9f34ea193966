# Faults in the middle of a save.
add_library(kpx_faults STATIC support/faultinjection.cpp support/savedworld.cpp
            support/interruptedsave.cpp support/powercut.cpp support/adminsession.cpp)
target_include_directories(kpx_faults PUBLIC ${CMAKE_CURRENT_SOURCE_DIR}/support)
target_compile_definitions(kpx_faults PRIVATE
  KPX_SERVICE_FILE="${CMAKE_SOURCE_DIR}/packaging/kpx-queues.service")
target_link_libraries(kpx_faults PUBLIC kpx_core Cups::Cups)
# With a stand-in for the spooler and many queues.
kpx_add_test(NAME save_kill LIBS kpx_faults LABEL e2e SANDBOX bare
  SOURCES e2e/savekill_test.cpp)
# With the real spooler and all that belongs to a queue.
foreach(kind kill apply error powercut)
  kpx_add_test(NAME savefaults_${kind} LIBS kpx_faults LABEL e2e SANDBOX full
    SOURCES e2e/savefaults_${kind}_test.cpp)
endforeach()
