// What the destination tab's entries show, and what of them is stored.
#include "destination.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include "childprocess.h"
#include "cprinter.h"
#include "debug.h"
#include "jobrules.h"
#include "must.h"
#include "optionlists.h"
#include "optionstate.h"
#include "pafsupport.h"
#include "queuesupport.h"
#include "utils.h"

namespace {

using Strings = std::vector<std::string>;

constexpr char kDelivery[] =
    "#uio\n#id\n*Delivery\n#translation\nDelivery\n#default\nPrint\n#type\nPickOne\n#_options\n"
    "#_option\n#id\nPrint\n#translation\nAt once\n#end_option\n"
    "#_option\n#id\nHoldJobUntilYouEnterPIN\n#translation\nHold for PIN\n#end_option\n"
    "#_option\n#id\nArchiveToDocumentServer\n#translation\nArchive\n#end_option\n"
    "#end_options\n#end_ui\n";
constexpr char kNotification[] =
    "#uio\n#id\n*EmailNotification\n#translation\nNotify\n#default\nNone\n#type\nPickOne\n"
    "#_options\n"
    "#_option\n#id\nNone\n#translation\nNobody\n#end_option\n"
    "#_option\n#id\nJobCompleted\n#translation\nWhen done\n#end_option\n"
    "#end_options\n#end_ui\n";

class Destination : public testing::Test {
 protected:
  void SetUp() override { Open(std::string(kDelivery) + kNotification); }
  void TearDown() override {
    SetCurrentQueue(nullptr, nullptr);
    SetCurrentPrinter(nullptr);
  }

  // Makes a queue without any setting current, on a printer with those features.
  void Open(const std::string &features) {
    const std::string paf = kPafHeader + features;
    LineReader lines(paf);
    PafContent content = std::get<PafContent>(ReadPaf(lines));
    SetCurrentPrinter(nullptr);
    printer_ = CreatePrinter("printer.paf");
    printer_->features = std::move(content.features);
    printer_->installable_options = std::move(content.installable_options);
    printer_->constraints = std::move(content.constraints);
    SetCurrentPrinter(printer_.get());
    SetCurrentQueue(Text("lp1"), MakeQueue());
  }

  static void Set(const char *feature, const char *value) {
    Must(HashPutText(G_QueueFeatures_hash, feature, value));
  }

  // The work copy's settings, "key=value".
  static Strings Settings() {
    Strings settings;
    for (const auto [key, value] : Pairs<CString>(G_QueueFeatures_hash)) {
      settings.push_back(std::string(key) + "=" + TextOrNull(value));
    }
    return settings;
  }

  // Entries as the tab shows them for a queue without settings.
  static DestinationEntries Usual() {
    return {"use it", "", "    At once", "", "    Nobody", "", ""};
  }

  static DestinationFault StorePin(const std::string &delivery, const std::string &pin) {
    DestinationEntries entries = Usual();
    entries.delivery_text = kFreeMark + delivery;
    entries.pin = pin;
    return StoreDestination(entries);
  }

 private:
  ProgramMessages messages_{"#UseAppSetting\nuse it\n#ERR_UNEXPECTED2\nno %s\n"};
  Owned<CPrinter> printer_;
};

}  // namespace

TEST_F(Destination, AJobWithoutANameShowsTheApplicationsSetting) {
  EXPECT_EQ(DestinationText("*JobName"), "use it");
  EXPECT_TRUE(UsesApplicationsJobName());
  Set("*JobName", "UseAppSetting");
  EXPECT_EQ(DestinationText("*JobName"), "use it");
  EXPECT_TRUE(UsesApplicationsJobName());
  Set("*JobName", "Report");
  EXPECT_EQ(DestinationText("*JobName"), "Report");
  EXPECT_FALSE(UsesApplicationsJobName());
}

TEST_F(Destination, AJobWithoutAUserShowsTheLoginName) {
  ASSERT_NE(GetUserName(nullptr), nullptr);
  EXPECT_EQ(DestinationText("*UserName"), GetUserName(nullptr));
  Set("*UserName", "ann");
  EXPECT_EQ(DestinationText("*UserName"), "ann");
}

