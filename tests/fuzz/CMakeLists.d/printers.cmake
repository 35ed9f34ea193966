# The reader of printer descriptions.
kpx_add_fuzzer(NAME paf SOURCES fuzz/paf_fuzz.cpp)
