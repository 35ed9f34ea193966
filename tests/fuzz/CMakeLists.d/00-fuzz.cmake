# The core once, as an instrumented archive, and each fuzz target beside it.
set(KPX_FUZZ_FLAGS -std=c++20 -O1 -g -fno-omit-frame-pointer -fsanitize=address,undefined
    -fno-sanitize-recover=all)
set(KPX_FUZZ_DIR ${CMAKE_BINARY_DIR}/fuzz)

# Compiles each source into an instrumented object; the objects' paths go to `out`.
function(kpx_fuzz_objects out)
  cmake_parse_arguments(F "" "DIRECTORY" "SOURCES;OPTIONS" ${ARGN})
  set(objects)
  foreach(source ${F_SOURCES})
    cmake_path(GET source FILENAME file)
    set(object ${KPX_FUZZ_DIR}/${F_DIRECTORY}/${file}.o)
    add_custom_command(OUTPUT ${object}
      COMMAND ${CMAKE_COMMAND} -E make_directory ${KPX_FUZZ_DIR}/${F_DIRECTORY}
      COMMAND ${KPX_FUZZ_CXX} ${KPX_FUZZ_FLAGS} -fsanitize=fuzzer-no-link
              -I${PROJECT_SOURCE_DIR}/src -I${KPX_NLS_DIR} ${F_OPTIONS}
              -MD -MF ${object}.d -c ${source} -o ${object}
      DEPENDS ${source} DEPFILE ${object}.d VERBATIM
      COMMENT "Fuzzing object ${F_DIRECTORY}/${file}")
    list(APPEND objects ${object})
  endforeach()
  set(${out} ${objects} PARENT_SCOPE)
endfunction()

get_target_property(core_sources kpx_core SOURCES)
list(TRANSFORM core_sources PREPEND ${PROJECT_SOURCE_DIR}/src/)
kpx_fuzz_objects(core_objects DIRECTORY core SOURCES ${core_sources}
  OPTIONS "-DKPX_VERSION=\"${PROJECT_VERSION}\"")
set(KPX_FUZZ_CORE ${KPX_FUZZ_DIR}/libcore.a)
add_custom_command(OUTPUT ${KPX_FUZZ_CORE}
  COMMAND ${CMAKE_COMMAND} -E rm -f ${KPX_FUZZ_CORE}
  COMMAND ${CMAKE_AR} qcs ${KPX_FUZZ_CORE} ${core_objects}
  DEPENDS ${core_objects} VERBATIM)
add_custom_target(fuzz_core DEPENDS ${KPX_FUZZ_CORE})

# kpx_add_fuzzer(NAME n SOURCES f... [OPTIONS compiler options...] [LINK linker options...]
#                [RUNS count] [MAX_LEN bytes])
# One libFuzzer program and one CTest entry "fuzz_<n>" that runs it `RUNS` times (20000 by default)
# or, on a slow machine, as often as it can in 150 seconds (600 in sanitizer runs); in long runs a
# million times. Weighing what it has learnt (-entropic) takes longer than most inputs do. So does
# looking for leaks after each input from which a library keeps memory (-detect_leaks): they are
# looked for once, at the end. The run starts from tests/fuzz/corpus/<n>, which must hold at least
# one file. What it learns stays in the build directory; an input that crashes it is left there as
# crash-<n>-*: copy it to the corpus.
function(kpx_add_fuzzer)
  cmake_parse_arguments(T "" "NAME;RUNS;MAX_LEN" "SOURCES;OPTIONS;LINK" ${ARGN})
  if(NOT T_RUNS)
    set(T_RUNS 20000)
  endif()
  if(KPX_LONG)
    # All of them, however slow the target or the machine is.
    set(T_RUNS 1000000)
    set(limit)
    set(timeout 36000)
  else()
    # On a machine under load it ends with fewer inputs.
    math(EXPR most_seconds "150 * ${KPX_TIMEOUT_FACTOR}")
    math(EXPR timeout "1200 * ${KPX_TIMEOUT_FACTOR}")
    set(limit -max_total_time=${most_seconds})
  endif()
  if(NOT T_MAX_LEN)
    set(T_MAX_LEN 4096)
  endif()
  set(sources)
  foreach(source ${T_SOURCES})
    cmake_path(ABSOLUTE_PATH source)
    list(APPEND sources ${source})
  endforeach()
  kpx_fuzz_objects(objects DIRECTORY ${T_NAME} SOURCES ${sources} OPTIONS ${T_OPTIONS})
  set(program ${KPX_FUZZ_DIR}/fuzz_${T_NAME})
  set(learnt ${KPX_FUZZ_DIR}/learnt/${T_NAME})
  add_custom_command(OUTPUT ${program}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${learnt}
    COMMAND ${KPX_FUZZ_CXX} ${KPX_FUZZ_FLAGS} -fsanitize=fuzzer ${objects} ${KPX_FUZZ_CORE}
            ${T_LINK} -o ${program}
    DEPENDS ${objects} fuzz_core ${KPX_FUZZ_CORE} VERBATIM
    COMMENT "Linking fuzz_${T_NAME}")
  add_custom_target(fuzz_${T_NAME} ALL DEPENDS ${program})
  add_test(NAME fuzz_${T_NAME}
    COMMAND ${program} -runs=${T_RUNS} -seed=1 -max_len=${T_MAX_LEN} -timeout=20 ${limit}
            -entropic=0 -detect_leaks=0 -print_final_stats=1
            -artifact_prefix=${KPX_FUZZ_DIR}/crash-${T_NAME}- ${learnt}
            ${CMAKE_CURRENT_SOURCE_DIR}/fuzz/corpus/${T_NAME})
  set_tests_properties(fuzz_${T_NAME} PROPERTIES LABELS fuzz TIMEOUT ${timeout})
endfunction()
