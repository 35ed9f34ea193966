// The administration program's main window: its handlers.
#pragma once

// Ends the main loop; nothing is written.
void ButtonCancelPressed();
