// What the handlers' and helpers' log lines say, where no window is needed.
#include "EntryHandlers.h"

#include <gtest/gtest.h>

#include "AddQueueWindow.h"
#include "Support.h"
#include "debug.h"

TEST(OkAndApply, LogBothDialogsAddressesEvenWhenNeitherIsOpen) {
  ASSERT_EQ(nullptr, G_AddQueueWindow_helper);
  testing::internal::CaptureStderr();
  G_DebugLevel = 4;
  G_Toggle_Ok_Apply_Sensitivity();
  G_DebugLevel = 0;
  EXPECT_EQ(
      "BEGIN G_Toggle_Ok_Apply_Sensitivity() function\n"
      "ADDQUEUEQUEUE=>>>(nil)<<<\n"
      "GENPROPPROP=>>>(nil)<<<\n"
      "END   G_Toggle_Ok_Apply_Sensitivity() function\n",
      testing::internal::GetCapturedStderr());
}

TEST(FreeString, LogsAddressAndTextOfWhatItFrees) {
  gchar *string = g_strdup("lp1");
  const std::string address = PointerText(string);
  testing::internal::CaptureStderr();
  G_DebugLevel = 4;
  FreeString(string);
  FreeString(nullptr);
  G_DebugLevel = 0;
  EXPECT_EQ("Deleting string " + address + " >>lp1<<\n", testing::internal::GetCapturedStderr());
}
