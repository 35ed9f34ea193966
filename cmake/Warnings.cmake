# One set of compile options for every target of the project.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

option(KPX_WERROR "let no warning pass; the presets do, so that they and ./check find each one" OFF)
add_compile_options(-Wall -Wextra -Wpedantic -Wconversion -Wshadow)
if(KPX_WERROR)
  add_compile_options(-Werror)
endif()
# A dropped failure is an error for every compiler ([[nodiscard]], src/ignoreresult.h).
add_compile_options(-Werror=unused-result)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # g++ 12 sees overlapping copies in "literal" + std::string, where there are none.
  add_compile_options(-Wno-restrict)
endif()
# Source names in the log and in assertions read "../src/main.cpp" wherever the tree lies.
add_compile_options(-ffile-prefix-map=${CMAKE_SOURCE_DIR}/=../)

# One program runs as root, one reads any user's jobs: an overflow ends them. The sanitizers have
# checks of their own, and _FORTIFY_SOURCE needs the optimizer.
add_compile_options(-fstack-protector-strong -fstack-clash-protection)
add_compile_options($<$<AND:$<CONFIG:Release>,$<NOT:$<BOOL:${KPX_SANITIZE}>>>:-D_FORTIFY_SOURCE=2>)
add_link_options(LINKER:-z,relro,-z,now)

option(KPX_SANITIZE "build with AddressSanitizer, LeakSanitizer and UndefinedBehaviorSanitizer" OFF)
if(KPX_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all
                      -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # With the sanitizers' code in it g++ takes parts of std::regex for uninitialized.
    add_compile_options(-Wno-maybe-uninitialized)
  endif()
endif()

# kpx_quick_start(PROGRAM): the C++ library's thousands of relocations would cost each start a
# millisecond or two.
function(kpx_quick_start program)
  if(NOT KPX_SANITIZE)
    target_link_options(${program} PRIVATE -static-libstdc++ -static-libgcc)
  endif()
endfunction()

# A program that the spooler runs, without the tests' environment: in the sanitizer build it knows
# itself which leaks are those of libraries.
function(kpx_run_by_spooler program)
  if(KPX_SANITIZE)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS
                 ${CMAKE_SOURCE_DIR}/tests/support/lsan.supp)
    file(READ ${CMAKE_SOURCE_DIR}/tests/support/lsan.supp KPX_LEAK_SUPPRESSIONS)
    configure_file(${CMAKE_SOURCE_DIR}/tests/support/spoolerleaks.cpp.in
                   ${CMAKE_BINARY_DIR}/spoolerleaks.cpp @ONLY)
    target_sources(${program} PRIVATE ${CMAKE_BINARY_DIR}/spoolerleaks.cpp)
  endif()
endfunction()
