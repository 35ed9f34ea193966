// A queue that is shared as the guide says: another host, which knows nothing of it, finds it by
// DNS-SD.
#include "dnssd.h"
#include "sharingtest.h"

namespace {

class Announced : public Sharing {
 protected:
  // As it was before: what shares the queue is a command of CUPS's.
  Announced() : Sharing(SchedulerConfiguration::Current()) {}
};

TEST_F(Announced, AnotherHostFindsTheQueueByItselfAndPrintsThroughIt) {
  if (!HasOrdinaryUsers()) {
    GTEST_SKIP() << "without root CUPS's ipp backend reaches no other host from its user namespace";
  }
  const ServiceDiscovery discovery("printserver");
  Run({"/usr/sbin/cupsctl", "--share-printers"});
  const CommandResult second = PrintAfar(
      KPX_DNSSD
      " attic || exit 1; "
      // CUPS announces a queue anew when it knows more of it.
      "until uri=$(ippfind -T 5 _ipp._tcp --txt Staple --txt-pdl application/pdf --print); "
      "do sleep 0.1; done; echo \"found $uri\"; avahi-browse -rtpk _ipp._tcp; "
      "/usr/sbin/lpadmin -p far -E -v \"$uri\" -m everywhere || exit 1; ");
  ExpectBothPrinted(second);
  for (const char *words : {"found ipp://printserver.local:631/printers/lp1\n",
                            "\"ty=Vek Norvel 4120ES\"", "\"Duplex=T\"", "\"Staple=T\""}) {
    EXPECT_NE(second.output.find(words), std::string::npos) << words << second.output;
  }
}

}  // namespace
