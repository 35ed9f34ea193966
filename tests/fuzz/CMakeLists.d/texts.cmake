# The readers of the program's own text files, and of what is dropped on the print tool.
kpx_add_fuzzer(NAME messages SOURCES fuzz/messages_fuzz.cpp)
kpx_add_fuzzer(NAME help SOURCES fuzz/help_fuzz.cpp)
kpx_add_fuzzer(NAME fontmap SOURCES fuzz/fontmap_fuzz.cpp)
kpx_add_fuzzer(NAME uri_list SOURCES fuzz/uri_list_fuzz.cpp)