TEST_F(Destination, AUserWithoutALoginNameShowsNothing) {
  if (getuid() != 0) GTEST_SKIP() << "only root can become a user who has no name";
  // A child, since the effective user cannot be taken back.
  const ChildResult result = RunInChild([] {
    if (seteuid(4242424) != 0) _exit(2);
    if (DestinationText("*UserName") != "") _exit(1);
  });
  EXPECT_EQ(result.status, 0);
}

TEST_F(Destination, PinAddressAndMessageShowNothingWithoutAValue) {
  for (const char *feature : {"*DeliveryPIN", "*EmailAddress", "*EmailMessage"}) {
    EXPECT_EQ(DestinationText(feature), "") << feature;
    Set(feature, "stored");
    EXPECT_EQ(DestinationText(feature), "stored") << feature;
  }
  EXPECT_EQ(DestinationText(nullptr), "");
}

TEST_F(Destination, TwoDeliveriesTakeAPin) {
  EXPECT_TRUE(TakesPin("HoldJobUntilYouEnterPIN"));
  EXPECT_TRUE(TakesPin("ArchiveToDocumentServer"));
  EXPECT_TRUE(NeedsPin("HoldJobUntilYouEnterPIN"));
  EXPECT_FALSE(NeedsPin("ArchiveToDocumentServer"));
  EXPECT_FALSE(TakesPin("PrintImmediately"));
  EXPECT_FALSE(TakesPin(""));
}

TEST_F(Destination, EveryNotificationButNoneTakesAnAddress) {
  EXPECT_FALSE(Notifies("None"));
  EXPECT_TRUE(Notifies("JobCompleted"));
}

TEST_F(Destination, TheTextOfTheApplicationsSettingIsStoredAsItsKey) {
  DestinationEntries entries = Usual();
  Set("*JobName", "old");
  EXPECT_EQ(StoreDestination(entries), DestinationFault::kNone);
  EXPECT_EQ(Settings(), Strings{"*JobName=UseAppSetting"});
}

TEST_F(Destination, OtherJobNamesAndUserNamesAreStoredAsTyped) {
  DestinationEntries entries = Usual();
  entries.job_name = " Use it ";
  entries.user_name = "\u00e4nn ";
  Set("*UserName", "old");
  EXPECT_EQ(StoreDestination(entries), DestinationFault::kNone);
  EXPECT_EQ(Settings(), (Strings{"*JobName= Use it ", "*UserName=\u00e4nn "}));
}

TEST_F(Destination, EmptyJobNamesAndUserNamesAreRemoved) {
  Set("*JobName", "old");
  Set("*UserName", "old");
  DestinationEntries entries = Usual();
  entries.job_name = "";
  EXPECT_EQ(StoreDestination(entries), DestinationFault::kNone);
  EXPECT_EQ(Settings(), Strings{});
}

TEST_F(Destination, AHeldJobNeedsAPinOfFourCharacters) {
  for (const char *pin : {"", "1", "123", "12345"}) {
    EXPECT_EQ(StorePin("Hold for PIN", pin), DestinationFault::kPin) << ">>" << pin << "<<";
  }
  EXPECT_EQ(QueueFeatureValue("*DeliveryPIN"), "");
  EXPECT_EQ(StorePin("Hold for PIN", "0042"), DestinationFault::kNone);
  EXPECT_EQ(QueueFeatureValue("*DeliveryPIN"), "0042");
}

TEST_F(Destination, ARefusedPinLeavesTheStoredOneAndWhatComesAfterIt) {
  Set("*DeliveryPIN", "1111");
  DestinationEntries entries = {"Report",        "ann",      "    Hold for PIN", "123",
                                "    When done", " a@b.cd ", "message"};
  EXPECT_EQ(StoreDestination(entries), DestinationFault::kPin);
  EXPECT_EQ(Settings(), (Strings{"*DeliveryPIN=1111", "*JobName=Report", "*UserName=ann"}));
  EXPECT_EQ(entries.email_address, " a@b.cd ");
}

TEST_F(Destination, AnArchivedJobMayHaveAPin) {
  Set("*DeliveryPIN", "1111");
  EXPECT_EQ(StorePin("Archive", "2222"), DestinationFault::kNone);
  EXPECT_EQ(QueueFeatureValue("*DeliveryPIN"), "2222");
  EXPECT_EQ(StorePin("Archive", "222"), DestinationFault::kPin);
  EXPECT_EQ(QueueFeatureValue("*DeliveryPIN"), "2222");
}

