# kpxctl on queues of the real spooler.
foreach(part queues declared check hosts completion preset)
  kpx_add_test(NAME ctl_${part} LIBS kpx_core nlohmann_json::nlohmann_json LABEL e2e SANDBOX full
    SOURCES e2e/ctl_${part}_test.cpp)
endforeach()
foreach(part windows property)
  kpx_add_test(NAME ctl_${part} LIBS kpx_core nlohmann_json::nlohmann_json LABEL e2e SANDBOX full
    SOURCES e2e/ctl_${part}_test.cpp support/adminsession.cpp)
endforeach()
target_compile_definitions(test_ctl_declared PRIVATE
  KPX_MANUAL="${CMAKE_SOURCE_DIR}/docs/man/kpxctl.8")
target_compile_definitions(test_ctl_completion PRIVATE
  KPX_ZSH_COMPLETIONS="${CMAKE_CURRENT_SOURCE_DIR}/support/zshcompletions")
# The other shells are in packages-long.txt.
if(NOT KPX_LONG)
  set_tests_properties(ctl_completion PROPERTIES ENVIRONMENT "GTEST_FILTER=-*OfFish*:*OfZsh*")
endif()
# Needs the packages of packages-long.txt.
if(KPX_LONG)
  kpx_add_test(NAME ctl_fleet LIBS kpx_core nlohmann_json::nlohmann_json LABEL e2e SANDBOX full
    SOURCES e2e/ctl_fleet_test.cpp)
  target_compile_definitions(test_ctl_fleet PRIVATE
    KPX_FLEET="${CMAKE_CURRENT_SOURCE_DIR}/support/fleet"
    KPX_FLEET_MANUAL="${CMAKE_SOURCE_DIR}/docs/fleet.md")
endif()
