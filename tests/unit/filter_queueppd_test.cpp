// The PPD file that the spooler gets for a queue.
#include <gtest/gtest.h>

#include "filterjob.h"
#include "queueppd.h"
#include "queueppdfile.h"
#include "temporarydirectory.h"
#include "textfile.h"

namespace {

class QueueDescription : public testing::Test {
 protected:
  QueueDescription() { source_.model = ReadWholeFile(KPX_PPD_DIR "/vek41201.ppd").value(); }

  // The made text, read again.
  PpdModel Made() {
    made_ = MakeQueuePpd(source_);
    PpdError error;
    std::optional<PpdModel> model = ReadPpd(made_.text, &error);
    if (!model) throw std::runtime_error(error.Text("made"));
    return *model;
  }

  QueuePpdSource source_{.model = {}, .type = "postscript", .settings = {}, .translations = {}};
  QueuePpd made_;
};

std::string ChoicesOf(const PpdFeature &feature) {
  std::string text = feature.keyword + "/" + feature.text + ":";
  for (const PpdChoice &choice : feature.choices) text += " " + choice.keyword + "/" + choice.text;
  return text;
}

TEST_F(QueueDescription, OffersWhatTheModelOffers) {
  PpdError error;
  const PpdModel model = ReadPpd(source_.model, &error).value();
  const PpdModel made = Made();
  ASSERT_EQ(model.features.size(), made.features.size());
  for (size_t i = 0; i < model.features.size(); ++i) {
    EXPECT_EQ(ChoicesOf(model.features[i]), ChoicesOf(made.features[i]));
    EXPECT_EQ(model.features[i].default_choice, made.features[i].default_choice);
  }
  EXPECT_EQ(model.constraints.size(), made.constraints.size());
  EXPECT_TRUE(made.custom_limits);
  EXPECT_EQ(made.page_sizes.size(), model.page_sizes.size());
}

TEST_F(QueueDescription, HasNoCodeForThePrinter) {
  const PpdModel made = Made();
  for (const PpdFeature &feature : made.features) {
    for (const PpdChoice &choice : feature.choices) EXPECT_EQ(choice.code, "") << choice.keyword;
  }
  EXPECT_EQ(made.jcl_begin, "");
  EXPECT_EQ(made_.text.find("setpagedevice"), std::string::npos);
  EXPECT_EQ(made_.text.find("@PJL"), std::string::npos);
}

TEST_F(QueueDescription, CodeThatTakesSeveralLinesGoesWithThem) {
  source_.model = ReadWholeFile(KPX_TEST_DATA "/data/ppd/office.ppd").value();
  const size_t at = source_.model.find("*InputSlot Lower");
  source_.model.insert(
      at, "*InputSlot Third/Third tray: \"first\n*OpenUI *Duplex: PickOne\n\"\n*End\n");
  const PpdModel made = Made();
  EXPECT_NE(made.FindFeature("InputSlot")->FindChoice("Third"), nullptr);
  EXPECT_EQ(made.FindFeature("InputSlot")->FindChoice("Third")->code, "");
  EXPECT_EQ(made_.text.find("first"), std::string::npos);
}

TEST_F(QueueDescription, CodeOfAnOptionWithoutFrameGoesToo) {
  source_.model =
      "*PPD-Adobe: \"4.3\"\n*FormatVersion: \"4.3\"\n*NickName: \"x\"\n"
      "*PageSize A4/A4: \"<</PageSize[595 842]>>setpagedevice\"\n";
  EXPECT_EQ(Made().FindFeature("PageSize")->FindChoice("A4")->code, "");
}

TEST_F(QueueDescription, OfAFileWhoseCodeCannotBeToldIsNotMade) {
  const TemporaryDirectory directory;
  const std::string input = ContentOf(KPX_TEST_DATA "/fuzz/corpus/filter_queueppd/open_quotes");
  FilterArguments arguments;
  arguments.ppd_file = directory.Write("model.ppd", input.substr(input.find('\0') + 1));
  arguments.type = "postscript";
  arguments.queue_ppd_file = directory.Path("made.ppd");
  EXPECT_NE(WriteQueuePpd(arguments).find("its code cannot be left out"), std::string::npos);
  EXPECT_EQ(ContentOf(arguments.queue_ppd_file), "");
}

TEST_F(QueueDescription, TheQueuesSettingsAreItsDefaults) {
  source_.settings = {{"*Duplex", "DuplexTumble"},
                      {"*OptionFinisher", "True"},
                      {"*PageSize", "A3"},
                      {"*Jog", "NoSuchChoice"}};
  const PpdModel made = Made();
  EXPECT_EQ(made.FindFeature("Duplex")->default_choice, "DuplexTumble");
  EXPECT_EQ(made.FindFeature("OptionFinisher")->default_choice, "True");
  EXPECT_EQ(made.FindFeature("PageSize")->default_choice, "A3");
  EXPECT_EQ(made.FindFeature("PageRegion")->default_choice, "A3");
  EXPECT_EQ(made.FindFeature("Jog")->default_choice, "None");
}

TEST_F(QueueDescription, SizesAndTypesOfTheQueueAreChoices) {
  source_.settings = {{"*PageSize", "Flyer"},
                      {"*CustomPaperSize", "Flyer''400''600"},
                      {"*CustomPaperSize", "Größe: 1''300''500"},
                      {"*CustomPaperSize", "A4''310''510"},
                      {"*CustomMediaType", "Gold::Gold paper"}};
  const PpdModel made = Made();
  const PpdFeature &sizes = *made.FindFeature("PageSize");
  EXPECT_EQ(sizes.default_choice, "Flyer");
  EXPECT_EQ(sizes.FindChoice("Flyer")->text, "Flyer");
  EXPECT_EQ(sizes.FindChoice("OwnSize1")->text, "Größe  1");
  EXPECT_EQ(made_.papers.at("OwnSize1"), "Größe: 1");
  EXPECT_EQ(made_.papers.at("OwnSize2"), "A4");
  EXPECT_EQ(made.FindFeature("MediaType")->FindChoice("Gold")->text, "Gold paper");
  const PpdPageSize &flyer = made.page_sizes.at("Flyer");
  EXPECT_DOUBLE_EQ(flyer.width, 400);
  EXPECT_DOUBLE_EQ(flyer.length, 600);
  EXPECT_DOUBLE_EQ(flyer.left, 12);
  EXPECT_DOUBLE_EQ(flyer.top, 588);
  // What excludes custom sizes excludes these.
  const auto excludes = [](const PpdConstraint &c) {
    return c.feature1 == "PageSize" && c.choice1 == "Flyer" && c.choice2 == "Transparency";
  };
  EXPECT_TRUE(std::any_of(made.constraints.begin(), made.constraints.end(), excludes));
}

TEST_F(QueueDescription, OnlyQueuesForPostScriptTakeWhatTheSpoolerMakesAPdfOf) {
  const std::string line = "*cupsFilter2: \"application/vnd.cups-pdf application/vnd.kpx-job";
  Made();
  EXPECT_NE(made_.text.find(line), std::string::npos);
  source_.type = "text";
  Made();
  EXPECT_EQ(made_.text.find(line), std::string::npos);
  for (const char *type : {"application/postscript", "text/plain", "application/octet-stream"}) {
    const std::string pass = std::string("*cupsFilter2: \"") + type + " application/vnd.kpx-job 0";
    EXPECT_NE(made_.text.find(pass), std::string::npos) << type;
  }
  // PostScript is not to come as what the spooler makes of it for nothing.
  EXPECT_NE(made_.text.find("*cupsFilter2: \"application/pdf application/vnd.kpx-job 10"),
            std::string::npos);
}

TEST_F(QueueDescription, HasTheTextsOfOtherLanguages) {
  source_.translations = {{"de", ReadWholeFile(KPX_PPD_DIR "/../utf8/deu/vek41201.ppd").value()}};
  Made();
  EXPECT_NE(made_.text.find("*cupsLanguages: \"de\"\n"), std::string::npos);
  EXPECT_NE(made_.text.find("*de.Translation PageSize/Papierformat: \"\"\n"), std::string::npos);
  EXPECT_NE(made_.text.find("*de.PageSize Postcard/Postkarte"), std::string::npos);
}

TEST_F(QueueDescription, AnythingAtAllGivesAText) {
  for (const std::string &model :
       {std::string(), std::string("*"), std::string("*X: \"open"),
        std::string("*OpenUI *: x\n* y: \"\"\n"), std::string(1000, '\0')}) {
    source_.model = model;
    MakeQueuePpd(source_);
  }
  SUCCEED() << "ends";
}

}  // namespace
