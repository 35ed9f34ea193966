// The copies of settings that jobs keep: their names, and what the spooler says about its jobs.
#include "waitingsettings.h"

#include <gtest/gtest.h>

#include "spooljobs.h"

namespace {

using Requests = std::set<std::string>;

}  // namespace

TEST(RequestId, BelongsToTheQueueBeforeItsLastMinus) {
  EXPECT_TRUE(IsRequestOf("office-11", "office"));
  EXPECT_TRUE(IsRequestOf("office-2-11", "office-2"));
  EXPECT_FALSE(IsRequestOf("office-2-11", "office"));
  EXPECT_FALSE(IsRequestOf("xoffice-11", "office"));
}

TEST(RequestIn, IsFoundInEveryLanguage) {
  for (const char *output :
       {"request id is office-11 (1 file(s))\n", "Anfrage-ID ist office-11 (1 Datei(en))\n",
        "l'identifiant de la requ\xC3\xAAte est \xC2\xAB\xC2\xA0office-11\xC2\xA0\xC2\xBB\n",
        "office-11", "id:office-11.\n"}) {
    EXPECT_EQ("office-11", RequestIn(output, "office")) << output;
  }
}

TEST(RequestIn, TakesNoPartOfAnotherWord) {
  EXPECT_EQ("", RequestIn("request id is my-office-11 (1 file(s))\n", "office"));
  EXPECT_EQ("", RequestIn("request id is office-11x (1 file(s))\n", "office"));
  EXPECT_EQ("", RequestIn("request id is office-2-11 (1 file(s))\n", "office"));
  EXPECT_EQ("office-2-11", RequestIn("request id is office-2-11 (1 file(s))\n", "office-2"));
  EXPECT_EQ("id-3", RequestIn("request id is id-3 (1 file(s))\n", "id"));
}

TEST(RequestIn, IsEmptyWhenThereIsNoneOrMoreThanOne) {
  EXPECT_EQ("", RequestIn("", "office"));
  EXPECT_EQ("", RequestIn("office office- office-x\n", "office"));
  EXPECT_EQ("", RequestIn("office-1 or office-2\n", "office"));
  EXPECT_EQ("office-1", RequestIn("office-1 (office-1)\n", "office"));
}

TEST(RequestsInList, AreTheFirstWordsOfItsLines) {
  EXPECT_EQ((Requests{"a-b-2", "office-11"}),
            RequestsInList("office-11   bob   1024   Sat 21 Nov 2026\na-b-2 anna 1 Sat\n"));
  EXPECT_EQ(Requests{}, RequestsInList(""));
}

TEST(RequestsInList, AreNotKnownWhenALineIsOfAnotherForm) {
  EXPECT_EQ(std::nullopt, RequestsInList("office-11 bob 1024\nlpstat: something else\n"));
  EXPECT_EQ(std::nullopt, RequestsInList("\n"));
}
