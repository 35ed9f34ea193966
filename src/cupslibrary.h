// libcups, loaded when it is first needed: the windows that never speak to the print service open
// without it (it and the libraries below it take longer to load than a window's texts).
#pragma once

#include <cups/cups.h>
#include <cups/http.h>
#include <cups/ipp.h>

struct CupsLibrary {
#define KPX_CUPS(name) decltype(&::name) name;
#include "cupsfunctions.inc"
#undef KPX_CUPS
};

// The library, loaded by the first call, from whatever thread; null when this host has none.
const CupsLibrary *LoadCups();
