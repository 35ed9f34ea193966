// What a job holds, and the wrappings that a PostScript document may have.
#include <gtest/gtest.h>

#include "filterjob.h"
#include "jobkind.h"
#include "postscript.h"
#include "wrappedjob.h"

namespace {

using std::string_literals::operator""s;

constexpr char kUelText[] = "\033%-12345X";

std::string Refusal(const char *type, const std::string &job, size_t step = 65536) {
  JobSource source = TextSource(job, step);
  const std::string refusal = RefusalOf(type, &source);
  // Nothing is taken off the job.
  std::string rest;
  JobSink sink([&rest](std::string_view bytes) {
    rest += bytes;
    return true;
  });
  source.CopyRest(&sink);
  sink.Flush();
  EXPECT_EQ(rest, job);
  return refusal;
}

struct Foreign {
  const char *name;
  std::string start;
};

class ForeignFiles : public testing::TestWithParam<Foreign> {};

TEST_P(ForeignFiles, AreRefusedOnEveryQueue) {
  const std::string job = GetParam().start + std::string(100, '\0') + std::string(100000, 'x');
  const std::string start = "the file is "s + GetParam().name + ", but this queue prints only ";
  EXPECT_EQ(Refusal("postscript", job), start + "PostScript");
  EXPECT_EQ(Refusal("text", job, 1), start + "plain text");
  EXPECT_EQ(Refusal("pcl6", job), start + "PCL");
}

const Foreign kForeign[] = {
    {"a PDF document", "%PDF-1.7\n"},
    {"a PNG picture", "\x89PNG\r\n\x1A\n"},
    {"a JPEG picture", "\xFF\xD8\xFF\xE0"},
    {"a GIF picture", "GIF89a"},
    {"a TIFF picture", "II*\0"s},
    {"a TIFF picture", "MM\0*"s},
    {"a compressed file (gzip)", "\x1F\x8B\x08"},
    {"a compressed file (compress)", "\x1F\x9D\x90"},
    {"a compressed file (bzip2)", "BZh91AY&SY"},
    {"a compressed file (xz)", "\xFD\x37zXZ\0"s},
    {"raster data", "RaS2PwgRaster"},
    {"a program", "\x7F\x45LF\2\1\1"},
    {"a zip archive", "PK\003\004\024"},
    {"an office document", "PK\003\004\024mimetypeapplication/vnd.oasis.opendocument.text"},
    {"an office document", "PK\003\004\024[Content_Types].xml"},
    {"an office document", "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1"}};
INSTANTIATE_TEST_SUITE_P(Kinds, ForeignFiles, testing::ValuesIn(kForeign));

TEST(JobKind, AForeignFileIsFoundBehindJobControl) {
  const std::string control = std::string(kUelText) + "@PJL JOB\n@PJL SET COPIES=2\n";
  EXPECT_NE(Refusal("postscript", control + "@PJL ENTER LANGUAGE=POSTSCRIPT\n%PDF-1.4\n"), "");
  EXPECT_NE(Refusal("postscript", "\004\r\n%PDF-1.4\n"), "");
  // What the job's own control asks for is the printer's business.
  EXPECT_EQ(Refusal("postscript", control + "@PJL ENTER LANGUAGE=PDF\n%PDF-1.4\n"), "");
}

TEST(JobKind, ATextThatBeginsLikeAnotherKindIsText) {
  for (const char *text :
       {"GIF89a is a format.\n", "BM 12\n", "RIFF\n", "RaS2, a name\n", "BZh\n"}) {
    EXPECT_EQ(Refusal("text", text), "") << text;
  }
}

TEST(JobKind, PostScriptIsRefusedOnAPclQueue) {
  constexpr char kRefusal[] = "the file is PostScript, but this queue prints only PCL";
  const std::string control = std::string(kUelText) + "@PJL JOB\n";
  for (const std::string &job : {"%!PS-Adobe-3.0\n"s, "\xEF\xBB\xBF%!PS\n"s, "\004%!\n"s,
                                 "\001M%!PS\n"s, "\xC5\xD0\xD3\xC6"s, control + "%!PS\n"}) {
    EXPECT_EQ(Refusal("pcl6", job), kRefusal) << job;
  }
  const std::string enter = control + "@PJL ENTER LANGUAGE=POSTSCRIPT\n%!PS\n";
  EXPECT_EQ(Refusal("pcl6", enter), "") << "it is filtered as PostScript";
  EXPECT_EQ(Refusal("pcl6", "\033E\033&l0O text"), "");
  EXPECT_EQ(Refusal("pcl6", ") HP-PCL XL;2;0\n"), "");
  EXPECT_EQ(Refusal("pcl6", ""), "");
}

TEST(JobKind, PclIsRefusedOnAPostScriptQueue) {
  constexpr char kRefusal[] = "the file is PCL data, but this queue prints only PostScript";
  EXPECT_EQ(Refusal("postscript", "\033E\033&l0O text"), kRefusal);
  EXPECT_EQ(Refusal("postscript", ") HP-PCL XL;2;0\n"), kRefusal);
  const std::string enter = std::string(kUelText) + "@PJL ENTER LANGUAGE=PCL\n\033E";
  EXPECT_EQ(Refusal("postscript", enter), "") << "it goes through untouched";
}

TEST(JobKind, TextIsRefusedOnAPostScriptQueue) {
  for (const std::string &text :
       {"Hello world\n"s, "Dear Sir,\n\nfor (a) see below.\n"s, "print\n"s + "me\n",
        "Grüße aus Köln\n"s, "#!/bin/sh\necho \"$HOME\"\n"s, "% a TeX file\n\\documentclass{x}\n"s,
        "<html><body>x</body></html>\n"s, "1 2 3\n"s, "(a remark)\n"s, "\xFF\xFEH\0i\0"s,
        std::string(kUelText) + "@PJL ENTER LANGUAGE=POSTSCRIPT\nHello\n",
        std::string(70000, 'x')}) {
    EXPECT_EQ(Refusal("postscript", text),
              "the file is plain text, but this queue prints only PostScript")
        << text;
    EXPECT_EQ(Refusal("text", text), "") << text;
  }
}

TEST(JobKind, WhatMayBePostScriptIsPrinted) {
  for (const std::string &job :
       {""s, "\n\n"s, "% a comment\n"s, "%!"s, "%!PS\nHello\n"s, "\n\n\r\n%!PS\n"s,
        "\xEF\xBB\xBF%!PS-Adobe-3.0\n"s, "\004%!\n"s, "\001M%!PS\n"s, "\xC5\xD0\xD3\xC6"s,
        "100 100 moveto (x) show showpage\n"s, "/m {moveto} bind def 1 1 m\n"s,
        "(hello) print flush\n"s, "1 16#FF add =\n"s, "%%Page: 1 1\nm\n"s, "junk\n%!PS\n"s,
        "/x 1 def x y\n"s, "\x80\x01\x02 binary tokens\n"s, "statusdict begin foo end\n"s}) {
    EXPECT_EQ(Refusal("postscript", job), "") << job;
  }
}

TEST(JobKind, DataFullOfNulIsRefusedOnATextQueue) {
  constexpr char kRefusal[] = "the file is binary data, but this queue prints only plain text";
  EXPECT_EQ(Refusal("text", std::string(1000, '\0')), kRefusal);
  std::string mixed, utf16;
  for (int i = 0; i < 500; ++i) {
    mixed += "abc"s + std::string(static_cast<size_t>(i % 3), '\0');
    utf16 += "a\0"s;
  }
  EXPECT_EQ(Refusal("text", mixed), kRefusal);
  EXPECT_EQ(Refusal("text", utf16), "");
  EXPECT_EQ(Refusal("text", "\xFF\xFE" + std::string(1000, '\0')), "");
  EXPECT_EQ(Refusal("text", "a\0b"s), "");
  EXPECT_EQ(Refusal("text", std::string(10000, 'x') + std::string(20, '\0')), "");
}

// A PostScript printer with one option.
class WrappedJobs : public testing::Test {
 protected:
  WrappedJobs() { settings_.Apply({{"*NrCopies", "2"}}); }
  std::string Filtered(const std::string &job) const {
    const std::string output = RunOver(FilterPostScript, settings_, job);
    EXPECT_EQ(RunOver(FilterPostScript, settings_, job, 1), output);
    return output;
  }

