// PostScript documents of five pages in the manner of many programs. Page n shows the word
// "page<n>".
#pragma once

#include <cstdlib>
#include <stdexcept>
#include <string>
#include <vector>

#include "temporarydirectory.h"

// How a document lies: upright, in pages that are wider than high, or turned on upright pages.
enum class Lie { kUpright, kWide, kTurned };

struct Producer {
  std::string name;
  Lie lie;
  std::string text;
};

constexpr int kProducedPages = 5;

// What a program prints that is run in a directory of its own.
inline std::string ProducedBy(const std::string &command) {
  const TemporaryDirectory directory;
  const std::string line = "cd " + directory.Path("") + " && { " + command + "; } >out 2>/dev/null";
  if (std::system(line.c_str()) != 0) throw std::runtime_error("fails: " + command);
  return ContentOf(directory.Path("out"));
}

// `page` with its number for each "#", once a page.
inline std::string FivePages(const std::string &head, const std::string &page,
                             const std::string &end, bool is_descending = false) {
  std::string text = head;
  for (int i = 1; i <= kProducedPages; ++i) {
    for (const char c : page) {
      text +=
          c == '#' ? std::to_string(is_descending ? kProducedPages + 1 - i : i) : std::string(1, c);
    }
  }
  return text + end;
}

// The programs of this machine.
inline std::vector<Producer> InstalledProducers() {
  const std::string text =
      "for i in 1 2 3 4 5; do echo page$i; [ $i = 5 ] || printf '\\f'; done >t; ";
  const std::string pdf =
      "gs -q -dSAFER -dBATCH -dNOPAUSE -sDEVICE=pdfwrite -dAutoRotatePages=/None "
      "-dDEVICEWIDTHPOINTS=595 -dDEVICEHEIGHTPOINTS=842 -o d.pdf -c '1 1 5 { /Helvetica findfont "
      "60 scalefont setfont 60 740 moveto (page) show 1 string cvs show showpage } for'; ";
  const std::string wide =
      "gs -q -dSAFER -dBATCH -dNOPAUSE -sDEVICE=pdfwrite -dAutoRotatePages=/None "
      "-dDEVICEWIDTHPOINTS=842 -dDEVICEHEIGHTPOINTS=595 -o d.pdf -c '1 1 5 { /Helvetica findfont "
      "60 scalefont setfont 60 500 moveto (page) show 1 string cvs show showpage } for'; ";
  const std::string ps2write = "gs -q -dSAFER -dBATCH -dNOPAUSE -sDEVICE=ps2write -o - d.pdf";
  return {
      {"groff", Lie::kUpright,
       ProducedBy("for i in 1 2 3 4 5; do echo page$i; [ $i = 5 ] || echo .bp; done | "
                  "groff -Tps -P-pa4")},
      {"enscript", Lie::kUpright, ProducedBy(text + "enscript -q -B -M A4 -p - t")},
      {"enscript_header", Lie::kUpright, ProducedBy(text + "enscript -q -b 'x' -M A4 -p - t")},
      {"enscript_landscape", Lie::kTurned, ProducedBy(text + "enscript -q -r -B -M A4 -p - t")},
      {"ps2write", Lie::kUpright, ProducedBy(pdf + ps2write)},
      {"ps2write_wide", Lie::kWide, ProducedBy(wide + ps2write)},
      {"poppler", Lie::kUpright, ProducedBy(pdf + "pdftops d.pdf -")},
      {"poppler_level_1", Lie::kUpright, ProducedBy(pdf + "pdftops -level1 d.pdf -")},
      {"poppler_wide", Lie::kWide, ProducedBy(wide + "pdftops d.pdf -")},
      {"cairo", Lie::kUpright, ProducedBy(pdf + "pdftocairo -ps d.pdf -")},
      {"cairo_wide", Lie::kTurned, ProducedBy(wide + "pdftocairo -ps d.pdf -")},
  };
}

