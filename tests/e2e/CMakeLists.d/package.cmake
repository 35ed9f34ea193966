# The Debian package: built, then really installed where no staged installation lies.
set(KPX_PACKAGE ${CMAKE_BINARY_DIR}/package)
set(KPX_NO_STAGE ${CMAKE_BINARY_DIR}/empty_stage)
file(MAKE_DIRECTORY ${KPX_NO_STAGE})
add_test(NAME package_build COMMAND ${CMAKE_CPACK_COMMAND} -G DEB
         --config ${CMAKE_BINARY_DIR}/CPackConfig.cmake -B ${KPX_PACKAGE})
set_tests_properties(package_build PROPERTIES FIXTURES_SETUP package DEPENDS stage)

kpx_add_test(NAME package LIBS kpx_core kpx_guidriver LABEL e2e SANDBOX full STAGE ${KPX_NO_STAGE}
  SOURCES e2e/package_test.cpp)
target_compile_definitions(test_package PRIVATE KPX_MAKEQUEUES="$<TARGET_FILE:makequeues>"
  KPX_PROJECT_VERSION="${PROJECT_VERSION}" KPX_STAGE_DIR="${KPX_STAGE}"
  KPX_PACKAGE_DIR="${KPX_PACKAGE}")
add_dependencies(test_package makequeues)
set_tests_properties(package PROPERTIES FIXTURES_REQUIRED "stage;package")

# docs/guide.md, followed from the package on.
kpx_add_test(NAME guide LIBS kpx_core kpx_guidriver LABEL e2e SANDBOX full STAGE ${KPX_NO_STAGE}
  SOURCES e2e/guide_test.cpp support/printerjobs.cpp)
target_compile_definitions(test_guide PRIVATE KPX_GUIDE="${CMAKE_SOURCE_DIR}/docs/guide.md"
  KPX_PROJECT_VERSION="${PROJECT_VERSION}" KPX_PACKAGE_DIR="${KPX_PACKAGE}")
set_tests_properties(guide PROPERTIES FIXTURES_REQUIRED "stage;package")

# In a minimal Debian of its own, which is downloaded.
if(KPX_LONG)
  add_test(NAME package_minimal_root
           COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/e2e/minimal_root ${KPX_PACKAGE} ${CMAKE_BINARY_DIR}/tests)
  set_tests_properties(package_minimal_root PROPERTIES FIXTURES_REQUIRED package LABELS e2e
                       TIMEOUT 3600 SKIP_RETURN_CODE 77)
endif()