  const PpdModel model_{};
  JobSettings settings_{model_};
};

constexpr char kCode[] = "[{\n<</NumCopies 2>>setpagedevice\n} stopped cleartomark\n";

TEST_F(WrappedJobs, AByteOrderMarkBeforePostScriptIsLeftOut) {
  EXPECT_EQ(Filtered("\xEF\xBB\xBF%!PS\nshowpage\n"), "%!PS\n"s + kCode + "showpage\n");
  EXPECT_EQ(Filtered("\xEF\xBB\xBF"s + kUelText + "@PJL ENTER LANGUAGE=POSTSCRIPT\n%!\nshowpage\n"),
            "%!\n"s + kCode + "showpage\n");
  EXPECT_EQ(Filtered("\xEF\xBB\xBF"), "");
}

// The four bytes of a number in a DOS header.
std::string Number(size_t number) {
  std::string bytes;
  for (int i = 0; i < 4; ++i) bytes += static_cast<char>(number >> 8 * i & 0xFF);
  return bytes;
}

std::string DosEps(size_t offset, const std::string &document, const std::string &behind) {
  const std::string header = "\xC5\xD0\xD3\xC6" + Number(offset) + Number(document.size());
  return header + std::string(offset - header.size(), '\x7F') + document + behind;
}

TEST_F(WrappedJobs, OfADosEpsFileTheDocumentIsPrinted) {
  const std::string document = "%!PS-Adobe-3.0 EPSF-3.0\n%%EndComments\nshowpage\n%%EOF\n";
  const std::string plain = Filtered(document);
  EXPECT_NE(plain.find(kCode), std::string::npos);
  EXPECT_EQ(Filtered(DosEps(30, document, "II*\0 a preview"s)), plain);
  EXPECT_EQ(Filtered(DosEps(100000, document, "")), plain);
}

TEST_F(WrappedJobs, ADosEpsFileThatHoldsNoDocumentFails) {
  for (const std::string &job :
       {DosEps(30, "not PostScript", ""), "\xC5\xD0\xD3\xC6"s, DosEps(30, "", ""),
        "\xC5\xD0\xD3\xC6" + Number(999999) + Number(5) + std::string(18, '\0') + "%!PS\n"}) {
    const FilteredJob result = ResultOver(FilterPostScript, settings_, job);
    EXPECT_EQ(result.result.failure,
              "the EPS file does not hold the PostScript that its header names");
    EXPECT_EQ(result.output, "");
  }
}

TEST_F(WrappedJobs, CodeGoesIntoATaggedDocumentWhichStaysTagged) {
  EXPECT_EQ(Filtered("\001M%!PS\n(\001D\001A) show\n"),
            "\001M%!PS\n"s + kCode + "(\001D\001A) show\n");
  EXPECT_EQ(Filtered("\001M%!PS\nshowpage\n\004"), "\001M%!PS\n"s + kCode + "showpage\n");
  EXPECT_EQ(Filtered("\001M%!PS\n1\n\004\r\n\001M%!PS\n2\n"),
            "\001M%!PS\n"s + kCode + "1\n\001M%!PS\n" + kCode + "2\n");
}

TEST_F(WrappedJobs, ATaggedDocumentEndsBeforeALanguageSwitch) {
  const std::string wrapped = std::string(kUelText) +
                              "@PJL ENTER LANGUAGE=POSTSCRIPT\n\001M%!PS\nshowpage\n" + kUelText +
                              "@PJL EOJ\n" + kUelText;
  EXPECT_EQ(Filtered(wrapped), "\001M%!PS\n"s + kCode + "showpage\n");
  // A quoted one is data.
  const std::string data = "\001M%!PS\n(\001[%-12345X) pop\n";
  EXPECT_EQ(Filtered(data), "\001M%!PS\n"s + kCode + "(\001[%-12345X) pop\n");
}

TEST_F(WrappedJobs, ATaggedDocumentKeepsEveryByte) {
  std::string bytes;
  for (int i = 0; i < 70000; ++i) {
    const char c = static_cast<char>(i * 7 + i / 256);
    const bool quoted = "\001\003\004\005\021\023\024\034"s.find(c) != std::string::npos;
    bytes += quoted ? "\001"s + static_cast<char>(c ^ 0x40) : std::string(1, c);
  }
  const std::string output = Filtered("\001M%!PS\n" + bytes);
  EXPECT_EQ(output, "\001M%!PS\n"s + kCode + bytes);
}

}  // namespace
