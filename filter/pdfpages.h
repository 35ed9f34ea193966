// What the pages of a PDF document are like, as pdfinfo of poppler-utils tells it.
#pragma once

#include "ppdmodel.h"

namespace kpx::filter {

// Whether each page of the PDF document in the file `document` lies upright on the whole of the
// paper, give or take a point, with nothing to fill in on it: then nothing is left to lay out.
// False too when that cannot be told. The position in the file afterwards is anywhere.
[[nodiscard]] bool FillPaper(int document, const PpdPageSize &paper);

}  // namespace kpx::filter
