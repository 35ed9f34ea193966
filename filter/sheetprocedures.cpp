#include "sheetprocedures.h"

#include <string>

#include "decimal.h"

namespace kpx::filter {

namespace {

// Kept in global memory, where no restore of the document undoes it. S is a string of flags:
// whose code runs (0 ours, 1 the document's before or behind its pages, 2 its page's), whether the
// document lies, whether it says so itself, and the pages begun (2: two or more).
constexpr std::string_view kBegin =
    "/KPXsheet 60 dict def\n"
    "/setglobal where { pop true setglobal userdict /KPXsheet 60 dict put } if\n"
    "KPXsheet begin\n"
    "/genuine { systemdict exch get exec } bind def\n"
    "/S 4 string def\n"
    "/M matrix def /F matrix def /T matrix def /B matrix def /R matrix def /D matrix def\n"
    "/least { 2 copy gt { exch } if pop } bind def\n"
    "/ours { S 0 get 0 eq } bind def /inpage { S 0 get 2 eq } bind def\n"
    "/own { S 0 0 put } bind def /job { S 0 1 put } bind def\n"
    "/lies { S 1 get 1 eq } bind def\n";

// The page at place P: M is its cell, F the page in it, B its default matrix. A page that fits
// better when it is turned has its top at the left of an upright cell, its left at the top of a
// lying one. The size is the document's, so that a restore gives the old one back.
constexpr std::string_view kLayout =
    "/fit { lies { lying } { upright } ifelse P get\n"
    "dup 0 6 getinterval M copy pop dup 6 get /W exch def 7 get /L exch def\n"
    "KPXsize aload pop /l exch def /w exch def\n"
    "/s W w div L l div least def /t W l div L w div least def\n"
    "t s 1.001 mul gt\n"
    "{ lies { 0 t neg t 0 W t l mul sub 2 div L t w mul add 2 div }\n"
    "{ 0 t t neg 0 W t l mul add 2 div L t w mul sub 2 div } ifelse }\n"
    "{ s 0 0 s W s w mul sub 2 div L s l mul sub 2 div } ifelse F astore M T concatmatrix\n"
    "D /defaultmatrix genuine B concatmatrix pop } bind def\n"
    "/box { newpath 0 0 moveto w 0 lineto w l lineto 0 l lineto closepath } bind def\n"
    "/cut { /initclip genuine B setmatrix box clip newpath } bind def\n"
    "/enter { fit /initgraphics genuine cut } bind def\n"
    "/look { S 2 get 0 eq S 3 get 1 eq and\n"
    "{ S 1 KPXsize aload pop gt { 1 } { 0 } ifelse put } if } bind def\n";

// What a document changed in its set-up holds for its first page, where it stands now.
constexpr std::string_view kPages =
    "/page { exch /P exch def S 3 2 copy get 1 add 2 least put look\n"
    "{ R currentmatrix D /defaultmatrix genuine T invertmatrix F concatmatrix R copy pop\n"
    "fit cut R concat } { enter } ifelse S 0 2 put } bind def\n"
    "/ship { own /showpage genuine job } bind def\n"
    "/size { KPXsize astore pop look inpage { enter } if } bind def\n";

constexpr std::string_view kOperators =
    "/xshowpage { inpage { enter } { /showpage genuine } ifelse } bind def\n"
    "/xcopypage { inpage not { /copypage genuine } if } bind def\n"
    "/xerasepage { inpage { gsave /initclip genuine B setmatrix 1 setgray box fill grestore }\n"
    "{ /erasepage genuine } ifelse } bind def\n"
    "/xinitgraphics { inpage { enter } { /initgraphics genuine } ifelse } bind def\n"
    "/xinitmatrix { inpage { B setmatrix } { /initmatrix genuine } ifelse } bind def\n"
    "/xinitclip { inpage { mark { false upath } stopped { cleartomark mark } if\n"
    "R currentmatrix cut setmatrix counttomark 0 gt { uappend } if pop }\n"
    "{ /initclip genuine } ifelse } bind def\n"
    "/xdefaultmatrix { inpage { B exch copy } { /defaultmatrix genuine } ifelse } bind def\n"
    "/xcurrentpagedevice { /currentpagedevice genuine ours not\n"
    "{ dup length 1 add dict copy dup /PageSize [ KPXsize aload pop ] put } if } bind def\n"
    "/xpaper { ours { pop pop } { size } ifelse } bind def\n";

// For setpagedevice: what is left for the device, and whether to hand it on. The paper is ours, and
// with marks on the sheet the device stays as it is.
constexpr std::string_view kDevice =
    "/pagesize { dup xcheck not 1 index type /arraytype eq and\n"
    "{ dup length 2 eq { aload pop size } { pop } ifelse } { pop } ifelse } bind def\n"
    "/prepare { dup type /dicttype ne ours or { true } {\n"
    "dup /PageSize known { dup /PageSize get pagesize } if\n"
    "inpage { pop enter false } { dup length 1 add dict copy dropped { 1 index exch undef } "
    "forall\n"
    "dup length 0 gt { true } { pop false } ifelse } ifelse } ifelse } bind def\n";

// The operators as the document finds them. An error in the device must leave the stack of
// dictionaries as it was.
constexpr std::string_view kSetDevice =
    "systemdict /setpagedevice known { /setpagedevice\n"
    "{ KPXsheet begin prepare end { systemdict /setpagedevice get exec } if } def } if\n";
constexpr std::string_view kReplaced[] = {"showpage",      "copypage",         "erasepage",
                                          "initgraphics",  "initmatrix",       "initclip",
                                          "defaultmatrix", "currentpagedevice"};

// Older documents name their paper so; points.
struct NamedSize {
  std::string_view name;
  int width, length;
};
constexpr NamedSize kPapers[] = {
    {"letter", 612, 792}, {"lettersmall", 612, 792}, {"legal", 612, 1008}, {"ledger", 1224, 792},
    {"11x17", 792, 1224}, {"a3", 842, 1191},         {"a4", 595, 842},     {"a4small", 595, 842},
    {"a5", 420, 595},     {"b4", 729, 1032},         {"b5", 516, 729}};

std::string ArrayOf(const SheetPlan &plan) {
  std::string text = "[";
  for (size_t place = 0; place < plan.Places(); ++place) {
    const SheetCell cell = CellOf(plan, place);
    text += " [";
    for (const double number : cell.matrix) text += DecimalText(number) + " ";
    text += DecimalText(cell.width) + " " + DecimalText(cell.length) + "]\n";
  }
  return text + "]";
}

std::string Replacements() {
  std::string text;
  for (const std::string_view name : kReplaced) {
    const std::string key(name);
    text += "/" + key + " where { pop /" + key + " { KPXsheet begin x" + key + " end } def } if\n";
  }
  for (const NamedSize &paper : kPapers) {
    const std::string key(paper.name);
    text += "/" + key + " where { pop /" + key + " { " + std::to_string(paper.width) + " " +
            std::to_string(paper.length) + " KPXsheet begin xpaper end } def } if\n";
  }
  return text;
}

}  // namespace

std::string SheetProcedures(const SheetCells &cells) {
  std::string code = "%%BeginResource: procset KPXsheet 1.0 0\n";
  const PpdPageSize &page = cells.page;
  code += "userdict begin\n/KPXsize [ " + DecimalText(page.width) + " " + DecimalText(page.length) +
          " ] def\n";
  code += kBegin;
  code += "/upright " + ArrayOf(cells.upright) + " def\n/lying " + ArrayOf(cells.lying) + " def\n";
  code += "/dropped [ /PageSize /ImagingBBox /Orientation /BeginPage /EndPage";
  code += cells.keeps_sides ? " /Duplex /Tumble ] def\n" : " ] def\n";
  if (cells.is_lying) code += "S 1 1 put S 2 1 put\n";
  code += std::string(kLayout) + std::string(kPages) + std::string(kOperators);
  code += std::string(kDevice) + "job end\n/setglobal where { pop false setglobal } if\n";
  code += Replacements() + std::string(kSetDevice) + "end\n%%EndResource\n";
  return code;
}

std::string OwnCode(std::string_view code) {
  if (code.empty()) return {};
  return "KPXsheet begin own end\n" + std::string(code) + "KPXsheet begin job end\n";
}

std::string BeginCell(size_t place, bool is_first_of_document) {
  return "KPXsheet begin " + std::to_string(place) + (is_first_of_document ? " true" : " false") +
         " page end\n";
}

std::string EndSheet() { return "KPXsheet begin ship end\n"; }

}  // namespace kpx::filter
