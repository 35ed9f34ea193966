# The windows in every language.
kpx_add_test(NAME languages LIBS kpx_core kpx_guidriver LABEL e2e SANDBOX full TIMEOUT 1800
  SOURCES e2e/languages_test.cpp)
target_compile_definitions(test_languages PRIVATE KPX_PROJECT_VERSION="${PROJECT_VERSION}")
kpx_add_test(NAME locales LIBS kpx_core kpx_guidriver LABEL e2e SANDBOX full
  SOURCES e2e/locales_test.cpp)
target_compile_definitions(test_locales PRIVATE KPX_PROJECT_VERSION="${PROJECT_VERSION}")
# One more language, built as CONTRIBUTING.md says.
add_test(NAME new_language COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/e2e/new_language/check
         ${PROJECT_SOURCE_DIR} ${CMAKE_BINARY_DIR})
set_tests_properties(new_language PROPERTIES LABELS e2e DEPENDS stage)
# The windows in other themes.
kpx_add_test(NAME themes LIBS kpx_core kpx_guidriver LABEL e2e SANDBOX full
  SOURCES e2e/themes_test.cpp)
