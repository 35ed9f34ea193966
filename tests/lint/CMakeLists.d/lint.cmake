# The tree against its own rules.
add_test(NAME lint_structure
         COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/lint/structure.py ${PROJECT_SOURCE_DIR})
add_test(NAME lint_structure_checker
         COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/lint/structure_test.py)
add_test(NAME lint_documents COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/lint/documents.py
         ${PROJECT_SOURCE_DIR} ${CMAKE_BINARY_DIR})
add_test(NAME lint_documents_checker
         COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/lint/documents_test.py)
add_test(NAME lint_shell COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/lint/shell ${PROJECT_SOURCE_DIR})
add_test(NAME lint_manuals COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/lint/manuals ${PROJECT_SOURCE_DIR})
add_test(NAME lint_desktop COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/lint/desktop ${PROJECT_SOURCE_DIR})
add_test(NAME lint_format COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/lint/format ${PROJECT_SOURCE_DIR})
set_tests_properties(lint_structure lint_structure_checker lint_documents lint_documents_checker
                     lint_shell lint_manuals lint_desktop lint_format
                     PROPERTIES LABELS lint)
if(KPX_LONG)
  add_test(NAME lint_tidy
           COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/lint/tidy ${PROJECT_SOURCE_DIR} ${CMAKE_BINARY_DIR})
  set_tests_properties(lint_tidy PROPERTIES LABELS lint TIMEOUT 3600)
endif()
