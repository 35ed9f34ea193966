// Writes the directory of the texts that the programs choose for LANG.
#include <cstdio>

#include "language.h"

int main() { return std::puts(G_GetNlsDirFromLang().c_str()) < 0 ? 1 : 0; }
