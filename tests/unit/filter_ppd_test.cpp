// Reading PPD files: encodings, what libcups adds, broken files.
#include <gtest/gtest.h>

#include "ppdadaptor.h"
#include "ppdtext.h"
#include "temporarydirectory.h"
#include "textencoding.h"

using namespace kpx::filter;

namespace {

const std::string kOffice = std::string(KPX_TEST_DATA) + "/data/ppd/office.ppd";

// A PPD file with one feature, `before` in front of it.
std::string SmallPpd(const std::string &before, const std::string &translation = "Text") {
  return "*PPD-Adobe: \"4.3\"\n" + before +
         "*OpenUI *Colour/Colour: PickOne\n*DefaultColour: Red\n*Colour Red/" + translation +
         ": \"red\"\n*CloseUI: *Colour\n";
}

std::string TranslationOf(const std::string &ppd) {
  PpdError error;
  const auto model = ReadPpd(ppd, &error);
  if (!model) return "unreadable: " + error.Text("ppd");
  return model->features.at(0).choices.at(0).text;
}

PpdModel Office() {
  PpdError error;
  auto model = ReadPpdFile(kOffice, &error);
  EXPECT_TRUE(model) << error.Text(kOffice);
  return model.value_or(PpdModel{});
}

TEST(PpdEncoding, AFileThatDeclaresLatin1ButIsUtf8IsReadAsUtf8) {
  EXPECT_EQ(TranslationOf(SmallPpd("*LanguageEncoding: ISOLatin1\n", "Größe")), "Größe");
}

TEST(PpdEncoding, AByteOrderMarkIsNoPartOfTheFile) {
  for (const char *declared :
       {"", "*LanguageEncoding: UTF-8\n", "*LanguageEncoding: MacStandard\n"}) {
    EXPECT_EQ(TranslationOf("\xEF\xBB\xBF" + SmallPpd(declared, "Größe")), "Größe") << declared;
  }
}

TEST(PpdEncoding, ALatin1FileIsReadAsLatin1) {
  EXPECT_EQ(TranslationOf(SmallPpd("*LanguageEncoding: ISOLatin1\n",
                                   "Gr\xF6\xDF"
                                   "e")),
            "Größe");
}

TEST(PpdEncoding, AFileWithoutADeclarationIsReadEitherWay) {
  EXPECT_EQ(TranslationOf(SmallPpd("", "Größe")), "Größe");
  EXPECT_EQ(TranslationOf(SmallPpd("",
                                   "Gr\xF6\xDF"
                                   "e")),
            "Größe");
}

TEST(PpdEncoding, ACommentInAnotherEncodingDoesNotSpoilTheTexts) {
  EXPECT_EQ(TranslationOf(SmallPpd("*LanguageEncoding: ISOLatin1\n*% \xA9 2001\n", "Größe")),
            "Größe");
}

TEST(PpdEncoding, HexadecimalBytesOfATranslationAreDecodedToo) {
  EXPECT_EQ(TranslationOf(SmallPpd("*LanguageEncoding: ISOLatin1\n", "<E9>t<E9>")), "été");
  EXPECT_EQ(TranslationOf(SmallPpd("*LanguageEncoding: ISOLatin1\n", "<C3A9>t<C3A9>")), "été");
}

TEST(PpdEncoding, OtherDeclaredEncodingsAreConverted) {
  EXPECT_EQ(TranslationOf(SmallPpd("*LanguageEncoding: ISOLatin2\n", "\xB1")), "ą");
  EXPECT_EQ(TranslationOf(SmallPpd("*LanguageEncoding: WindowsANSI\n", "\x80")), "€");
}

TEST(PpdEncoding, AnotherDeclaredEncodingGivesWayToValidUtf8) {
  EXPECT_EQ(TranslationOf(SmallPpd("*LanguageEncoding: WindowsANSI\n", "Größe")), "Größe");
}

TEST(PpdEncoding, ANameInFrontOfTheDeclarationIsReadLikeOnesBehindIt) {
  PpdError error;
  const auto model =
      ReadPpd(SmallPpd("*NickName: \"Büro\"\n*LanguageEncoding: ISOLatin1\n"), &error);
  ASSERT_TRUE(model);
  EXPECT_EQ(model->nick_name, "Büro");
}

TEST(PpdText, LineFeedsOfATranslationBecomeOneBlank) {
  EXPECT_EQ(CleanText("one\r\n\ntwo\nthree"), "one two three");
  EXPECT_EQ(CleanText("a\001b\177c"), "abc");
}

TEST(PpdText, HexadecimalCodeIsDecodedAndOtherAngleBracketsStay) {
  EXPECT_EQ(DecodeHex("@PJL<0D 0A>x<<1>>y<4>"), "@PJL\r\nx<<1>>y<4>");
}

TEST(PpdReading, ChoicesThatOnlyTheReaderAddsAreLeftOut) {
  const PpdModel model = Office();
  const PpdFeature *size = model.FindFeature("PageSize");
  ASSERT_NE(size, nullptr);
  EXPECT_EQ(size->FindChoice("Custom"), nullptr);
  EXPECT_TRUE(size->custom.has_value());
  EXPECT_EQ(model.FindFeature("PageRegion")->FindChoice("Custom"), nullptr);
}

TEST(PpdReading, AChoiceNamedCustomThatTheFileDefinesStays) {
  PpdError error;
  const auto model =
      ReadPpd(SmallPpd("*OpenUI *Mode/Mode: PickOne\n*Mode Custom/Own: \"own\"\n*CloseUI: *Mode\n"
                       "*CustomMode True: \"x\"\n*ParamCustomMode Value: 1 int 1 2\n"),
              &error);
  ASSERT_TRUE(model);
  EXPECT_NE(model->FindFeature("Mode")->FindChoice("Custom"), nullptr);
}

TEST(PpdReading, JobControlCodeIsDecodedForEveryKeywordOfThatSection) {
  const PpdModel model = Office();
  EXPECT_EQ(model.FindFeature("Delivery")->choices.at(0).code, "@PJL SET DELIVERY=PRINT\n");
  EXPECT_EQ(model.FindFeature("Delivery")->section, PpdSection::Jcl);
  EXPECT_EQ(model.jcl_begin, "\033%-12345X@PJL JOB\n");
  EXPECT_TRUE(model.pjl);
}

TEST(PpdReading, CustomSizesKeepTheirOrderNumberAndParameters) {
  const PpdModel model = Office();
  const PpdCustom &custom = *model.FindFeature("PageSize")->custom;
  EXPECT_EQ(custom.order, 35);
  ASSERT_EQ(custom.parameters.size(), 5u);
  EXPECT_EQ(custom.parameters[0].name, "Width");
  EXPECT_EQ(custom.parameters[4].name, "Orientation");
  EXPECT_EQ(custom.parameters[4].min, 1);
}

PpdModel ReadSizes(const std::string &sizes) {
  PpdError error;
  return ReadPpd(SmallPpd("*OpenUI *PageSize: PickOne\n*DefaultPageSize: S\n*PageSize S: \"s\"\n"
                          "*PageSize T: \"t\"\n*CloseUI: *PageSize\n" +
                          sizes),
                 &error)
      .value_or(PpdModel{});
}

TEST(PpdReading, PageSizesThatAreNoneAreLeftOut) {
  for (const char *size :
       {"1e30 1e30", "1e300 842", "nan 842", "842 inf", "0 842", "595 -1", "595 100001"}) {
    const PpdModel model = ReadSizes("*PaperDimension S: \"" + std::string(size) +
                                     "\"\n*PaperDimension T: \"595 100000\"\n");
    EXPECT_EQ(model.page_sizes.count("S"), 0u) << size;
    EXPECT_EQ(model.page_sizes.count("T"), 1u) << size;
    EXPECT_NE(model.FindFeature("PageSize")->FindChoice("S"), nullptr) << size;
  }
}

TEST(PpdReading, APrintableAreaLiesOnThePaper) {
  const auto area = [](const std::string &text) {
    const PpdModel model = ReadSizes("*PaperDimension S: \"595 842\"\n" + text);
    const PpdPageSize &page = model.page_sizes.at("S");
    return std::vector{page.left, page.bottom, page.right, page.top};
  };
  const std::vector<double> whole = {0, 0, 595, 842};
  EXPECT_EQ(area("*ImageableArea S: \"12 18 583 824\"\n"), (std::vector<double>{12, 18, 583, 824}));
  EXPECT_EQ(area("*ImageableArea S: \"-5 10 600 842.5\"\n"),
            (std::vector<double>{0, 10, 595, 842}));
  EXPECT_EQ(area("*ImageableArea S: \"400 1e30 300 1e300\"\n"), whole);
  EXPECT_EQ(area(""), whole);
}

TEST(PpdReading, TheEndOfAValueWithoutBeginningIsDropped) {
  const std::string stray =
      SmallPpd("") + "@PJL SET HOLD = ON\n@PJL SET HOLDTYPE = PRIVATE\"\n*End\n";
  EXPECT_EQ(TranslationOf(stray + "*ModelName: \"x\"\n"), "Text");
}

TEST(PpdReading, OtherLinesWithoutAsteriskAreAnErrorOfTheirLine) {
  PpdError error;
  EXPECT_FALSE(ReadPpd(SmallPpd("*FormatVersion: \"4.3\"\nstray words\n"), &error));
  EXPECT_EQ(error.Text("a.ppd"), "a.ppd: line 3: Missing asterisk in column 1");
}

TEST(PpdReading, AFileThatIsNoPpdIsRefused) {
  for (const std::string text : {"", "hello\n",
                                 "\x7F"
                                 "ELF\x01\x02",
                                 "*Other: \"1\"\n"}) {
    PpdError error;
    EXPECT_FALSE(ReadPpd(text, &error)) << text;
    EXPECT_FALSE(error.reason.empty()) << text;
  }
}

TEST(PpdReading, AFileThatCannotBeReadSaysWhy) {
  PpdError error;
  EXPECT_FALSE(ReadPpdFile("/nonexistent/x.ppd", &error));
  EXPECT_EQ(error.Text("/nonexistent/x.ppd"), "/nonexistent/x.ppd: No such file or directory");
  EXPECT_FALSE(ReadPpdFile("/tmp", &error));
  EXPECT_EQ(error.Text("/tmp"), "/tmp: Is a directory");
}

TEST(PpdReading, CarriageReturnsAtLineEndsChangeNothing) {
  std::string crlf;
  for (const char c : ContentOf(kOffice))
    crlf += c == '\n' ? std::string("\r\n") : std::string(1, c);
  PpdError error;
  const auto model = ReadPpd(crlf, &error);
  ASSERT_TRUE(model) << error.Text("crlf");
  EXPECT_EQ(model->features.size(), Office().features.size());
  EXPECT_EQ(model->constraints.size(), Office().constraints.size());
}

}  // namespace
