// PostScript that keeps the pages of a document in cells of a sheet.
#pragma once

#include <string>
#include <string_view>

#include "sheets.h"

namespace kpx::filter {

// How the cells of a document lie.
struct SheetCells {
  SheetPlan upright, lying;  // for pages that are higher than wide, and for the others
  PpdPageSize page;          // the size of a page until the document sets another
  bool is_lying = false;     // the document says so, else its first page does
  bool keeps_sides = false;  // the document cannot choose between one and both sides of the paper
};

// To be run before anything of the document. From then on the operators that show, erase and
// initialise pages, and those that set up the device, change no more than the cell; the document
// sets the device's other parameters before its first page only.
std::string SheetProcedures(const SheetCells &cells);

// `code` that is not the document's, which all of it takes effect.
std::string OwnCode(std::string_view code);

// Begins the page at a place of the present sheet. What a document changed before its first page
// holds for that page.
std::string BeginCell(size_t place, bool is_first_of_document);

// Ends the sheet, which is printed.
std::string EndSheet();

}  // namespace kpx::filter