TEST_F(Destination, AnEmptyPinRemovesThatOfAnArchivedJob) {
  Set("*DeliveryPIN", "1111");
  EXPECT_EQ(StorePin("Archive", ""), DestinationFault::kNone);
  EXPECT_EQ(HashFind(G_QueueFeatures_hash, "*DeliveryPIN"), nullptr);
}

TEST_F(Destination, OtherDeliveriesLeaveThePinAlone) {
  Set("*DeliveryPIN", "1111");
  EXPECT_EQ(StorePin("At once", "12"), DestinationFault::kNone);
  EXPECT_EQ(StorePin("At once", "2222"), DestinationFault::kNone);
  EXPECT_EQ(StorePin("HoldJobUntilYouEnterPIN", "12"), DestinationFault::kNone)
      << "lists show display texts, not identifiers";
  EXPECT_EQ(QueueFeatureValue("*DeliveryPIN"), "1111");
}

TEST_F(Destination, WhatStandsInTheMarksPlaceIsNotCompared) {
  DestinationEntries entries = Usual();
  entries.delivery_text = "!   Hold for PIN";
  EXPECT_EQ(StoreDestination(entries), DestinationFault::kPin);
  entries.delivery_text = "Hold for PIN";
  EXPECT_EQ(StoreDestination(entries), DestinationFault::kNone);
}

TEST_F(Destination, ANotificationNeedsValidAddresses) {
  DestinationEntries entries = Usual();
  entries.notification_text = "    When done";
  entries.email_message = "message";
  Set("*EmailAddress", "old@b.cd");
  for (const char *address : {"", "   ", "a", "a@b.c", "a@b.cd x"}) {
    entries.email_address = address;
    EXPECT_EQ(StoreDestination(entries), DestinationFault::kEmail) << ">>" << address << "<<";
  }
  EXPECT_EQ(Settings(), (Strings{"*EmailAddress=old@b.cd", "*JobName=UseAppSetting"}));
}

TEST_F(Destination, AddressesAreTidiedAndStoredWithTheMessage) {
  DestinationEntries entries = Usual();
  entries.notification_text = "    When done";
  entries.email_address = "  a@b.cd    e@f.gh  ";
  entries.email_message = " it is done ";
  EXPECT_EQ(StoreDestination(entries), DestinationFault::kNone);
  EXPECT_EQ(entries.email_address, "a@b.cd e@f.gh");
  EXPECT_EQ(QueueFeatureValue("*EmailAddress"), "a@b.cd e@f.gh");
  EXPECT_EQ(QueueFeatureValue("*EmailMessage"), " it is done ");
}

TEST_F(Destination, ARefusedAddressIsTidiedToo) {
  DestinationEntries entries = Usual();
  entries.notification_text = "    When done";
  entries.email_address = "  nobody  ";
  EXPECT_EQ(StoreDestination(entries), DestinationFault::kEmail);
  EXPECT_EQ(entries.email_address, "nobody");
}

TEST_F(Destination, AnEmptyMessageLeavesTheOldOne) {
  Set("*EmailMessage", "old");
  DestinationEntries entries = Usual();
  entries.notification_text = "    When done";
  entries.email_address = "a@b.cd";
  EXPECT_EQ(StoreDestination(entries), DestinationFault::kNone);
  EXPECT_EQ(QueueFeatureValue("*EmailMessage"), "old");
}

TEST_F(Destination, WithoutNotificationAddressAndMessageAreLeftAlone) {
  Set("*EmailAddress", "old@b.cd");
  Set("*EmailMessage", "old");
  DestinationEntries entries = Usual();
  entries.email_address = "  not valid  ";
  entries.email_message = "new";
  EXPECT_EQ(StoreDestination(entries), DestinationFault::kNone);
  EXPECT_EQ(entries.email_address, "  not valid  ");
  EXPECT_EQ(QueueFeatureValue("*EmailAddress"), "old@b.cd");
  EXPECT_EQ(QueueFeatureValue("*EmailMessage"), "old");
}

