// The routine that keeps OK and Apply of the queue dialogs in step with their fields, while no
// dialog is open.
#include "EntryHandlers.h"

#include <gtest/gtest.h>

#include "AddQueueWindow.h"
#include "debug.h"

TEST(OkAndApply, LogBothDialogsAddressesEvenWhenNeitherIsOpen) {
  ASSERT_EQ(nullptr, G_AddQueueWindow_helper);
  testing::internal::CaptureStderr();
  G_DebugLevel = 4;
  G_Toggle_Ok_Apply_Sensitivity();
  G_DebugLevel = 0;
  EXPECT_EQ("BEGIN G_Toggle_Ok_Apply_Sensitivity() function\n"
            "ADDQUEUEQUEUE=>>>(nil)<<<\n"
            "GENPROPPROP=>>>(nil)<<<\n"
            "END   G_Toggle_Ok_Apply_Sensitivity() function\n",
            testing::internal::GetCapturedStderr());
}