// The manners of programs that not every machine has.
inline std::vector<Producer> DescribedProducers() {
  const std::string font = "/Times-Roman findfont 40 scalefont setfont\n";
  const std::string show = "72 700 moveto (page#) show\n";
  const std::string eps =
      "%%BeginDocument: a.eps\n%!PS-Adobe-3.0 EPSF-3.0\n%%BoundingBox: 0 0 9 9\n%%Pages: 1\n"
      "%%Page: 1 1\n0 0 9 9 rectfill showpage\n%%Trailer\n%%EOF\n%%EndDocument\n";
  const std::string plain = "%!PS-Adobe-3.0\n%%Pages: 5\n%%EndComments\n%%BeginProlog\n";
  return {
      // TeX: a dictionary of its own, a save a page, the page in dots with the y axis downwards.
      {"tex", Lie::kUpright,
       FivePages("%!PS-Adobe-2.0\n%%Pages: 5\n%%PageOrder: Ascend\n%%BoundingBox: 0 0 596 842\n"
                 "%%EndComments\n%%BeginProcSet: tex.pro\n/TD 30 dict def TD begin\n"
                 "/bop { /SI save def 72 600 div dup neg scale 0 -7017 translate } def\n"
                 "/eop { SI restore showpage } def end\n%%EndProcSet\nTD begin\n"
                 "%%BeginPaperSize: a4\n/setpagedevice where { pop << /PageSize [595 842] >> "
                 "setpagedevice } { /a4 where { pop a4 } if } ifelse\n%%EndPaperSize\nend\n"
                 "%%EndProlog\n%%BeginSetup\n%%Feature: *Resolution 600dpi\nTD begin\n end\n"
                 "%%EndSetup\n",
                 "%%Page: # #\nTD begin # 0 bop /Times-Roman findfont [400 0 0 -400 0 0] makefont "
                 "setfont 800 900 moveto (page#) show eop end\n",
                 "%%Trailer\nuserdict /end-hook known { end-hook } if\n%%EOF\n")},
      // A pretty printer: two virtual pages' dictionary, marks at the end of the document.
      {"pretty_printer", Lie::kUpright,
       FivePages(
           "%!PS-Adobe-3.0\n%%Orientation: Portrait\n%%Pages: (atend)\n%%PageOrder: Ascend\n"
           "%%DocumentMedia: A4 595 842 0 () ()\n%%EndComments\n/a2dict 100 dict def\n"
           "a2dict begin\n%%BeginProlog\n%%BeginProcSet: a2 1.0\n/f { findfont exch scalefont "
           "setfont } bind def /pg { /pgsv save def } bind def\n%%EndProcSet\n%%EndProlog\n"
           "%%BeginSetup\n% Use A4.\n%%BeginFeature: *PageSize A4\nsystemdict /setpagedevice "
           "known { 2 dict dup /PageSize [595 842] put dup /ImagingBBox null put setpagedevice "
           "} if\n%%EndFeature\n%%EndSetup\n",
           "%%Page: (a-#) #\n%%BeginPageSetup\npg\n1 1 scale\n%%EndPageSetup\n"
           "gsave 30 30 moveto 0 10 rlineto stroke grestore 30 /Courier f 80 690 moveto "
           "(page#) show\n%%PageTrailer\npgsv restore showpage\n",
           "%%Trailer\nend\n%%Pages: 5\n%%EOF\n")},
      // An office suite: features in the page set-up, pages in a coordinate system of their own.
      {"office", Lie::kUpright,
       FivePages(
           "%!PS-Adobe-3.0\n%%BoundingBox: (atend)\n%%Pages: (atend)\n%%PageOrder: (atend)\n"
           "%%DocumentMedia: (atend)\n%%EndComments\n%%BeginProlog\n%%BeginResource: "
           "SDRes\n/b4_inc_state save def\n/dict_count countdictstack def\nuserdict begin\n"
           "end\n%%EndResource\n%%EndProlog\n%%BeginSetup\n%\n%%EndSetup\n",
           "%%Page: # #\n%%BeginPageSetup\n%\n%%BeginFeature: *PageSize A4\n<</DeferredMediaSel"
           "ection true /PageSize [595 842] /ImagingBBox null>> setpagedevice\n%%EndFeature\n"
           "%%PageBoundingBox: 18 18 577 824\ngsave\n[0.1 0 0 -0.1 18 824] concat\n"
           "%%EndPageSetup\n/Times-Roman findfont [600 0 0 -600 0 0] makefont setfont "
           "500 900 moveto (page#) show\n%%PageTrailer\ngrestore grestoreall\nshowpage\n\n",
           "%%Trailer\n%%BoundingBox: 0 0 595 842\n%%DocumentMedia: a4 595 842 0 () ()\n"
           "%%Pages: 5\n%%PageOrder: Ascend\n%%EOF\n")},
      // A driver of another system: state saved in the set-up, initialised on every page.
      {"driver", Lie::kUpright,
       FivePages("%!PS-Adobe-3.0\n%%Title: a\n%%Pages: (atend)\n%%PageOrder: Ascend\n"
                 "%%LanguageLevel: 2\n%%EndComments\n%%BeginDefaults\n%%PageBoundingBox: 12 12 583 "
                 "830\n%%EndDefaults\n%%BeginProlog\nuserdict /Drv 60 dict dup begin put\n"
                 "/Page { initgraphics initclip clippath pathbbox newpath pop pop translate 1 1 "
                 "scale } bind def /GS { gsave } bind def /GR { grestore } bind def end\n"
                 "%%EndProlog\n%%BeginSetup\n[{0\n%%BeginNonPPDFeature: NumCopies 1\n1 dict dup "
                 "/NumCopies 1 put setpagedevice\n%%EndNonPPDFeature\n} stopped cleartomark\n"
                 "[{\n%%BeginFeature: *PageSize A4\n<</PageSize [595 842] /ImagingBBox null>> "
                 "setpagedevice\n%%EndFeature\n} stopped cleartomark\n[{\n%%BeginFeature: *Duplex "
                 "None\n<</Duplex false>> setpagedevice\n%%EndFeature\n} stopped cleartomark\n"
                 "Drv begin\n%%EndSetup\n",
                 "%%Page: # #\n%%BeginPageSetup\n%%PageOrientation: Portrait\n/Pscript_save save "
                 "def erasepage Page\n%%EndPageSetup\nGS " +
                     font + show + "GR\n%%PageTrailer\nPscript_save restore showpage\n",
                 "%%Trailer\nend\n%%Pages: 5\n%%EOF\n")},
      // A browser of former times: matrices set from the default one.
      {"browser", Lie::kUpright,
       FivePages("%!PS-Adobe-3.0\n%%Pages: 5\n%%Orientation: Portrait\n%%EndComments\n"
                 "%%BeginProlog\n/F { exch findfont exch scalefont setfont } bind def\n"
                 "%%EndProlog\n",
                 "%%Page: # #\n%%BeginPageSetup\n/pagelevel save def\nmatrix defaultmatrix "
                 "setmatrix initclip 0.05 0.05 scale\n%%EndPageSetup\n/Times-Roman 800 F "
                 "1200 13000 moveto (page#) show\npagelevel restore\nshowpage\n",
                 "%%EOF\n")},
      // A toolkit: procedures bound in the prolog, paper from the set-up, pages in dots.
      {"toolkit", Lie::kUpright,
       FivePages("%!PS-Adobe-1.0\n%%BoundingBox: 0 0 595 842\n%%Pages: (atend)\n"
                 "%%DocumentFonts: (atend)\n%%EndComments\n%%BeginProlog\n/QS { showpage } bind "
                 "def /pageinit { 36 24 translate 0.06 -0.06 scale 0 -13220 translate } def "
                 "/QI { /savedContext save def pageinit } bind def /QP { savedContext restore QS } "
                 "bind def\n%%EndProlog\n%%BeginSetup\n/#copies 1 def\n%%EndSetup\n",
                 "%%Page: # #\n%%BeginPageSetup\nQI\n%%EndPageSetup\n/Times-Roman findfont "
                 "[700 0 0 -700 0 0] makefont setfont 900 1800 moveto (page#) show\nQP\n",
                 "%%Trailer\n%%Pages: 5\n%%DocumentFonts:\n%%EOF\n")},
      // A test page: its size from the page device and from the clipping path.
      {"test_page", Lie::kUpright,
       FivePages(plain + "/size { currentpagedevice /PageSize get aload pop } bind def\n"
                         "%%EndProlog\n",
                 "%%Page: # #\ngsave initclip newpath clippath pathbbox newpath /t exch def /r "
                 "exch def pop pop " +
                     font +
                     "size exch pop 142 sub t 842 sub add 72 r 595 sub add exch moveto "
                     "(page#) show grestore showpage\n",
                 "%%EOF\n")},
      // A wide drawing program: the page device turned page by page, with the size in the page.
      {"wide_pages", Lie::kWide,
       FivePages(plain + "%%EndProlog\n",
                 "%%Page: # #\n%%BeginPageSetup\nsave << /PageSize [842 595] /Orientation 0 >> "
                 "setpagedevice\n%%EndPageSetup\n" +
                     font + "72 480 moveto (page#) show showpage restore\n",
                 "%%EOF\n")},
      // A drawing program that turns its pages itself.
      {"turned_pages", Lie::kTurned,
       FivePages("%!PS-Adobe-3.0\n%%Orientation: Landscape\n%%Pages: 5\n%%EndComments\n"
                 "%%BeginProlog\n%%EndProlog\n",
                 "%%Page: # #\n%%BeginPageSetup\n90 rotate 0 -595 translate\n%%EndPageSetup\n" +
                     font + "72 480 moveto (page#) show showpage\n",
                 "%%EOF\n")},
      // A level 1 program: paper by its operator, one-sided by the status dictionary.
      {"level_1", Lie::kUpright,
       FivePages("%!PS-Adobe-2.0\n%%Pages: 5 1\n%%EndComments\n/m { moveto } bind def\n"
                 "%%EndProlog\n%%BeginSetup\nstatusdict /setduplexmode known { statusdict begin "
                 "false setduplexmode end } if\na4\n%%EndSetup\n",
                 "%%Page: # #\n" + font +
                     "72 700 m (gone) show erasepage 72 700 m "
                     "(page#) show showpage\n",
                 "%%Trailer\n")},
      // A scanner of pages that come last first.
      {"descending", Lie::kUpright,
       FivePages("%!PS-Adobe-3.0\n%%Pages: 5\n%%PageOrder: Descend\n%%EndComments\n",
                 "%%Page: # 1\n" + font + show + "showpage\n", "%%EOF\n", true)},
      // Figures in the text.
      {"figures", Lie::kUpright,
       FivePages(plain + "%%EndProlog\n",
                 "%%Page: # #\nsave /showpage {} def 300 300 translate\n" + eps + "restore " +
                     font + show + "showpage\n",
                 "%%EOF\n")},
      // Line ends of other systems, and an end of transmission.
      {"carriage_returns", Lie::kUpright,
       [&] {
         std::string text = FivePages(plain + "%%EndProlog\n",
                                      "%%Page: # #\n" + font + show + "showpage\n", "%%EOF\n");
         for (char &c : text) c = c == '\n' ? '\r' : c;
         return text + "\004";
       }()},
      // Data in a page that looks like marks.
      {"data", Lie::kUpright,
       FivePages(plain + "%%EndProlog\n",
                 "%%Page: # #\n" + font + show +
                     "currentfile 14 string\n%%BeginData: 2 ASCII Lines\n"
                     "readline pop pop\n%%Page: 7 7 %\n%%EndData\nshowpage\n",
                 "%%EOF\n")},
  };
}