TEST_F(Destination, APrinterWithoutDeliverySkipsThePin) {
  Open(kNotification);
  Set("*DeliveryPIN", "1111");
  DestinationEntries entries = {"", "", "", "12", "    When done", "a@b.cd", ""};
  EXPECT_EQ(StoreDestination(entries), DestinationFault::kNone);
  EXPECT_EQ(Settings(), (Strings{"*DeliveryPIN=1111", "*EmailAddress=a@b.cd"}));
}

TEST_F(Destination, APrinterWithoutNotificationSkipsTheAddress) {
  Open(kDelivery);
  DestinationEntries entries = {"", "", "    Archive", "1234", "", " x ", "message"};
  EXPECT_EQ(StoreDestination(entries), DestinationFault::kNone);
  EXPECT_EQ(entries.email_address, " x ");
  EXPECT_EQ(Settings(), Strings{"*DeliveryPIN=1234"});
}

TEST_F(Destination, DefaultsReplaceTheChoicesAndRemoveTheTexts) {
  Set("*Delivery", "ArchiveToDocumentServer");
  Set("*EmailNotification", "JobCompleted");
  for (const char *feature :
       {"*JobName", "*UserName", "*DeliveryPIN", "*EmailAddress", "*EmailMessage", "*Duplex"}) {
    Set(feature, "stored");
  }
  bool changed = false;
  EXPECT_TRUE(SetDestinationDefaults(&changed));
  EXPECT_TRUE(changed);
  EXPECT_EQ(Settings(), (Strings{"*Delivery=Print", "*Duplex=stored", "*EmailNotification=None"}));
}

TEST_F(Destination, DefaultsThatAreSetAlreadyChangeNoChoice) {
  Set("*Delivery", "Print");
  Set("*EmailNotification", "None");
  Set("*JobName", "stored");
  bool changed = true;
  EXPECT_TRUE(SetDestinationDefaults(&changed));
  EXPECT_FALSE(changed);
  EXPECT_EQ(Settings(), (Strings{"*Delivery=Print", "*EmailNotification=None"}));
}

TEST_F(Destination, OneOfTheTwoChoicesIsAChange) {
  Set("*Delivery", "Print");
  Set("*EmailNotification", "JobCompleted");
  bool changed = false;
  EXPECT_TRUE(SetDestinationDefaults(&changed));
  EXPECT_TRUE(changed);
}

TEST_F(Destination, WithoutADefaultDeliveryDefaultsStopAtOnce) {
  const ChildResult result = RunInChild([this] {
    Open(kNotification);
    Set("*EmailNotification", "JobCompleted");
    Set("*JobName", "stored");
    unsetenv("KPXDEBUG");
    G_DebugLevel = 2;
    bool changed = true;
    if (SetDestinationDefaults(&changed) || changed) _exit(1);
    if (Settings() != Strings{"*EmailNotification=JobCompleted", "*JobName=stored"}) _exit(2);
  });
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.errors, "Unable to load the default option for Delivery type\n");
}

TEST_F(Destination, WithoutADefaultNotificationDefaultsStopBehindTheDelivery) {
  const ChildResult result = RunInChild([this] {
    Open(kDelivery);
    Set("*Delivery", "ArchiveToDocumentServer");
    Set("*JobName", "stored");
    unsetenv("KPXDEBUG");
    G_DebugLevel = 2;
    bool changed = false;
    if (SetDestinationDefaults(&changed) || !changed) _exit(1);
    if (Settings() != Strings{"*Delivery=Print", "*JobName=stored"}) _exit(2);
  });
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.errors, "Unable to load the default option for Email notification\n");
}

TEST_F(Destination, ThePinIsNotLogged) {
  const ChildResult result = RunInChild([] {
    unsetenv("KPXDEBUG");
    G_DebugLevel = 9;
    if (StorePin("Hold for PIN", "4711") != DestinationFault::kNone) _exit(1);
    if (DestinationText("*DeliveryPIN") != "4711") _exit(2);
    if (StorePin("Hold for PIN", "4712x") != DestinationFault::kPin) _exit(3);
  });
  EXPECT_EQ(result.status, 0);
  EXPECT_NE(result.errors.find("StoreDestination"), std::string::npos) << "the log is on";
  EXPECT_EQ(result.errors.find("471"), std::string::npos) << result.errors;
}
